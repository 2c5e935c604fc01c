#pragma once

#include <kestrel/foundation/required.h>
#include <kestrel/platform/user_notification_center.h>
#include <kestrel/reactive/scheduler.h>
#include <kestrel/services/system_notifications_service.h>
#include <memory>
#include <utility>

namespace kestrel {

/// The user's word on notifications, as the desktop has it.
class LocalNotificationsService final : public SystemNotificationsService {
  public:
    /// Values are delivered on the main queue, wherever the centre calls back.
    LocalNotificationsService(std::shared_ptr<UserNotificationCenter> center, std::shared_ptr<Scheduler> mainQueue)
        : center_(required(std::move(center), "The notification center")),
          mainQueue_(required(std::move(mainQueue), "The main queue of notifications")) {}

    [[nodiscard]] AnyPublisher<NotificationSettings> readSettings() override;
    [[nodiscard]] AnyPublisher<NotificationSettings, UserNotificationErrorCode> requestAuthorization(
        NotificationAuthorizationOptions options) override;

  private:
    std::shared_ptr<UserNotificationCenter> center_;
    std::shared_ptr<Scheduler> mainQueue_;
};

}  // namespace kestrel
