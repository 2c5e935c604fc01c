#include <gtest/gtest.h>
#include <kestrel/activity/email.h>
#include <kestrel/calendar/alert_object.h>
#include <kestrel/calendar/reminder.h>
#include <kestrel/calendar/task.h>
#include <kestrel/calendar/timeblock.h>
#include <kestrel/details/electronic_address.h>
#include <kestrel/invitations/invitation_enumerations.h>
#include <kestrel/platform/notification_settings.h>
#include <kestrel/records/contact_priority.h>
#include <kestrel/relationships/role_type.h>
#include <kestrel/services/onboarding_preferences.h>
#include <kestrel/services/reachability_service.h>
#include <kestrel/services/system_clock_service.h>
#include <kestrel/session/on_demand.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

/// That the enumeration has exactly the named cases with these raw values, and no other integer makes one.
template <class E>
void expectCases(const std::vector<std::pair<std::int64_t, std::string>>& cases) {
    std::set<std::int64_t> raws;
    for (const auto& [raw, name] : cases) {
        raws.insert(raw);
        const auto value = fromRawValue<E>(raw);
        ASSERT_TRUE(value.has_value()) << name;
        EXPECT_EQ(caseName(*value), name);
        EXPECT_EQ(rawValue(*value), raw);
    }
    for (std::int64_t raw = -70; raw <= 1100; ++raw)
        EXPECT_EQ(fromRawValue<E>(raw).has_value(), raws.contains(raw)) << raw;
    EXPECT_EQ(allCases<E>.size(), cases.size());
}

