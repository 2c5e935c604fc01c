#include <host/people/date_text.h>
#include <host/people/file_text.h>

#include <algorithm>
#include <charconv>
#include <string>

namespace kestrel::host {
namespace {

bool areDigits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::int64_t numberOf(std::string_view digits) {
    std::int64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

}  // namespace

std::optional<PartialDate> partialDateOf(std::string_view text) {
    constexpr std::size_t yearLength = 4;
    constexpr std::size_t monthAndDayLength = 4;
    text = trimmed(text);
    std::optional<std::int64_t> year;
    if (text.starts_with("--")) {
        text.remove_prefix(2);
    } else {
        if (text.size() < yearLength || !areDigits(text.substr(0, yearLength))) return std::nullopt;
        year = numberOf(text.substr(0, yearLength));
        text.remove_prefix(yearLength);
        if (text.starts_with('-')) text.remove_prefix(1);
    }
    const std::size_t end = text.find_first_of("T ");
    std::string digits(text.substr(0, end));
    if (digits.size() == monthAndDayLength + 1 && digits[2] == '-') digits.erase(2, 1);
    if (digits.size() != monthAndDayLength || !areDigits(digits)) return std::nullopt;
    const PartialDate date{.day = numberOf(std::string_view(digits).substr(2)),
                           .month = numberOf(std::string_view(digits).substr(0, 2)),
                           .year = year};
    // 0 stands for a year that is not known.
    return date.date(Calendar::utc()) && year != 0 ? std::optional(date) : std::nullopt;
}

std::optional<Date> momentOf(std::string_view text) {
    constexpr std::size_t dayLength = 8;
    constexpr std::size_t timeLength = 6;
    text = trimmed(text);
    std::string iso(text);
    if (text.size() >= dayLength && areDigits(text.substr(0, dayLength))) {
        iso.insert(6, "-").insert(4, "-");
    }
    const std::size_t time = iso.find('T');
    if (time == iso.npos) return Date::parseISO8601(iso);
    if (iso.size() > time + timeLength && areDigits(std::string_view(iso).substr(time + 1, timeLength)))
        iso.insert(time + 5, ":").insert(time + 3, ":");
    const std::size_t zone = iso.find_first_of("Z+-", time);
    if (zone == iso.npos) {
        iso += 'Z';
    } else if (iso[zone] != 'Z' && iso.size() == zone + 5) {
        iso.insert(zone + 3, ":");
    }
    return Date::parseISO8601(iso);
}

}  // namespace kestrel::host
