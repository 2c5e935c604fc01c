#pragma once

#include <kestrel/platform/user_notification_center.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <memory>

namespace kestrel {

/// The user's word on notifications. Values are delivered on the main thread.
class SystemNotificationsService : public ServiceProtocol {
  public:
    /// What the user allows, as it is now.
    [[nodiscard]] virtual AnyPublisher<NotificationSettings> readSettings() = 0;
    /// Asks the user; the settings when they allow it.
    [[nodiscard]] virtual AnyPublisher<NotificationSettings, UserNotificationErrorCode> requestAuthorization(
        NotificationAuthorizationOptions options) = 0;
};

template <>
class Forwarding<SystemNotificationsService> : public SystemNotificationsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SystemNotificationsService> target() const = 0;

    [[nodiscard]] AnyPublisher<NotificationSettings> readSettings() override { return target()->readSettings(); }
    [[nodiscard]] AnyPublisher<NotificationSettings, UserNotificationErrorCode> requestAuthorization(
        NotificationAuthorizationOptions options) override {
        return target()->requestAuthorization(options);
    }
};

namespace services {
inline constexpr ServiceKey<SystemNotificationsService> systemNotifications;
}

}  // namespace kestrel
