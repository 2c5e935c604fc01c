#pragma once

#include <cstdint>

namespace kestrel {

/// Whether data that was fetched on demand is up to date.
enum class OnDemandFreshness : std::uint8_t { fresh, stale };

/// Why data could not be fetched on demand.
enum class OnDemandError : std::uint8_t {
    serverUnreachable,
    noContentAvailable,
    noInternet,
    client,  ///< the request was at fault
    server,  ///< the server was at fault
    unexpected,
    objectNotFound,
};

}  // namespace kestrel
