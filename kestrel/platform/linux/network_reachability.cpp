#include <kestrel/platform/linux/glib_support.h>
#include <kestrel/platform/linux/network_interfaces.h>
#include <kestrel/platform/linux/network_reachability.h>
#include <utility>

namespace kestrel {

NetworkReachability::NetworkReachability() : monitor_(platform::shared(g_network_monitor_get_default()).release()) {}

NetworkReachability::~NetworkReachability() {
    NetworkReachability::stopNotifier();
    g_object_unref(monitor_);
}

std::int64_t NetworkReachability::currentReachabilityStatus() const {
    constexpr std::int64_t none = 0;
    constexpr std::int64_t wifi = 1;
    constexpr std::int64_t cellular = 2;
    if (g_network_monitor_get_network_available(monitor_) == FALSE) return none;
    const auto interface = platform::defaultRouteInterface();
    return interface && platform::isCellular(*interface) ? cellular : wifi;
}

bool NetworkReachability::startNotifier() {
    if (handler_ != 0) return true;
    status_ = currentReachabilityStatus();
    const auto call = +[](GNetworkMonitor* /*monitor*/, gboolean /*isAvailable*/, gpointer self) noexcept {
        static_cast<NetworkReachability*>(self)->networkChanged();
    };
    handler_ = g_signal_connect_data(monitor_, "network-changed", reinterpret_cast<GCallback>(call), this, nullptr,
                                     GConnectFlags{});
    return true;
}

void NetworkReachability::stopNotifier() {
    if (handler_ != 0) g_signal_handler_disconnect(monitor_, std::exchange(handler_, 0));
}

void NetworkReachability::networkChanged() {
    const auto status = currentReachabilityStatus();
    if (std::exchange(status_, status) == status) return;
    // Last: whoever hears of it may let go of this.
    NotificationCenter::standard().post(kReachabilityChangedNotification, this);
}

}  // namespace kestrel
