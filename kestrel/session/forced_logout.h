#pragma once

#include <kestrel/foundation/enumeration.h>
#include <kestrel/session/sync_status.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// Why a session ends without the user's doing. Backed by the names as texts.
enum class ForcedLogoutReason : std::uint8_t {
    deviceRevoked,     ///< the access of this device was withdrawn
    userDeactivated,   ///< the user's account was deactivated
    migrationFailure,  ///< the schema of the local database could not be migrated
};
template <>
inline constexpr auto enumerationForm<ForcedLogoutReason> = EnumerationForm::caseText;

/// A sign-out that the server, or the state of the local database, orders.
struct ForcedLogout {
    /// What `reason` tells.
    using Reason = ForcedLogoutReason;

    /// The company whose session ends.
    std::string companyName{};
    /// Why.
    Reason reason{};

    /// What a failed synchronisation orders: a sign-out when the device or the user may not go on. Absent for every
    /// other error, with which the session continues.
    [[nodiscard]] static std::optional<ForcedLogout> from(std::string companyName, const SyncError& syncError);

    friend bool operator==(const ForcedLogout&, const ForcedLogout&) = default;
};

}  // namespace kestrel
