#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace kestrel::host {

/// Latitude and longitude in degrees, of "geo:52.5,13.4" or of "52.5;13.4". Absent for anything else, places beyond the
/// poles included.
[[nodiscard]] std::optional<std::pair<double, double>> positionOf(std::string_view text);

}  // namespace kestrel::host
