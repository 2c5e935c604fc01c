#pragma once

#include <kestrel/runtime/runtime.h>
#include <kestrel/testing/fake_desktop.h>
#include <kestrel/testing/fake_geocoder.h>
#include <kestrel/testing/in_memory_user_defaults.h>
#include <kestrel/testing/virtual_main_queue.h>
#include <memory>
#include <string>

namespace kestrel {

/// The services of SystemServicesModule, and reachability, without a desktop: the library's own implementations on top
/// of stand-ins, which the test holds by the module.
///
///     TestServicesModule desktop;
///     Runtime runtime(desktop);
///     runtime[services::contacts] = std::make_shared<RecordingContactsService>();
///     desktop.mainQueue->advanceBy(60);
struct TestServicesModule {
    /// What Runtime::moduleNames tells.
    std::string moduleName = "TestServices";
    /// The time, which stands still, and all that is called back later.
    std::shared_ptr<VirtualMainQueue> mainQueue = std::make_shared<VirtualMainQueue>();
    /// The preferences.
    std::shared_ptr<InMemoryUserDefaults> userDefaults = std::make_shared<InMemoryUserDefaults>();
    /// The applications of the desktop.
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>(mainQueue);
    /// The maps of the desktop.
    std::shared_ptr<FakeMapApplication> maps = std::make_shared<FakeMapApplication>();
    /// The notifications of the desktop.
    std::shared_ptr<FakeUserNotificationCenter> notifications = std::make_shared<FakeUserNotificationCenter>(mainQueue);
    /// The network.
    std::shared_ptr<FakeReachability> network = std::make_shared<FakeReachability>();
    /// The geocoders.
    FakeGeocoding geocoding{};

    /// Installs the services, in the place of what was installed before.
    void registerIn(Runtime& runtime) const;
};

}  // namespace kestrel
