#include <kestrel/platform/linux/gio_workspace.h>
#include <kestrel/platform/linux/glib_support.h>
#include <kestrel/platform/system.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace kestrel {

namespace {

using platform::GLibError;
using platform::GLibOwned;
using platform::GLibText;

/// The type by which applications are found. Absent for a file that is not there.
std::optional<std::string> contentType(const URL& url) {
    if (url.scheme() != "file") return "x-scheme-handler/" + std::string(url.scheme());
    const GLibOwned<GFile> file(g_file_new_for_uri(url.text().c_str()));
    const GLibOwned<GFileInfo> info(g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                      G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    if (!info) return std::nullopt;
    const char* type = g_file_info_get_content_type(info.get());
    return type == nullptr ? std::nullopt : std::optional<std::string>(type);
}

/// Each application once; takes over the list.
void append(std::vector<GLibOwned<GAppInfo>>& applications, GList* list) {
    for (GList* item = list; item != nullptr; item = item->next) {
        GLibOwned<GAppInfo> application(static_cast<GAppInfo*>(item->data));
        const bool isKnown = std::ranges::any_of(
            applications, [&](const auto& known) { return g_app_info_equal(known.get(), application.get()) != FALSE; });
        if (!isKnown) applications.push_back(std::move(application));
    }
    g_list_free(list);
}

/// A launch under way. GIO asks the session bus on the way and waits for it without a limit, in a thread of its own:
/// who waits here is answered after a while whatever becomes of that. Both callbacks hold it.
struct Launch {
    Workspace::CompletionHandler handler;
    guint timeout = 0;

    /// Answers, the first time.
    void report(std::optional<PlatformError> error) noexcept {
        if (auto answer = std::exchange(handler, nullptr)) answer(std::move(error));
    }
};
using LaunchReference = std::shared_ptr<Launch>;

constexpr guint secondsToLaunch = 5;

void reportLaunch(GObject* /*source*/, GAsyncResult* result, gpointer user) noexcept {
    const std::unique_ptr<LaunchReference> launch(static_cast<LaunchReference*>(user));
    if (const guint timeout = std::exchange((*launch)->timeout, 0); timeout != 0) g_source_remove(timeout);
    GError* failure = nullptr;
    if (g_app_info_launch_default_for_uri_finish(result, &failure) != FALSE) return (*launch)->report(std::nullopt);
    const GLibError error(failure);
    (*launch)->report(platform::platformError(*error));
}

gboolean giveUpLaunch(gpointer user) noexcept {
    const LaunchReference launch = *static_cast<LaunchReference*>(user);
    launch->timeout = 0;
    const GLibError error(
        g_error_new_literal(G_IO_ERROR, G_IO_ERROR_TIMED_OUT, "The desktop did not answer: its session bus hangs"));
    launch->report(platform::platformError(*error));
    return G_SOURCE_REMOVE;
}

void releaseLaunch(gpointer user) noexcept {
    delete static_cast<LaunchReference*>(user);
}

bool isWithin(double number, double limit) {
    return number >= -limit && number <= limit;
}

void appendNumber(std::string& text, double number) {
    std::array<char, 512> digits{};
    // RFC 5870 knows no exponents. Zero has no sign there either.
    const auto end =
        std::to_chars(digits.begin(), digits.end(), number == 0 ? 0.0 : number, std::chars_format::fixed).ptr;
    text.append(digits.begin(), end);
}

}  // namespace

std::vector<std::string> GIOWorkspace::applicationsToOpen(const URL& url) const {
    const auto type = contentType(url);
    if (!type) return {};
    std::vector<GLibOwned<GAppInfo>> applications;
    if (GAppInfo* preferred = g_app_info_get_default_for_type(type->c_str(), FALSE)) {
        append(applications, g_list_append(nullptr, preferred));
    }
    append(applications, g_app_info_get_recommended_for_type(type->c_str()));
    append(applications, g_app_info_get_all_for_type(type->c_str()));
    std::vector<std::string> names;
    names.reserve(applications.size());
    for (const auto& application : applications)
        names.emplace_back(g_app_info_get_display_name(application.get()));
    return names;
}

void GIOWorkspace::open(const URL& url, CompletionHandler completionHandler) {
    const auto launch = std::make_shared<Launch>(std::move(completionHandler));
    launch->timeout = g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, secondsToLaunch, giveUpLaunch,
                                                 new LaunchReference(launch), releaseLaunch);
    g_app_info_launch_default_for_uri_async(url.text().c_str(), nullptr, nullptr, reportLaunch,
                                            new LaunchReference(launch));
}

bool GeoURIMapApplication::open(const MapItem& item) {
    const auto uri = uriOf(item);
    if (!uri || workspace_->applicationsToOpen(*uri).empty()) return false;
    workspace_->open(*uri, [](const std::optional<PlatformError>&) {});
    return true;
}

std::optional<URL> GeoURIMapApplication::uriOf(const MapItem& item) {
    constexpr double pole = 90;
    constexpr double dateLine = 180;
    const auto& [latitude, longitude] = item.placemark.coordinate;
    if (!isWithin(latitude, pole) || !isWithin(longitude, dateLine)) return std::nullopt;
    std::string place;
    appendNumber(place, latitude);
    place += ',';
    appendNumber(place, longitude);
    std::string text = "geo:" + place + "?q=" + place;
    const auto& label = item.name ? item.name : item.placemark.name;
    if (label && !label->empty()) text += '(' + percentEncoded(*label) + ')';
    return URL::parse(text);
}

}  // namespace kestrel
