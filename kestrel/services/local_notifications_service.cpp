#include <kestrel/services/local_notifications_service.h>

namespace kestrel {

namespace {

/// Sends the settings as they are now, and ends.
template <class Failure>
void sendSettings(UserNotificationCenter& center, const Emitter<NotificationSettings, Failure>& emitter) {
    center.getNotificationSettings([emitter](const NotificationSettings& settings) {
        emitter.send(settings);
        emitter.finish();
    });
}

}  // namespace

AnyPublisher<NotificationSettings> LocalNotificationsService::readSettings() {
    return create<NotificationSettings>([center = center_](const Emitter<NotificationSettings, Never>& emitter) {
               sendSettings(*center, emitter);
               return AnyCancellable();
           })
        .receiveOn(mainQueue_);
}

AnyPublisher<NotificationSettings, UserNotificationErrorCode> LocalNotificationsService::requestAuthorization(
    NotificationAuthorizationOptions options) {
    using Settings = Emitter<NotificationSettings, UserNotificationErrorCode>;
    return create<NotificationSettings, UserNotificationErrorCode>(
               [center = center_, options](const Settings& emitter) {
                   center->requestAuthorization(
                       options, [center, emitter](bool isGranted, const std::optional<PlatformError>& error) {
                           if (isGranted) return sendSettings(*center, emitter);
                           if (error && error->domain == userNotificationErrorDomain)
                               return emitter.fail(UserNotificationErrorCode{error->code});
                           emitter.fail(UserNotificationErrorCode::notificationsNotAllowed());
                       });
                   return AnyCancellable();
               })
        .receiveOn(mainQueue_);
}

}  // namespace kestrel
