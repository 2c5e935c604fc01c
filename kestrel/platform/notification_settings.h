#pragma once

#include <cstdint>

namespace kestrel {

/// Whether the user allows an application to show notifications.
enum class NotificationAuthorizationStatus : std::uint8_t {
    notDetermined,  ///< nobody has said, or it cannot be known
    denied,         ///< the user does not
    authorized,     ///< the user does
    provisional,    ///< quietly, until the user decides
    ephemeral,      ///< for a limited time
};

/// One way of notifying.
enum class NotificationSetting : std::uint8_t {
    notSupported,  ///< not there, or it cannot be known
    disabled,      ///< the user has switched it off
    enabled,       ///< the user has switched it on
};

/// How a notification shows on the screen.
enum class NotificationAlertStyle : std::uint8_t {
    none,    ///< not at all
    banner,  ///< goes away by itself
    alert,   ///< stays until the user acts
};

/// When the contents of a notification are shown.
enum class NotificationShowPreviewsSetting : std::uint8_t {
    always,             ///< also on a locked screen
    whenAuthenticated,  ///< when the screen is unlocked
    never               ///< the user has to open it
};

/// What the user has allowed an application, and what the desktop can do. Without anything said: nothing is known.
struct NotificationSettings {
    /// Whether the user allows notifications at all.
    NotificationAuthorizationStatus authorizationStatus{};
    /// Plays a sound.
    NotificationSetting soundSetting{};
    /// Shows a number on the application's icon.
    NotificationSetting badgeSetting{};
    /// Shows on the screen.
    NotificationSetting alertSetting{};
    /// Kept in the list of notifications.
    NotificationSetting notificationCenterSetting{};
    /// Shows on a locked screen.
    NotificationSetting lockScreenSetting{};
    /// How it shows on the screen.
    NotificationAlertStyle alertStyle{};
    /// When its contents show.
    NotificationShowPreviewsSetting showPreviewsSetting{};
    /// May interrupt the user who is not to be disturbed.
    NotificationSetting criticalAlertSetting{};
    /// The application has a page of its own for these settings.
    bool providesAppNotificationSettings{};

    friend bool operator==(const NotificationSettings&, const NotificationSettings&) = default;
};

}  // namespace kestrel
