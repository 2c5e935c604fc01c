#include <kestrel/services/core_location_geocoder_service.h>
#include <kestrel/services/live_reachability_service.h>
#include <kestrel/services/local_clock_service.h>
#include <kestrel/services/local_maps_service.h>
#include <kestrel/services/local_notifications_service.h>
#include <kestrel/services/local_url_service.h>
#include <kestrel/services/user_defaults_service.h>
#include <kestrel/testing/test_services_module.h>

namespace kestrel {

void TestServicesModule::registerIn(Runtime& runtime) const {
    runtime[services::geocoder] = std::make_shared<CoreLocationGeocoderService>(geocoding.factory());
    runtime[services::systemClock] = std::make_shared<LocalClockService>(mainQueue);
    runtime[services::systemDefaults] = std::make_shared<UserDefaultsService>(userDefaults);
    runtime[services::systemMaps] = std::make_shared<LocalMapsService>(maps);
    runtime[services::systemNotifications] = std::make_shared<LocalNotificationsService>(notifications, mainQueue);
    runtime[services::systemURL] = std::make_shared<LocalURLService>(workspace);
    runtime[services::reachability] = std::make_shared<LiveReachabilityService>(network);
}

}  // namespace kestrel
