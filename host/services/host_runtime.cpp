#include <host/failure.h>
#include <host/services/host_runtime.h>
#include <host/services/host_services_module.h>
#include <host/services/late_system_services.h>
#include <host/session/session_module.h>

#include <system_error>
#include <utility>

namespace kestrel::host {

Runtime makeHostRuntime(const std::filesystem::path& database, std::optional<std::string> user) {
    return Runtime(LateSystemServicesModule{},
                   HostServicesModule{.database = database, .user = std::make_shared<CurrentUser>(std::move(user))},
                   SessionModule{});
}

Viewer viewerOf(const std::string& database, const std::string& user) {
    if (!user.empty()) {
        if (database.empty()) throw WrongUsage("--database is required with --user");
        return {.database = database, .user = user};
    }
    const Runtime runtime(LateSystemServicesModule{}, SessionModule{});
    resumeSession(runtime);
    const auto membership = runtime[login].signedInTo();
    if (!membership) throw WrongUsage("--user is required, as nobody is signed in; see `kestrel login --help`");
    std::error_code problem;
    if (!database.empty() && !std::filesystem::equivalent(database, membership->database, problem))
        throw WrongUsage("--user is required for another database than that of " + membership->companyName);
    return {.database = membership->database, .user = membership->username};
}

Runtime makeUserRuntime(const std::string& database, const std::string& user) {
    const Viewer viewer = viewerOf(database, user);
    return makeHostRuntime(viewer.database, viewer.user);
}

}  // namespace kestrel::host
