#pragma once

#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/url.h>
#include <kestrel/platform/geocoder.h>
#include <kestrel/platform/main_queue.h>
#include <kestrel/platform/reachability.h>
#include <kestrel/platform/user_defaults_store.h>
#include <kestrel/platform/user_notification_center.h>
#include <kestrel/platform/workspace.h>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

/// The parts of the desktop that this program runs on. The library starts no thread and no loop: the host runs the main
/// loop, and all that happens later happens there.
namespace kestrel::platform {

/// Who this program is to the desktop, which keeps settings by application.
struct ApplicationIdentity {
    /// In reverse domain order, "com.example.Crm", the name of its .desktop file. Names the folder of its preferences.
    std::string identifier{};
    /// For people.
    std::string name{};
};

/// By default both are the name of the program's file.
[[nodiscard]] ApplicationIdentity applicationIdentity();
/// Says who the program is; before anything else here is used.
void setApplicationIdentity(ApplicationIdentity identity);

/// The scheduler on the default main loop of the process, whoever runs it: the host, GTK, Qt. One for the process.
[[nodiscard]] std::shared_ptr<MainQueue> mainQueue();
/// Runs the main loop until `quitMainLoop` is called; for programs without a loop of their own. One may run within
/// another.
void runMainLoop();
/// Ends the innermost loop that runs; nothing when none does. May be called from any thread.
void quitMainLoop();

/// The file of the user's preferences for this application.
[[nodiscard]] std::filesystem::path standardUserDefaultsFile();
/// The user's preferences for this application. One for the process. A file that cannot be opened leaves a store that
/// is empty and refuses to be written, with the reason.
[[nodiscard]] std::shared_ptr<UserDefaultsStore> standardUserDefaults();
/// The preferences in a file, which is made by the first write.
[[nodiscard]] std::expected<std::shared_ptr<UserDefaultsStore>, PlatformError> openUserDefaults(
    const std::filesystem::path& file);

/// A server that finds the places of addresses, by the protocol of Nominatim's `/search`.
struct GeocodingServer {
    /// What stands before "/search": "https://geocoding.example.com".
    URL baseURL;
    /// In how many seconds it has to answer.
    double timeout{15};
    /// The language of names in the answer, as a BCP 47 tag; the user's when empty.
    std::string language{};
};
/// A geocoder that asks the server.
[[nodiscard]] std::unique_ptr<GeocoderProtocol> makeGeocoder(const GeocodingServer& server);
/// A geocoder that asks the server that the preference "GeocodingServer" of the standard user defaults names at that
/// moment. Without one each geocode fails, and says so.
[[nodiscard]] std::unique_ptr<GeocoderProtocol> makeGeocoder();
/// The name of that preference, a text: the base URL of the server.
inline constexpr std::string_view geocodingServerKey = "GeocodingServer";

/// The applications of the desktop. One for the process.
[[nodiscard]] std::shared_ptr<Workspace> workspace();
/// The desktop's maps. One for the process.
[[nodiscard]] std::shared_ptr<MapApplication> mapApplication();
/// The desktop's notifications. One for the process.
[[nodiscard]] std::shared_ptr<UserNotificationCenter> userNotificationCenter();
/// A new source of reachability.
[[nodiscard]] std::shared_ptr<ReachabilityProtocol> makeReachability();

}  // namespace kestrel::platform
