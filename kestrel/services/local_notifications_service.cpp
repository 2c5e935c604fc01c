#include <kestrel/services/local_notifications_service.h>

namespace kestrel {

namespace {

/// Sends the settings as they are now, and ends.
template <class Failure>
void sendSettings(const std::shared_ptr<UserNotificationCenter>& center,
                  const Emitter<NotificationSettings, Failure>& emitter) {
    center->getNotificationSettings([emitter](const NotificationSettings& settings) {
        emitter.send(settings);
        emitter.finish();
    });
}

}  // namespace

AnyPublisher<NotificationSettings> LocalNotificationsService::readSettings() {
    return create<NotificationSettings>([center = center_](const Emitter<NotificationSettings, Never>& emitter) {
               sendSettings(center, emitter);
               return AnyCancellable();
           })
        .receiveOn(mainQueue_);
}

AnyPublisher<NotificationSettings, UserNotificationErrorCode> LocalNotificationsService::requestAuthorization(
    NotificationAuthorizationOptions options) {
    using Settings = Emitter<NotificationSettings, UserNotificationErrorCode>;
    return create<NotificationSettings, UserNotificationErrorCode>([center = center_, mainQueue = mainQueue_,
                                                                    options](const Settings& emitter) {
               center->requestAuthorization(
                   options, [center, mainQueue, emitter](bool isGranted, const std::optional<PlatformError>& error) {
                       // The centre calls back on any thread, and is asked on the main one.
                       if (isGranted) return mainQueue->schedule([center, emitter] { sendSettings(center, emitter); });
                       if (error && error->domain == userNotificationErrorDomain)
                           return emitter.fail(UserNotificationErrorCode{error->code});
                       emitter.fail(UserNotificationErrorCode::notificationsNotAllowed());
                   });
               return AnyCancellable();
           })
        .receiveOn(mainQueue_);
}

}  // namespace kestrel
