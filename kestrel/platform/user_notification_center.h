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
    none = 0,
    badge = 1,
    sound = 2,
    alert = 4,
    criticalAlert = 16,
    providesAppNotificationSettings = 32,
    provisional = 64,
};
[[nodiscard]] constexpr NotificationAuthorizationOptions operator|(NotificationAuthorizationOptions a,
                                                                   NotificationAuthorizationOptions b) noexcept {
    return static_cast<NotificationAuthorizationOptions>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
[[nodiscard]] constexpr bool contains(NotificationAuthorizationOptions all,
                                      NotificationAuthorizationOptions one) noexcept {
    return (static_cast<unsigned>(all) & static_cast<unsigned>(one)) == static_cast<unsigned>(one);
}

/// The domain of errors that a UserNotificationCenter reports about notifications; their codes are
/// UserNotificationErrorCode.
inline constexpr std::string_view userNotificationErrorDomain = "KestrelService.UserNotification";

/// The number of such an error.
struct UserNotificationErrorCode {
    std::int64_t code{};

    /// Notifications of this application are not allowed.
    [[nodiscard]] static constexpr UserNotificationErrorCode notificationsNotAllowed() { return {1}; }
    friend bool operator==(const UserNotificationErrorCode&, const UserNotificationErrorCode&) = default;
};

[[nodiscard]] inline PlatformError platformError(UserNotificationErrorCode error) {
    return error_detail::plainForm("UserNotification", error.code);
}

/// The desktop's notifications. For use on the main thread; each completion is called once, later, on any thread.
class UserNotificationCenter {
  public:
    using SettingsHandler = std::move_only_function<void(NotificationSettings settings)>;
    using AuthorizationHandler = std::move_only_function<void(bool isGranted, std::optional<PlatformError> error)>;

    UserNotificationCenter() = default;
    UserNotificationCenter(const UserNotificationCenter&) = delete;
    UserNotificationCenter& operator=(const UserNotificationCenter&) = delete;
    virtual ~UserNotificationCenter() = default;

    virtual void getNotificationSettings(SettingsHandler completionHandler) = 0;
    /// Asks the user, where the desktop can; the user's earlier word counts.
    virtual void requestAuthorization(NotificationAuthorizationOptions options,
                                      AuthorizationHandler completionHandler) = 0;
};

}  // namespace kestrel
