#pragma once

#include <cstdint>

namespace kestrel {

/// Whether data that was fetched on demand is up to date.
enum class OnDemandFreshness : std::uint8_t {
    fresh,  ///< as the server has it
    stale   ///< older than what the server has
};

/// Why data could not be fetched on demand.
enum class OnDemandError : std::uint8_t {
    serverUnreachable,   ///< the server does not answer
    noContentAvailable,  ///< there is nothing to fetch
    noInternet,          ///< the network is not there
    client,              ///< the request was at fault
    server,              ///< the server was at fault
    unexpected,          ///< anything else
    objectNotFound,      ///< the server has no such record
};

}  // namespace kestrel
