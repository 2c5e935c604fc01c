#include <kestrel/access/permission_checker.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/localization/resource_bundle.h>
#include <kestrel/records/company.h>
#include <kestrel/services/system_services_module.h>
#include <kestrel/testing/test_services_module.h>

#include <cstdio>

#include "host_record.h"

int main() {
    const kestrel::Company company{.organizationID = 7, .name = "Kan-code"};
    const auto text = kestrel::encodeJSON(company);
    if (!text || kestrel::decodeJSON<kestrel::Company>(*text) != company) return 1;
    const outside::Vehicle vehicle{.vehicleID = 3, .plate = "KE-1", .seats = 5};
    const auto vehicleText = kestrel::encodeJSON(vehicle);
    if (!vehicleText || kestrel::decodeJSON<outside::Vehicle>(*vehicleText) != vehicle) return 1;
    std::printf("%s %s %s\n", kestrel::AnyObjectID(company.objectID()).stringValue().c_str(),
                kestrel::AnyObjectID(vehicle.objectID()).stringValue().c_str(),
                kestrel::PermissionChecker::empty().visibility(company).localizedDisplayName().c_str());
    const kestrel::Runtime runtime = kestrel::Runtime::makeSystem();
    const kestrel::Runtime tested{kestrel::TestServicesModule()};
    std::printf("%zu %zu\n", runtime.installedProtocols().size(), tested.installedProtocols().size());
    std::printf("%s\n", kestrel::ResourceBundle::directory().c_str());
    return 0;
}
