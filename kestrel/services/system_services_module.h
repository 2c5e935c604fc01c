#pragma once

#include <kestrel/runtime/runtime.h>
#include <string>

namespace kestrel {

/// The services that the library has for the system it runs on. Installs, in this order, new ones of
///
///     AddressGeocoderService       CoreLocationGeocoderService, with platform::makeGeocoder
///     SystemClockService           LocalClockService, on the main queue
///     SystemUserDefaultsService    UserDefaultsService, on the standard user defaults
///     SystemMapsService            LocalMapsService
///     SystemNotificationsService   LocalNotificationsService
///     SystemURLService             LocalURLService
///
/// and nothing else. For use on the main thread.
struct SystemServicesModule {
    /// What Runtime::moduleNames tells.
    std::string moduleName = "SystemServices";

    /// Installs them, in the place of what was installed before.
    void registerIn(Runtime& runtime) const;

    friend bool operator==(const SystemServicesModule&, const SystemServicesModule&) = default;
};

}  // namespace kestrel
