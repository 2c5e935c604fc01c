#include <gtest/gtest.h>
#include <kestrel/calendar/alert_object.h>
#include <kestrel/calendar/reminder.h>
#include <kestrel/calendar/user_notification.h>

#include <set>
#include <unordered_set>

namespace {

using namespace kestrel;
using Notification = KestrelUserNotification;
using Concerned = Notification::AlertableObjectID;

TEST(Alerts, knowTheirTypeOrKeepACodeThatIsNone) {
    EXPECT_EQ((AlertObject{.alertObjectID = 1, .alertTypeCode = 1010}.type()),
              AlertObjectType::externalInvitationDeliveryFailure);
    for (const std::int64_t code : {-1, 1, 999, 1011, 66536}) {
        const AlertObject alert{.alertObjectID = 1, .alertTypeCode = code};
        EXPECT_FALSE(alert.type()) << code;
        EXPECT_EQ(decodeJSON<AlertObject>(*encodeJSON(alert)), alert);
    }
    EXPECT_EQ(caseName(static_cast<AlertObjectType>(999)), "");
}

TEST(Reminders, knowTheirTypeAndUnit) {
    const Reminder reminder{.reminderID = 1, .isRelativeFlag = 1, .measurement = 15, .typeCode = 8, .unit = 4};
    EXPECT_FALSE(reminder.type());
    EXPECT_EQ(reminder.reminderUnit(), ReminderUnit::hoursAfter);
    EXPECT_FALSE((Reminder{.reminderID = 1, .typeCode = 7, .unit = 8}.reminderUnit()));
}

TEST(Notifications, areToldApartByAlertAndByConcernedRecord) {
    // All with the key 3 behind the case, so that only the case and the kind of identifier can tell them apart.
    const Concerned concerned[] = {
        Concerned::appointment(AppointmentID::timeblock(3)),
        Concerned::appointment(AppointmentID::timeblockOccurrence(3, Date(3))),
        Concerned::appointment(AppointmentID::timeblockOccurrence(3, Date(4))),
        Concerned::opportunity(3),
        Concerned::project(3),
        Concerned::project(4),
        Concerned::task(TaskID::task(3)),
        Concerned::task(TaskID::taskOccurrence(3, Date(3))),
    };
    std::unordered_set<Notification> notifications;
    std::unordered_set<Concerned> records;
    std::set<std::size_t> hashes;
    for (const Concerned& record : concerned) {
        EXPECT_TRUE(records.insert(record).second);
        for (const std::int64_t alert : {3, 4}) {
            const auto notification = Notification::alert(alert, record);
            EXPECT_TRUE(notifications.insert(notification).second) << "differs from all before it";
            hashes.insert(std::hash<Notification>{}(notification));
            EXPECT_EQ(notification.alert()->objectID, ObjectID<AlertObject>(alert));
            EXPECT_EQ(notification.alert()->alertableObjectID, record);
        }
    }
    EXPECT_EQ(hashes.size(), 16U);
    EXPECT_TRUE(notifications.contains(Notification::alert(4, Concerned::task(TaskID::task(3)))));
    EXPECT_EQ(concerned[4].project(), ObjectID<Project>(3));
    EXPECT_FALSE(concerned[4].opportunity());
}

}  // namespace
