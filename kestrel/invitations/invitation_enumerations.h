#pragma once

#include <kestrel/foundation/enumeration.h>
#include <cstdint>
#include <string>

namespace kestrel {

/// What an invitation mail says about its appointment.
enum class ExternalInvitationType : std::uint8_t {
    invite = 0,  ///< it is to take place
    update = 1,  ///< it has changed
    cancel = 2   ///< it does not take place
};

/// Whether sending is finished.
enum class ExternalInvitationStatus : std::uint8_t {
    pending = 0,   ///< some are not sent
    completed = 1  ///< nothing is left to send
};

/// Where sending stands for one addressee.
enum class ExternalInvitationRecipientStatus : std::uint8_t {
    unsent = 0,       ///< not sent
    sent = 1,         ///< sent
    invalidated = 2,  ///< not to be sent any more
    error = 3         ///< sending failed
};

/// Where an invitation stands.
enum class MeetingInviteStatus : std::uint8_t {
    unsent = 0,    ///< not sent
    pending = 1,   ///< sent, not answered
    accepted = 2,  ///< the invitee comes
    rejected = 3,  ///< the invitee does not come
    unknown = 4    ///< not said
};

/// What an answer says.
enum class MeetingHistoryType : std::uint8_t {
    unknown = 0,   ///< not said
    accept = 1,    ///< the invitee comes
    reject = 2,    ///< the invitee does not come
    tentative = 3  ///< the invitee may come
};

/// How an answer arrived.
enum class MeetingHistoryExternalSource : std::uint8_t {
    none = 0,         ///< not from outside
    icsResponse = 1,  ///< as a calendar file
    webResponse = 2,  ///< from a page on the web
    manualEntry = 3   ///< a user wrote it down
};

/// What an invitee answered.
enum class MeetingInviteResponseStatus : std::uint8_t {
    none = 0,      ///< nothing yet
    accepted = 1,  ///< comes
    declined = 2,  ///< does not come
    maybe = 3      ///< may come
};
/// In the user's language.
[[nodiscard]] std::string displayName(MeetingInviteResponseStatus status);

/// Whether an invitee has to come.
enum class MeetingInviteParticipationRole : std::uint8_t {
    required = 0,  ///< has to come
    optional = 1   ///< may stay away
};
/// In the user's language.
[[nodiscard]] std::string displayName(MeetingInviteParticipationRole role);

/// Where sending to an invitee stands.
enum class MeetingInviteSendingStatus : std::uint8_t {
    unsent = 0,   ///< not sent
    pending = 1,  ///< on its way
    sent = 2,     ///< sent
    failed = 3    ///< not delivered
};

/// Why sending to an invitee failed.
enum class MeetingInviteErrorCode : std::uint8_t {
    none = 0,               ///< it has not
    temporaryFailure = 1,   ///< for now
    invalidAddress = 2,     ///< the address is none
    recipientRejected = 3,  ///< the server does not know the invitee
    rateLimited = 4,        ///< too many mails were sent
    senderRejected = 5,     ///< the server does not take mail of this sender
    messageRejected = 6,    ///< the server does not take this mail
    permanentFailure = 7,   ///< for good
};
/// Whether trying again is of no use: not for an error that passes, and not without one.
[[nodiscard]] constexpr bool isUnrecoverable(MeetingInviteErrorCode code) noexcept {
    constexpr unsigned unrecoverable = 0b1110'1100;
    return ((unrecoverable >> static_cast<unsigned>(code)) & 1U) != 0;
}

/// Who an invitee is. The raw values are the store's, in no order.
enum class MeetingInviteType : std::uint8_t {
    user = 1,      ///< a user of the database
    contact = 2,   ///< a contact of the database
    external = 3,  ///< somebody outside of the database
    unknown = 0,   ///< not said
    resource = 4   ///< a thing, such as a room
};

}  // namespace kestrel
