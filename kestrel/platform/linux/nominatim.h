#pragma once

#include <kestrel/foundation/url.h>
#include <kestrel/platform/geocoder.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The search of the Nominatim geocoder: what it is asked, and what it answers.
namespace kestrel::platform {

/// The URL that asks for the places of an address, as structured parameters; a query of the base URL, such as a key, is
/// kept. Absent when nothing of the address is known that can be asked for.
[[nodiscard]] std::optional<std::string> nominatimSearch(const URL& baseURL, const PostalAddress& address);

/// The places of an answer in "jsonv2", in its order; those that are nowhere on the Earth are left out. Absent when it
/// is no such answer, or when none of its places is left; empty when it has none.
[[nodiscard]] std::optional<std::vector<Placemark>> nominatimPlaces(std::string_view json);

}  // namespace kestrel::platform
