#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/bundle_location.h>
#include <kestrel/localization/bundle_paths.h>
#include <kestrel/localization/resource_bundle.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>

namespace kestrel::localization {

namespace {

using std::filesystem::path;

constexpr std::string_view markerName = "bundle.conf";

std::string bundleName() {
    return std::string{ResourceBundle::identifier} + ".bundle";
}

// The folder of the file that contains this code: the shared library, or the program it is linked into. Empty if
// unknown.
path libraryFolder() {
    static const char ownSymbol = 0;
    Dl_info info{};
    if (dladdr(&ownSymbol, &info) == 0 || info.dli_fname == nullptr) return {};
    // A program that was found through PATH is known by its bare name, which leads nowhere.
    if (!std::string_view{info.dli_fname}.contains('/')) return {};
    std::error_code ignored;
    return std::filesystem::canonical(info.dli_fname, ignored).parent_path();
}

path executableFolder() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

struct Marker {
    std::string identifier;
    std::vector<std::string> languages;
};

// Lines of KEY=VALUE; other lines and unknown keys are passed over. A file that is not there is a marker of nothing.
Marker readMarker(const path& file) {
    Marker marker;
    std::ifstream stream{file};
    for (std::string line; std::getline(stream, line);) {
        const auto equals = line.find('=');
        if (equals == std::string::npos) continue;
        const std::string_view key = std::string_view{line}.substr(0, equals);
        const std::string value = line.substr(equals + 1);
        if (key == "identifier") {
            marker.identifier = value;
        } else if (key == "languages") {
            std::istringstream words{value};
            for (std::string language; words >> language;)
                marker.languages.push_back(language);
        }
    }
    std::ranges::sort(marker.languages);
    return marker;
}

}  // namespace

std::vector<path> bundlePlaces(const path& hostDirectory) {
    std::vector<path> places;
    const auto add = [&places](const path& place) {
        path normal = place.lexically_normal();
        // "resources/" and "resources" are one place.
        if (!normal.has_filename()) normal = normal.parent_path();
        if (std::ranges::find(places, normal) == places.end()) places.push_back(std::move(normal));
    };
    // What people name may be the bundle or the folder that holds it.
    const auto addNamed = [&add](const path& named) {
        if (named.empty()) return;
        std::error_code ignored;
        const path absolute = std::filesystem::absolute(named, ignored);
        add(absolute / bundleName());
        add(absolute);
    };
    const auto addNear = [&add](const path& folder) {
        if (folder.empty()) return;
        const path below = path{BundlePaths::dataDirectory} / "KestrelService" / bundleName();
        add(folder / ".." / below);
        // A folder of libraries for one machine type, such as lib/x86_64-linux-gnu, is one level deeper.
        add(folder / ".." / ".." / below);
    };

    addNamed(hostDirectory);
    if (const char* named = std::getenv("KESTREL_RESOURCES"); named != nullptr) addNamed(named);
    addNear(libraryFolder());
    addNear(executableFolder());
    add(path{BundlePaths::installed} / bundleName());
    add(path{BundlePaths::built} / bundleName());
    return places;
}

BundleLocation locateBundle(const std::vector<path>& places) {
    for (const auto& place : places) {
        auto [identifier, languages] = readMarker(place / markerName);
        if (identifier != ResourceBundle::identifier) continue;

        if (languages.empty()) {
            fatal("resource bundle " + bundleName() + " in " + place.native() + " lists no languages");
        }
        for (const auto& language : languages) {
            std::error_code ignored;
            const path catalogue = cataloguePath(place, language);
            if (std::filesystem::is_regular_file(catalogue, ignored)) continue;
            fatal("resource bundle " + bundleName() + " lists the language " + language + " but lacks its catalogue " +
                  catalogue.native());
        }
        return {.directory = place, .languages = std::move(languages)};
    }

    std::string message = "resource bundle " + bundleName() + " not found; looked in ";
    for (bool first = true; const auto& place : places) {
        if (!first) message += ", ";
        message += place.native();
        first = false;
    }
    fatal(message);
}

path cataloguePath(const path& bundle, std::string_view language) {
    return bundle / language / "LC_MESSAGES" / (std::string{ResourceBundle::identifier} + ".mo");
}

}  // namespace kestrel::localization
