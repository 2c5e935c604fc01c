#pragma once

#include <kestrel/platform/notification_center.h>
#include <cstdint>
#include <string_view>

namespace kestrel {

/// Watches the network. For use on the main thread.
///
/// While it watches, it posts `kReachabilityChangedNotification` on the standard notification centre, with itself as
/// the object, whenever the status has changed.
class ReachabilityProtocol : public NotificationObject {
  public:
    /// 0 when the network is not reachable, 1 through Wi-Fi or a cable, 2 through a cellular network.
    [[nodiscard]] virtual std::int64_t currentReachabilityStatus() const = 0;
    /// Starts watching. False when it cannot.
    [[nodiscard]] virtual bool startNotifier() = 0;
    /// Stops watching; nothing when it does not watch.
    virtual void stopNotifier() = 0;
};

/// The name of the notification; it is about the source.
inline constexpr std::string_view kReachabilityChangedNotification = "ReachabilityChanged";

}  // namespace kestrel
