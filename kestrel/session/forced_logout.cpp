#include <kestrel/session/forced_logout.h>

#include <utility>

namespace kestrel {

std::optional<ForcedLogout> ForcedLogout::from(std::string companyName, const SyncError& syncError) {
    const auto because = [&](Reason reason) {
        return std::optional(ForcedLogout{.companyName = std::move(companyName), .reason = reason});
    };
    if (syncError == SyncError::deviceRevoked()) return because(Reason::deviceRevoked);
    if (syncError == SyncError::userDeactivated()) return because(Reason::userDeactivated);
    return std::nullopt;
}

}  // namespace kestrel
