#pragma once

#include <kestrel/foundation/enumeration.h>
#include <cstdint>
#include <string>

namespace kestrel {

/// What an invitation mail says about its appointment.
enum class ExternalInvitationType : std::uint8_t { invite = 0, update = 1, cancel = 2 };

/// Whether sending is finished.
enum class ExternalInvitationStatus : std::uint8_t { pending = 0, completed = 1 };

/// Where sending stands for one addressee.
enum class ExternalInvitationRecipientStatus : std::uint8_t { unsent = 0, sent = 1, invalidated = 2, error = 3 };

enum class MeetingInviteStatus : std::uint8_t { unsent = 0, pending = 1, accepted = 2, rejected = 3, unknown = 4 };

enum class MeetingHistoryType : std::uint8_t { unknown = 0, accept = 1, reject = 2, tentative = 3 };

/// How an answer arrived.
enum class MeetingHistoryExternalSource : std::uint8_t { none = 0, icsResponse = 1, webResponse = 2, manualEntry = 3 };

/// What an invitee answered.
enum class MeetingInviteResponseStatus : std::uint8_t { none = 0, accepted = 1, declined = 2, maybe = 3 };
/// In the user's language.
[[nodiscard]] std::string displayName(MeetingInviteResponseStatus status);

/// Whether an invitee has to come.
enum class MeetingInviteParticipationRole : std::uint8_t { required = 0, optional = 1 };
/// In the user's language.
[[nodiscard]] std::string displayName(MeetingInviteParticipationRole role);

/// Where sending to an invitee stands.
enum class MeetingInviteSendingStatus : std::uint8_t { unsent = 0, pending = 1, sent = 2, failed = 3 };

/// Why sending to an invitee failed.
enum class MeetingInviteErrorCode : std::uint8_t {
    none = 0,
    temporaryFailure = 1,
    invalidAddress = 2,
    recipientRejected = 3,
    rateLimited = 4,
    senderRejected = 5,
    messageRejected = 6,
    permanentFailure = 7,
};
/// Whether trying again is of no use: not for an error that passes, and not without one.
[[nodiscard]] constexpr bool isUnrecoverable(MeetingInviteErrorCode code) noexcept {
    constexpr unsigned unrecoverable = 0b1110'1100;
    return ((unrecoverable >> static_cast<unsigned>(code)) & 1U) != 0;
}

/// Who an invitee is. The raw values are the store's, in no order.
enum class MeetingInviteType : std::uint8_t { user = 1, contact = 2, external = 3, unknown = 0, resource = 4 };

}  // namespace kestrel
