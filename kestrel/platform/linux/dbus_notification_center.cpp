#include <kestrel/localization/localized.h>
#include <kestrel/platform/linux/dbus_notification_center.h>
#include <kestrel/platform/linux/notification_inquiry.h>
#include <kestrel/platform/system.h>
#include <string>
#include <utility>

namespace kestrel {

using platform::NotificationEvidence;

void DBusNotificationCenter::getNotificationSettings(SettingsHandler completionHandler) {
    platform::inquireAboutNotifications(
        platform::applicationIdentity().identifier, platform::notificationInquiryLimit,
        [handler = std::move(completionHandler)](const NotificationEvidence& evidence) mutable {
            handler(platform::judge(evidence).settings);
        });
}

void DBusNotificationCenter::requestAuthorization(NotificationAuthorizationOptions /*options*/,
                                                  AuthorizationHandler completionHandler) {
    platform::inquireAboutNotifications(
        platform::applicationIdentity().identifier, platform::notificationInquiryLimit,
        [handler = std::move(completionHandler)](const NotificationEvidence& evidence) mutable {
            auto verdict = platform::judge(evidence);
            if (verdict.settings.authorizationStatus == NotificationAuthorizationStatus::authorized) {
                return handler(true, std::nullopt);
            }
            handler(false, PlatformError{
                               .domain = std::string(userNotificationErrorDomain),
                               .code = UserNotificationErrorCode::notificationsNotAllowed().code,
                               .localizedDescription = localized("Notifications of this application are not allowed.",
                                                                 "Error of asking the desktop for notifications"),
                               .localizedFailureReason = std::move(verdict.sources.front())});
        });
}

}  // namespace kestrel
