#pragma once

#include <kestrel/platform/user_notification_center.h>

namespace kestrel {

/// The desktop's notification server (org.freedesktop.Notifications) and what else has a say, asked over D-Bus. Each
/// question has a connection of its own to the session bus, for no part of the program may end when the bus goes, and
/// is answered within two seconds. Answers come on the main thread, each once, also when the centre is destroyed
/// meanwhile.
///
/// Nothing is known, and every setting is its first value, when there is no session bus, when no server is on it, or
/// when it does not answer in time. Otherwise:
///
///     setting                          from
///     authorizationStatus              denied when the portal's permission store has the word "no" for this
///                                      application (table "notifications", id "notification"), or the desktop's
///                                      setting `enable` of this application is off; else authorized
///     alertSetting                     disabled when the desktop's `show-banners`, or the application's, is off;
///                                      else enabled
///     soundSetting                     the server's capability "sound"; disabled when the application's
///                                      `enable-sound-alerts` is off
///     notificationCenterSetting        the server's capability "persistence"
///     lockScreenSetting                the desktop's `show-in-lock-screen`, and the application's; not supported when
///                                      the desktop has none
///     alertStyle                       banner while alerts are enabled: servers let notifications go away; else none
///     showPreviewsSetting              when authenticated if the application's `details-in-lock-screen` is off; else
///                                      always
///     badgeSetting, criticalAlertSetting, providesAppNotificationSettings
///                                      cannot be known: not supported, no
///
/// What is enabled becomes disabled when authorization is denied. The desktop's settings are those of the schemas
/// org.gnome.desktop.notifications and its .application. What somebody has set there counts everywhere; what nobody has
/// set has its default value where the desktop is GNOME or made of it, and elsewhere says nothing.
///
/// The free desktop does not ask the user: a request is granted when the status is authorized, whatever it asks for.
/// Otherwise its error is notificationsNotAllowed.
class DBusNotificationCenter final : public UserNotificationCenter {
  public:
    void getNotificationSettings(SettingsHandler completionHandler) override;
    void requestAuthorization(NotificationAuthorizationOptions options,
                              AuthorizationHandler completionHandler) override;
};

}  // namespace kestrel
