#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/invitations/invitation_enumerations.h>
#include <optional>
#include <string>

namespace kestrel {

/// One addressee of one invitation mail.
struct ExternalInvitationRecipient {
    static constexpr auto recordName = recordNameOf<ExternalInvitationRecipient>;
    static constexpr auto entityName = entityNameOf<ExternalInvitationRecipient>;

    ReadOnly<ObjectID<ExternalInvitationRecipient>, ExternalInvitationRecipient> externalInvitationRecipientID;
    /// The name to show.
    std::optional<std::string> commonName{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Where the mail goes.
    std::string emailAddress{};
    /// Why sending failed.
    MeetingInviteErrorCode errorCode{};
    /// Whether the invitee had to come at the time of sending.
    MeetingInviteParticipationRole inviteParticipationRole{};
    /// The answer at the time of sending.
    MeetingInviteResponseStatus inviteResponseStatus{};
    /// Where sending stood at the time.
    MeetingInviteSendingStatus inviteSendingStatus{};
    /// The message identifier of the mail.
    std::optional<std::string> messageID{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// When the mail was sent.
    std::optional<Date> sendDate{};
    /// Where sending stands.
    ExternalInvitationRecipientStatus status{};

    [[nodiscard]] const ObjectID<ExternalInvitationRecipient>& objectID() const noexcept {
        return externalInvitationRecipientID.get();
    }
    [[nodiscard]] const ObjectID<ExternalInvitationRecipient>& id() const noexcept {
        return externalInvitationRecipientID.get();
    }
    friend bool operator==(const ExternalInvitationRecipient&, const ExternalInvitationRecipient&) = default;
};
extern template struct Codec<ExternalInvitationRecipient>;

}  // namespace kestrel
