#pragma once

#include <cstdint>

namespace kestrel {

/// Whether the user allows an application to show notifications.
enum class NotificationAuthorizationStatus : std::uint8_t {
    notDetermined,  ///< nobody has said, or it cannot be known
    denied,
    authorized,
    provisional,
    ephemeral,
};

/// One way of notifying.
enum class NotificationSetting : std::uint8_t {
    notSupported,  ///< not there, or it cannot be known
    disabled,
    enabled,
};

enum class NotificationAlertStyle : std::uint8_t {
    none,
    banner,  ///< goes away by itself
    alert,   ///< stays until the user acts
};

/// When the contents of a notification are shown.
enum class NotificationShowPreviewsSetting : std::uint8_t { always, whenAuthenticated, never };

/// What the user has allowed an application, and what the desktop can do. Without anything said: nothing is known.
struct NotificationSettings {
    NotificationAuthorizationStatus authorizationStatus{};
    NotificationSetting soundSetting{};
    NotificationSetting badgeSetting{};
    NotificationSetting alertSetting{};
    /// Kept in the list of notifications.
    NotificationSetting notificationCenterSetting{};
    NotificationSetting lockScreenSetting{};
    NotificationAlertStyle alertStyle{};
    NotificationShowPreviewsSetting showPreviewsSetting{};
    /// May interrupt the user who is not to be disturbed.
    NotificationSetting criticalAlertSetting{};
    /// The application has a page of its own for these settings.
    bool providesAppNotificationSettings{};

    friend bool operator==(const NotificationSettings&, const NotificationSettings&) = default;
};

}  // namespace kestrel
