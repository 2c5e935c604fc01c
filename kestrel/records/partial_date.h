#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <cstdint>
#include <optional>

namespace kestrel {

/// The parts of a calendar date that are given.
struct DateComponents {
    /// In the Gregorian calendar.
    std::optional<std::int64_t> year{};
    /// 1 to 12.
    std::optional<std::int64_t> month{};
    /// 1 to 31.
    std::optional<std::int64_t> day{};

    friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

/// A day and a month with or without a year: a birthday, an anniversary.
struct PartialDate {
    using Coded = void;

    /// 1 to 31.
    std::int64_t day{};
    /// 1 to 12.
    std::int64_t month{};
    /// In the Gregorian calendar; absent when it is not known.
    std::optional<std::int64_t> year{};

    /// From its parts, the largest first; they are not checked.
    [[nodiscard]] static PartialDate make(std::optional<std::int64_t> year, std::int64_t month, std::int64_t day) {
        return {.day = day, .month = month, .year = year};
    }

    /// Whether the year is known.
    [[nodiscard]] bool hasYear() const noexcept { return year.has_value(); }
    /// The parts that are known.
    [[nodiscard]] DateComponents dateComponents() const noexcept { return {.year = year, .month = month, .day = day}; }
    /// The start of the day in a calendar. Absent unless the calendar of all zones has such a day, between the years
    /// -9999 and 9999; where a zone skipped it, the start of the next one. Without a year it is the day in the year
    /// 2000, a leap year: of use only to show day and month.
    [[nodiscard]] std::optional<Date> date(const Calendar& calendar = Calendar::current()) const;

    friend bool operator==(const PartialDate&, const PartialDate&) = default;
};
extern template struct Codec<PartialDate>;

}  // namespace kestrel
