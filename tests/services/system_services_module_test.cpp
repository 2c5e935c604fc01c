#include <gtest/gtest.h>
#include <kestrel/services/core_location_geocoder_service.h>
#include <kestrel/services/live_reachability_service.h>
#include <kestrel/services/local_clock_service.h>
#include <kestrel/services/local_maps_service.h>
#include <kestrel/services/local_notifications_service.h>
#include <kestrel/services/local_url_service.h>
#include <kestrel/services/system_services_module.h>
#include <kestrel/services/user_defaults_service.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

template <class Implementation, class Protocol>
bool isServedBy(const Runtime& runtime, ServiceKey<Protocol> key) {
    return std::dynamic_pointer_cast<Implementation>(runtime.find(key)) != nullptr;
}

TEST(SystemServicesModule, installsTheSixServicesOfTheSystemAndNothingElse) {
    Runtime runtime = Runtime::makeSystem();
    EXPECT_EQ(runtime.moduleNames(), std::vector<std::string>{"SystemServices"});
    EXPECT_EQ(
        runtime.installedProtocols(),
        (std::vector<std::string>{"AddressGeocoderService", "SystemClockService", "SystemMapsService",
                                  "SystemNotificationsService", "SystemURLService", "SystemUserDefaultsService"}));
    EXPECT_TRUE(isServedBy<CoreLocationGeocoderService>(runtime, services::geocoder));
    EXPECT_TRUE(isServedBy<LocalClockService>(runtime, services::systemClock));
    EXPECT_TRUE(isServedBy<UserDefaultsService>(runtime, services::systemDefaults));
    EXPECT_TRUE(isServedBy<LocalMapsService>(runtime, services::systemMaps));
    EXPECT_TRUE(isServedBy<LocalNotificationsService>(runtime, services::systemNotifications));
    EXPECT_TRUE(isServedBy<LocalURLService>(runtime, services::systemURL));
    EXPECT_EQ(runtime.find(services::reachability), nullptr);

    const auto first = runtime.find(services::geocoder);
    SystemServicesModule{}.registerIn(runtime);
    EXPECT_NE(runtime.find(services::geocoder), first) << "registering again replaces";
    EXPECT_EQ(runtime.installedProtocols().size(), 6U);
    EXPECT_LT(Date::now() - runtime[services::systemClock].now(), 60);
    EXPECT_EQ(runtime.featureEnvironment(), FeatureEnvironment::current());
}

}  // namespace
