#include <host/people/file_text.h>
#include <host/people/geo_text.h>

#include <charconv>

namespace kestrel::host {

std::optional<std::pair<double, double>> positionOf(std::string_view text) {
    constexpr double mostNorth = 90;
    constexpr double mostEast = 180;
    text = trimmed(text);
    if (startsWithWord(text, "geo:")) text.remove_prefix(4);
    const auto comma = text.find_first_of(",;");
    if (comma == text.npos) return std::nullopt;
    const auto number = [](std::string_view digits) -> std::optional<double> {
        double value = 0;
        digits = trimmed(digits.substr(0, digits.find_first_of(",;")));
        const auto [stop, problem] =
            std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
        if (problem != std::errc() || stop != digits.data() + digits.size()) return std::nullopt;
        return value;
    };
    // False for what is no number, too.
    const auto isWithin = [](double value, double most) { return value >= -most && value <= most; };
    const auto latitude = number(text.substr(0, comma));
    const auto longitude = number(text.substr(comma + 1));
    if (!latitude || !longitude || !isWithin(*latitude, mostNorth) || !isWithin(*longitude, mostEast))
        return std::nullopt;
    return std::pair(*latitude, *longitude);
}

}  // namespace kestrel::host
