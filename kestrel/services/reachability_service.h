#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <cstdint>
#include <memory>

namespace kestrel {

/// How the network is reached.
enum class ReachabilityStatus : std::uint8_t {
    notReachable,      ///< not at all
    reachableViaWiFi,  ///< through Wi-Fi or a cable
    reachableViaWWAN   ///< through a cellular network
};

/// Why the network cannot be observed.
enum class ReachabilityError : std::uint8_t {
    failedToStartNotifier,  ///< the network cannot be watched
};

/// Whether the network is there. For use on the main thread.
class ReachabilityService : public ServiceProtocol {
  public:
    /// As it is now.
    [[nodiscard]] virtual ReachabilityStatus currentStatus() const = 0;
    /// The status at each change from now on; not the current one. Without end.
    [[nodiscard]] virtual AnyPublisher<ReachabilityStatus, ReachabilityError> observeNetworkStatus() = 0;
};

template <>
class Forwarding<ReachabilityService> : public ReachabilityService {
  public:
    [[nodiscard]] virtual std::shared_ptr<ReachabilityService> target() const = 0;

    [[nodiscard]] ReachabilityStatus currentStatus() const override { return target()->currentStatus(); }
    [[nodiscard]] AnyPublisher<ReachabilityStatus, ReachabilityError> observeNetworkStatus() override {
        return target()->observeNetworkStatus();
    }
};

namespace services {
inline constexpr ServiceKey<ReachabilityService> reachability;
}

}  // namespace kestrel
