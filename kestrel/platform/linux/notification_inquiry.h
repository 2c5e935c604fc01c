#pragma once

#include <kestrel/platform/notification_settings.h>
#include <array>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Finds out what the desktop lets an application notify of. `dbus_notification_center.h` says how it is judged.
namespace kestrel::platform {

struct SessionBusAddress {
    std::string address{};
    /// Where it comes from: "DBUS_SESSION_BUS_ADDRESS", "$XDG_RUNTIME_DIR/bus".
    std::string source{};
};

/// The address of the session bus, without starting one; an error says why there is none.
[[nodiscard]] std::expected<SessionBusAddress, std::string> sessionBusAddress();

/// What a notification server says of itself.
struct NotificationServer {
    std::string name{};
    std::string vendor{};
    std::string version{};
    std::string protocolVersion{};
    std::vector<std::string> capabilities{};
};

/// The desktop's settings of notifications; absent what nobody has set.
struct DesktopNotificationSettings {
    // For all applications.
    std::optional<bool> showsBanners{};
    std::optional<bool> showsOnLockScreen{};
    // For this one.
    std::optional<bool> isEnabled{};
    std::optional<bool> applicationShowsBanners{};
    std::optional<bool> applicationShowsOnLockScreen{};
    std::optional<bool> showsDetailsOnLockScreen{};
    std::optional<bool> playsSounds{};
};

/// What could be found out.
struct NotificationEvidence {
    bool isBusReached{};
    /// Absent when none answered in time; then `problem` says why.
    std::optional<NotificationServer> server{};
    std::string problem{};
    /// The user's word in the portal's permission store.
    std::optional<bool> permission{};
    DesktopNotificationSettings desktop{};
};

/// The settings, and for each of them, in the order of their declaration, from what it is known.
struct NotificationVerdict {
    NotificationSettings settings{};
    std::array<std::string, 10> sources{};
};
[[nodiscard]] NotificationVerdict judge(const NotificationEvidence& evidence);

/// Asks, over a connection of its own, for at most so many seconds. Calls back once, later, on the main thread. For use
/// on the main thread.
void inquireAboutNotifications(std::string applicationIdentifier, double seconds,
                               std::move_only_function<void(NotificationEvidence)> handler);
inline constexpr double notificationInquiryLimit = 2;

}  // namespace kestrel::platform
