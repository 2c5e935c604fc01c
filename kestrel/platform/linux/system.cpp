#include <kestrel/platform/linux/curl_geocoder.h>
#include <kestrel/platform/linux/dbus_notification_center.h>
#include <kestrel/platform/linux/gio_workspace.h>
#include <kestrel/platform/linux/glib_main_queue.h>
#include <kestrel/platform/linux/network_reachability.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <kestrel/platform/system.h>
#include <pwd.h>
#include <unistd.h>
#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace kestrel::platform {

namespace {

namespace fs = std::filesystem;

// What there is one of for the process is made when it is first asked for, and never destroyed: other things that end
// with the process may still use it.

struct Identity {
    std::mutex mutex{};
    ApplicationIdentity identity{};
};

Identity& identityOfProcess() {
    static auto* const identity = new Identity;
    return *identity;
}

std::string programName() {
    std::error_code error;
    auto name = fs::read_symlink("/proc/self/exe", error).filename().native();
    return error || name.empty() ? "kestrel" : name;
}

/// The loops that runMainLoop runs, one within the other.
struct Loops {
    std::mutex mutex{};
    std::vector<GMainLoop*> running{};
};

Loops& loops() {
    static auto* const loops = new Loops;
    return *loops;
}

fs::path homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
    const passwd* user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

}  // namespace

ApplicationIdentity applicationIdentity() {
    auto& [mutex, identity] = identityOfProcess();
    const std::scoped_lock lock(mutex);
    if (identity.identifier.empty()) identity.identifier = programName();
    if (identity.name.empty()) identity.name = programName();
    return identity;
}

void setApplicationIdentity(ApplicationIdentity identity) {
    auto& process = identityOfProcess();
    const std::scoped_lock lock(process.mutex);
    process.identity = std::move(identity);
}

std::shared_ptr<MainQueue> mainQueue() {
    static auto* const queue = new std::shared_ptr<MainQueue>(std::make_shared<GLibMainQueue>());
    return *queue;
}

void runMainLoop() {
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    auto& [mutex, running] = loops();
    {
        const std::scoped_lock lock(mutex);
        running.push_back(loop);
    }
    g_main_loop_run(loop);
    {
        const std::scoped_lock lock(mutex);
        std::erase(running, loop);
    }
    g_main_loop_unref(loop);
}

void quitMainLoop() {
    auto& [mutex, running] = loops();
    const std::scoped_lock lock(mutex);
    if (!running.empty()) g_main_loop_quit(running.back());
}

fs::path standardUserDefaultsFile() {
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    // A relative path there does not count, by the XDG rules for base directories.
    const fs::path folder =
        configured != nullptr && *configured == '/' ? fs::path(configured) : homeFolder() / ".config";
    // The identifier names one folder, whatever it is.
    auto name = applicationIdentity().identifier;
    std::ranges::replace(name, '/', '_');
    if (name.starts_with('.')) name.front() = '_';
    return folder / name / "defaults.sqlite";
}

std::shared_ptr<UserDefaultsStore> standardUserDefaults() {
    static auto* const store =
        new std::shared_ptr<UserDefaultsStore>(SQLiteUserDefaults::openAnyway(standardUserDefaultsFile()));
    return *store;
}

std::expected<std::shared_ptr<UserDefaultsStore>, PlatformError> openUserDefaults(const fs::path& file) {
    return SQLiteUserDefaults::open(file);
}

std::unique_ptr<GeocoderProtocol> makeGeocoder(const GeocodingServer& server) {
    return std::make_unique<CurlGeocoder>([server] { return std::optional(server); });
}

std::unique_ptr<GeocoderProtocol> makeGeocoder() {
    return std::make_unique<CurlGeocoder>([]() -> std::optional<GeocodingServer> {
        auto url = standardUserDefaults()->url(geocodingServerKey);
        if (!url) return std::nullopt;
        return GeocodingServer{.baseURL = std::move(*url)};
    });
}

std::shared_ptr<Workspace> workspace() {
    static auto* const workspace = new std::shared_ptr<Workspace>(std::make_shared<GIOWorkspace>());
    return *workspace;
}

std::shared_ptr<MapApplication> mapApplication() {
    static auto* const maps =
        new std::shared_ptr<MapApplication>(std::make_shared<GeoURIMapApplication>(platform::workspace()));
    return *maps;
}

std::shared_ptr<UserNotificationCenter> userNotificationCenter() {
    static auto* const center = new std::shared_ptr<UserNotificationCenter>(std::make_shared<DBusNotificationCenter>());
    return *center;
}

std::shared_ptr<ReachabilityProtocol> makeReachability() {
    return std::make_shared<NetworkReachability>();
}

}  // namespace kestrel::platform
