#pragma once

#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/url.h>
#include <kestrel/platform/geocoder.h>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// The applications of the desktop. For use on the main thread.
class Workspace {
  public:
    /// Takes why the URL was not handed over; absent when it was.
    using CompletionHandler = std::move_only_function<void(std::optional<PlatformError> error)>;

    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// The applications that can open the URL, by their names for people, the preferred one first.
    [[nodiscard]] virtual std::vector<std::string> applicationsToOpen(const URL& url) const = 0;
    /// Hands the URL over to the preferred application. Calls back once, later, on the main thread: without an error
    /// when it was handed over, whatever becomes of it there.
    virtual void open(const URL& url, CompletionHandler completionHandler) = 0;
};

/// A place to show on a map.
struct MapItem {
    /// Where the pin is.
    Placemark placemark{};
    /// What the pin says; the placemark's name when absent.
    std::optional<std::string> name{};

    friend bool operator==(const MapItem&, const MapItem&) = default;
};

/// The desktop's maps.
class MapApplication {
  public:
    MapApplication() = default;
    MapApplication(const MapApplication&) = delete;
    MapApplication& operator=(const MapApplication&) = delete;
    virtual ~MapApplication() = default;

    /// Shows the place. False when no application shows maps, or the place has no such coordinate: latitudes end at 90
    /// degrees, longitudes at 180.
    [[nodiscard]] virtual bool open(const MapItem& item) = 0;
};

}  // namespace kestrel
