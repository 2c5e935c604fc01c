#pragma once

#include <gio/gio.h>
#include <kestrel/platform/reachability.h>
#include <cstdint>

namespace kestrel {

/// Reachability by GIO's network monitor, which knows whether there is a way to the world. It signals more often than
/// anything changes; what is posted is changes of the status only. A network is cellular when the default route leaves
/// by a modem; every other one, tunnels included, counts as Wi-Fi.
class NetworkReachability final : public ReachabilityProtocol {
  public:
    NetworkReachability();
    ~NetworkReachability() override;

    [[nodiscard]] std::int64_t currentReachabilityStatus() const override;
    /// Always true: there is a monitor on every system.
    [[nodiscard]] bool startNotifier() override;
    void stopNotifier() override;

  private:
    void networkChanged();

    /// GIO's, one for the process.
    GNetworkMonitor* monitor_;
    gulong handler_ = 0;
    /// As last posted, or as found at the start.
    std::int64_t status_ = 0;
};

}  // namespace kestrel
