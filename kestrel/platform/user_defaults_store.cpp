#include <kestrel/platform/user_defaults_store.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <type_traits>

namespace kestrel {

namespace {

/// What the text says when all of it is a decimal number, kept within the range of the type.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    // Not the words for infinity and for what is no number.
    if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return std::nullopt;
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        if constexpr (std::is_floating_point_v<Number>) {
            if (text.find("e-") != std::string_view::npos || text.find("E-") != std::string_view::npos) return Number{};
        }
        return text.starts_with('-') ? std::numeric_limits<Number>::lowest() : std::numeric_limits<Number>::max();
    }
    if (error != std::errc{}) return std::nullopt;
    return number;
}

std::int64_t towardsZero(double number) {
    // The first double beyond the range of the integers.
    constexpr double limit = 0x1p63;
    if (std::isnan(number)) return 0;
    if (number >= limit) return std::numeric_limits<std::int64_t>::max();
    if (number < -limit) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(number);
}

bool isOneOf(std::string_view text, const std::array<std::string_view, 3>& words) {
    const auto isSame = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? static_cast<char>(a + 32) : a) == b; };
    return std::ranges::any_of(words, [&](std::string_view word) { return std::ranges::equal(text, word, isSame); });
}

std::optional<URL> fileURL(std::string_view path) {
    std::string text = "file://";
    while (!path.empty()) {
        const auto slash = path.find('/');
        text += percentEncoded(path.substr(0, slash));
        if (slash == std::string_view::npos) break;
        text += '/';
        path.remove_prefix(slash + 1);
    }
    return URL::parse(text);
}

}  // namespace

std::int64_t UserDefaultsStore::integer(std::string_view key) const {
    const auto stored = object(key);
    if (!stored) return 0;
    if (const auto* number = std::get_if<std::int64_t>(&*stored)) return *number;
    if (const auto* number = std::get_if<double>(&*stored)) return towardsZero(*number);
    if (const auto* truth = std::get_if<bool>(&*stored)) return *truth ? 1 : 0;
    if (const auto* text = std::get_if<std::string>(&*stored)) {
        if (const auto number = numberIn<std::int64_t>(*text)) return *number;
        return towardsZero(numberIn<double>(*text).value_or(0));
    }
    return 0;
}

double UserDefaultsStore::doubleValue(std::string_view key) const {
    const auto stored = object(key);
    if (!stored) return 0;
    if (const auto* number = std::get_if<double>(&*stored)) return *number;
    if (const auto* number = std::get_if<std::int64_t>(&*stored)) return static_cast<double>(*number);
    if (const auto* truth = std::get_if<bool>(&*stored)) return *truth ? 1 : 0;
    if (const auto* text = std::get_if<std::string>(&*stored)) return numberIn<double>(*text).value_or(0);
    return 0;
}

float UserDefaultsStore::floatValue(std::string_view key) const {
    constexpr double largest = std::numeric_limits<float>::max();
    const double number = doubleValue(key);
    return static_cast<float>(std::isfinite(number) ? std::clamp(number, -largest, largest) : number);
}

bool UserDefaultsStore::boolean(std::string_view key) const {
    const auto stored = object(key);
    if (!stored) return false;
    if (const auto* truth = std::get_if<bool>(&*stored)) return *truth;
    if (const auto* number = std::get_if<std::int64_t>(&*stored)) return *number != 0;
    if (const auto* number = std::get_if<double>(&*stored)) return *number != 0;
    if (const auto* text = std::get_if<std::string>(&*stored)) return isOneOf(*text, {"true", "yes", "1"});
    return false;
}

std::optional<URL> UserDefaultsStore::url(std::string_view key) const {
    const auto stored = object(key);
    if (!stored) return std::nullopt;
    if (const auto* url = std::get_if<URL>(&*stored)) return *url;
    if (const auto* text = std::get_if<std::string>(&*stored)) {
        return text->starts_with('/') ? fileURL(*text) : URL::parse(*text);
    }
    return std::nullopt;
}

}  // namespace kestrel
