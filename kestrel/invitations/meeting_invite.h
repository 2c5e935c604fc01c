#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/invitations/invitation_enumerations.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// One invitee of one appointment.
struct MeetingInvite {
    static constexpr auto recordName = recordNameOf<MeetingInvite>;
    static constexpr auto entityName = entityNameOf<MeetingInvite>;

    ReadOnly<ObjectID<MeetingInvite>, MeetingInvite> meetingInviteID;
    /// The name to show.
    std::optional<std::string> commonName{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Where mail to the invitee goes; absent when none is known.
    std::optional<std::string> emailAddress{};
    /// Why sending failed last.
    MeetingInviteErrorCode errorCode{};
    /// Who the invitee is.
    MeetingInviteType inviteType{};
    /// What is noted about the invitee.
    std::optional<std::string> note{};
    /// Whether the invitee has to come.
    MeetingInviteParticipationRole participationRole{};
    /// What the invitee answered.
    MeetingInviteResponseStatus responseStatus{};
    /// Where sending to the invitee stands.
    MeetingInviteSendingStatus sendingStatus{};
    /// The store's code.
    std::int64_t statusCode{};

    [[nodiscard]] const ObjectID<MeetingInvite>& objectID() const noexcept { return meetingInviteID.get(); }
    [[nodiscard]] const ObjectID<MeetingInvite>& id() const noexcept { return meetingInviteID.get(); }
    friend bool operator==(const MeetingInvite&, const MeetingInvite&) = default;
};
extern template struct Codec<MeetingInvite>;

}  // namespace kestrel
