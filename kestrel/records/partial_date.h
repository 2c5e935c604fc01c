#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <cstdint>
#include <optional>

namespace kestrel {

/// The parts of a calendar date that are given.
struct DateComponents {
    std::optional<std::int64_t> year{};
    std::optional<std::int64_t> month{};
    std::optional<std::int64_t> day{};

    friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

/// A day and a month with or without a year: a birthday, an anniversary.
struct PartialDate {
    using Coded = void;

    std::int64_t day{};
    /// 1 to 12.
    std::int64_t month{};
    std::optional<std::int64_t> year{};

    [[nodiscard]] static PartialDate make(std::optional<std::int64_t> year, std::int64_t month, std::int64_t day) {
        return {.day = day, .month = month, .year = year};
    }

    [[nodiscard]] bool hasYear() const noexcept { return year.has_value(); }
    [[nodiscard]] DateComponents dateComponents() const noexcept { return {.year = year, .month = month, .day = day}; }
    /// The start of the day in a calendar. Absent unless the calendar of all zones has such a day, between the years
    /// -9999 and 9999; where a zone skipped it, the start of the next one. Without a year it is the day in the year
    /// 2000, a leap year: of use only to show day and month.
    [[nodiscard]] std::optional<Date> date(const Calendar& calendar = Calendar::current()) const;

    friend bool operator==(const PartialDate&, const PartialDate&) = default;
};
extern template struct Codec<PartialDate>;

}  // namespace kestrel
