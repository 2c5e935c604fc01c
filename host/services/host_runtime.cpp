#include <host/services/host_runtime.h>
#include <host/services/host_services_module.h>
#include <host/services/late_system_services.h>
#include <host/session/session_module.h>

#include <utility>

namespace kestrel::host {

Runtime makeHostRuntime(const std::filesystem::path& database, std::optional<std::string> user) {
    return Runtime(LateSystemServicesModule{},
                   HostServicesModule{.database = database, .user = std::make_shared<CurrentUser>(std::move(user))},
                   SessionModule{});
}

}  // namespace kestrel::host
