#include <gtest/gtest.h>
#include <kestrel/invitations/invitation_enumerations.h>
#include <kestrel/invitations/meeting_history.h>

#include <cstdint>
#include <set>

namespace {

using namespace kestrel;

TEST(Invitations, nameAnswersAndRolesAndTellHopelessErrors) {
    EXPECT_EQ(displayName(MeetingInviteResponseStatus::none), "None");
    EXPECT_EQ(displayName(MeetingInviteResponseStatus::maybe), "Maybe");
    EXPECT_EQ(displayName(MeetingInviteParticipationRole::required), "Required");
    EXPECT_EQ(displayName(MeetingInviteParticipationRole::optional), "Optional");
    std::set<std::int64_t> hopeless;
    for (const auto code : allCases<MeetingInviteErrorCode>) {
        if (isUnrecoverable(code)) hopeless.insert(rawValue(code));
    }
    EXPECT_EQ(hopeless, (std::set<std::int64_t>{2, 3, 5, 6, 7}));
}

TEST(Invitations, tellTheTypeOfAnAnswer) {
    EXPECT_EQ((MeetingHistory{.meetingHistoryID = 1, .typeCode = 2}.type()), MeetingHistoryType::reject);
    EXPECT_EQ((MeetingHistory{.meetingHistoryID = 1, .typeCode = 4}.type()), std::nullopt)
        << "a code is kept all the same";
}

TEST(InvitationsDeathTest, stopAtWhatIsNoCase) {
    EXPECT_DEATH((void)displayName(static_cast<MeetingInviteResponseStatus>(9)), "response status that is none");
    EXPECT_DEATH((void)displayName(static_cast<MeetingInviteParticipationRole>(9)), "participation role that is none");
}

}  // namespace
