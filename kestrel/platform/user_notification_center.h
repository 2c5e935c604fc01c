#pragma once

#include <kestrel/foundation/any_error.h>
#include <kestrel/foundation/platform_error.h>
#include <kestrel/platform/notification_settings.h>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace kestrel {

/// What an application asks to be allowed; any number of them, joined by `|`.
enum class NotificationAuthorizationOptions : std::uint8_t {
    none = 0,                              ///< nothing
    badge = 1,                             ///< a number on the application's icon
    sound = 2,                             ///< a sound
    alert = 4,                             ///< to show on the screen
    criticalAlert = 16,                    ///< to interrupt the user who is not to be disturbed
    providesAppNotificationSettings = 32,  ///< the application has a page of its own for these settings
    provisional = 64,                      ///< to notify quietly without asking first
};
/// Both.
[[nodiscard]] constexpr NotificationAuthorizationOptions operator|(NotificationAuthorizationOptions a,
                                                                   NotificationAuthorizationOptions b) noexcept {
    return static_cast<NotificationAuthorizationOptions>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
/// Whether all of `one` is among `all`; true for `none`.
[[nodiscard]] constexpr bool contains(NotificationAuthorizationOptions all,
                                      NotificationAuthorizationOptions one) noexcept {
    return (static_cast<unsigned>(all) & static_cast<unsigned>(one)) == static_cast<unsigned>(one);
}

/// The domain of errors that a UserNotificationCenter reports about notifications; their codes are
/// UserNotificationErrorCode.
inline constexpr std::string_view userNotificationErrorDomain = "KestrelService.UserNotification";

/// The number of such an error.
struct UserNotificationErrorCode {
    /// Counted by userNotificationErrorDomain.
    std::int64_t code{};

    /// Notifications of this application are not allowed.
    [[nodiscard]] static constexpr UserNotificationErrorCode notificationsNotAllowed() { return {1}; }
    friend bool operator==(const UserNotificationErrorCode&, const UserNotificationErrorCode&) = default;
};

/// Of that domain and code, with a text in the current language.
[[nodiscard]] inline PlatformError platformError(UserNotificationErrorCode error) {
    return error_detail::plainForm("UserNotification", error.code);
}

/// The desktop's notifications. For use on the main thread; each completion is called once, later, on any thread.
class UserNotificationCenter {
  public:
    /// Takes what the user has allowed.
    using SettingsHandler = std::move_only_function<void(NotificationSettings settings)>;
    /// Takes the user's word; an error says why there is none.
    using AuthorizationHandler = std::move_only_function<void(bool isGranted, std::optional<PlatformError> error)>;

    UserNotificationCenter() = default;
    UserNotificationCenter(const UserNotificationCenter&) = delete;
    UserNotificationCenter& operator=(const UserNotificationCenter&) = delete;
    virtual ~UserNotificationCenter() = default;

    /// What the user has allowed, as it is at that moment.
    virtual void getNotificationSettings(SettingsHandler completionHandler) = 0;
    /// Asks the user, where the desktop can; the user's earlier word counts.
    virtual void requestAuthorization(NotificationAuthorizationOptions options,
                                      AuthorizationHandler completionHandler) = 0;
};

}  // namespace kestrel
