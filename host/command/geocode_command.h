#pragma once

#include <host/terminal/output.h>
#include <kestrel/platform/geocoder.h>
#include <string>
#include <string_view>

namespace kestrel::host {

/// `kestrel geocode ADDRESS`.
struct GeocodeOptions {
    std::string address{};
    /// The server to ask; the one in the preferences when empty.
    std::string server{};
    bool isJSON{};
};

/// The parts of an address as people write it on one line, between commas: the street, the postal code and the city,
/// what else there is, and the country. A single part is a city.
[[nodiscard]] PostalAddress addressOf(std::string_view line);

/// Writes the place of an address. A Failure that says why there is none.
void geocodeCommand(const GeocodeOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
