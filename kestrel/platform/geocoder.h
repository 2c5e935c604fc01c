#pragma once

#include <kestrel/foundation/hashing.h>
#include <kestrel/foundation/platform_error.h>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// A postal address as an address book has it. What is not known is empty.
struct PostalAddress {
    /// Street and number; several lines where needed.
    std::string street{};
    /// A part of the town.
    std::string subLocality{};
    /// City, town or village.
    std::string city{};
    /// County or district.
    std::string subAdministrativeArea{};
    /// State, province or region.
    std::string state{};
    /// As it is written in the country.
    std::string postalCode{};
    /// Its name, in any language.
    std::string country{};
    /// Two letters of ISO 3166-1, in either case.
    std::string isoCountryCode{};

    friend bool operator==(const PostalAddress&, const PostalAddress&) = default;
};

/// A place on the Earth, WGS 84.
struct Coordinate {
    /// Degrees, north positive.
    double latitude{};
    /// Degrees, east positive.
    double longitude{};

    friend bool operator==(const Coordinate&, const Coordinate&) = default;
};

/// A place and what is there.
struct Placemark {
    /// Where it is.
    Coordinate coordinate{};
    /// What to call it: a sight, a house, a street.
    std::optional<std::string> name{};
    /// What is known of its address.
    PostalAddress address{};

    friend bool operator==(const Placemark&, const Placemark&) = default;
};

/// The domain of what a geocoder reports, and its codes.
inline constexpr std::string_view geocodingErrorDomain = "KestrelService.Geocoding";
/// What a geocoder reports.
enum class GeocodingErrorCode : std::uint8_t {
    locationUnknown = 0,     ///< the place cannot be told for now
    denied = 1,              ///< the server refuses to answer
    network = 2,             ///< the server was not reached, or its answer makes no sense
    foundNoResult = 8,       ///< there is no such place
    foundPartialResult = 9,  ///< only a part of the address is known
    canceled = 10,           ///< the question was given up
};

/// Finds the place of one address. For use on the main thread.
class GeocoderProtocol {
  public:
    /// The places, the best first; an error says why there are none.
    using CompletionHandler = std::move_only_function<void(std::optional<std::vector<Placemark>> placemarks,
                                                           std::optional<PlatformError> error)>;

    GeocoderProtocol() = default;
    GeocoderProtocol(const GeocoderProtocol&) = delete;
    GeocoderProtocol& operator=(const GeocoderProtocol&) = delete;
    /// Cancels what runs.
    virtual ~GeocoderProtocol() = default;

    /// Calls back once, later, on the main thread; not at all when it is cancelled before. The geocoder may be
    /// destroyed from inside the callback.
    virtual void geocodePostalAddress(const PostalAddress& address, CompletionHandler completionHandler) = 0;
    /// Gives the question up; nothing when none is under way.
    virtual void cancelGeocode() = 0;
};

}  // namespace kestrel
