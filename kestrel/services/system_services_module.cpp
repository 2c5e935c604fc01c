#include <kestrel/platform/system.h>
#include <kestrel/services/core_location_geocoder_service.h>
#include <kestrel/services/local_clock_service.h>
#include <kestrel/services/local_maps_service.h>
#include <kestrel/services/local_notifications_service.h>
#include <kestrel/services/local_url_service.h>
#include <kestrel/services/system_services_module.h>
#include <kestrel/services/user_defaults_service.h>
#include <memory>

namespace kestrel {

void SystemServicesModule::registerIn(Runtime& runtime) const {
    runtime[services::geocoder] =
        std::make_shared<CoreLocationGeocoderService>([] { return platform::makeGeocoder(); });
    runtime[services::systemClock] = std::make_shared<LocalClockService>(platform::mainQueue());
    runtime[services::systemDefaults] = std::make_shared<UserDefaultsService>(platform::standardUserDefaults());
    runtime[services::systemMaps] = std::make_shared<LocalMapsService>(platform::mapApplication());
    runtime[services::systemNotifications] =
        std::make_shared<LocalNotificationsService>(platform::userNotificationCenter(), platform::mainQueue());
    runtime[services::systemURL] = std::make_shared<LocalURLService>(platform::workspace());
}

Runtime Runtime::makeSystem() {
    return Runtime(SystemServicesModule{});
}

}  // namespace kestrel