TEST(Enumerations, haveTheStoresRawValues) {
    expectCases<TaskKind>(
        {{0, "todo"}, {1, "inboundCall"}, {2, "outboundCall"}, {3, "fax"}, {4, "email"}, {5, "mail"}, {6, "print"}});
    expectCases<TaskStatus>(
        {{0, "open"}, {4, "pending"}, {5, "deferred"}, {6, "inProgress"}, {7, "done"}, {8, "cancelled"}});
    expectCases<TimeblockKind>({{0, "unknown"},
                                {1, "appointment"},
                                {2, "event"},
                                {4, "outboundCall"},
                                {5, "inboundCall"},
                                {6, "chat"},
                                {7, "vacation"},
                                {8, "meeting"},
                                {9, "video"}});
    expectCases<TimeblockType>({{0, "none"},
                                {1, "appointment"},
                                {2, "event"},
                                {4, "outboundCall"},
                                {5, "inboundCall"},
                                {6, "chat"},
                                {7, "vacation"},
                                {8, "meeting"},
                                {9, "video"}});
    expectCases<TimeblockStatus>({{0, "other"},
                                  {1, "tentative"},
                                  {2, "confirmed"},
                                  {3, "postponed"},
                                  {4, "completed"},
                                  {5, "cancelled"},
                                  {6, "pencilIn"}});
    expectCases<AlertObjectType>({{0, "unknown"},
                                  {1000, "delegation"},
                                  {1001, "meetingInvitation"},
                                  {1002, "meetingResponse"},
                                  {1003, "reminder"},
                                  {1004, "delegationUpdate"},
                                  {1005, "meetingUpdate"},
                                  {1006, "meetingDeletion"},
                                  {1007, "delegationDeletion"},
                                  {1008, "meetingUninvited"},
                                  {1009, "externalInvitationResponse"},
                                  {1010, "externalInvitationDeliveryFailure"}});
    expectCases<ReminderType>({{0, "unknown"},
                               {1, "display"},
                               {2, "email"},
                               {3, "sound"},
                               {4, "runScript"},
                               {5, "openFile"},
                               {6, "speakText"},
                               {7, "displayNote"}});
    expectCases<ReminderUnit>({{0, "minutes"},
                               {1, "hours"},
                               {2, "days"},
                               {3, "minutesAfter"},
                               {4, "hoursAfter"},
                               {5, "daysAfter"},
                               {6, "onDateTime"},
                               {7, "taskSameDay"}});
    expectCases<ReachabilityStatus>({{0, "notReachable"}, {1, "reachableViaWiFi"}, {2, "reachableViaWWAN"}});
    expectCases<ClockInterval>({{0, "topOfTheMinute"}, {1, "topOfTheHour"}});
    expectCases<UserDefaultHasMac>({{0, "unknown"}, {1, "yes"}, {2, "no"}});
    expectCases<UserDefaultGetStartedBanner>(
        {{0, "unknown"}, {1, "show"}, {2, "hide"}, {3, "showWithoutAutomaticHiding"}});
    expectCases<UserDefaultGetStartedSheetOnFirstLogin>({{0, "unknown"}, {1, "show"}, {2, "hide"}});
    expectCases<NotificationAuthorizationStatus>(
        {{0, "notDetermined"}, {1, "denied"}, {2, "authorized"}, {3, "provisional"}, {4, "ephemeral"}});
    expectCases<NotificationSetting>({{0, "notSupported"}, {1, "disabled"}, {2, "enabled"}});
    expectCases<NotificationAlertStyle>({{0, "none"}, {1, "banner"}, {2, "alert"}});
    expectCases<NotificationShowPreviewsSetting>({{0, "always"}, {1, "whenAuthenticated"}, {2, "never"}});
    expectCases<OnDemandFreshness>({{0, "fresh"}, {1, "stale"}});
    expectCases<OnDemandError>({{0, "serverUnreachable"},
                                {1, "noContentAvailable"},
                                {2, "noInternet"},
                                {3, "client"},
                                {4, "server"},
                                {5, "unexpected"},
                                {6, "objectNotFound"}});
    expectCases<EmailDMIStatus>({{0, "none"}, {10, "legacy"}, {20, "draft"}});
    expectCases<RoleTypeAppliesTo>({{0, "contact"}, {1, "organization"}});
    expectCases<ContactPriority>({{0, "inactive"},
                                  {1, "p1"},
                                  {2, "p2"},
                                  {3, "p3"},
                                  {4, "p4"},
                                  {5, "p5"},
                                  {6, "p6"},
                                  {7, "p7"},
                                  {8, "p8"},
                                  {9, "p9"},
                                  {10, "p10"}});
    expectCases<ExternalInvitationType>({{0, "invite"}, {1, "update"}, {2, "cancel"}});
    expectCases<ExternalInvitationStatus>({{0, "pending"}, {1, "completed"}});
    expectCases<ExternalInvitationRecipientStatus>({{0, "unsent"}, {1, "sent"}, {2, "invalidated"}, {3, "error"}});
    expectCases<MeetingInviteStatus>({{0, "unsent"}, {1, "pending"}, {2, "accepted"}, {3, "rejected"}, {4, "unknown"}});
    expectCases<MeetingHistoryType>({{0, "unknown"}, {1, "accept"}, {2, "reject"}, {3, "tentative"}});
    expectCases<MeetingHistoryExternalSource>(
        {{0, "none"}, {1, "icsResponse"}, {2, "webResponse"}, {3, "manualEntry"}});
    expectCases<MeetingInviteResponseStatus>({{0, "none"}, {1, "accepted"}, {2, "declined"}, {3, "maybe"}});
    expectCases<MeetingInviteParticipationRole>({{0, "required"}, {1, "optional"}});
    expectCases<MeetingInviteSendingStatus>({{0, "unsent"}, {1, "pending"}, {2, "sent"}, {3, "failed"}});
    expectCases<MeetingInviteErrorCode>({{0, "none"},
                                         {1, "temporaryFailure"},
                                         {2, "invalidAddress"},
                                         {3, "recipientRejected"},
                                         {4, "rateLimited"},
                                         {5, "senderRejected"},
                                         {6, "messageRejected"},
                                         {7, "permanentFailure"}});
    expectCases<MeetingInviteType>({{1, "user"}, {2, "contact"}, {3, "external"}, {0, "unknown"}, {4, "resource"}});
}

}  // namespace
