#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/enumeration.h>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A range of days relative to today, so that a saved filter keeps its meaning from day to day. In keyed form one key,
/// the case's name, holding an empty object.
enum class PipelineBoardDateRange : std::uint8_t {
    today,
    thisWeek,
    thisMonth,
    thisQuarter,
    thisYear,
    thisYearToDate,  ///< from the start of the year to the end of today
    tomorrow,
    nextWeek,
    nextMonth,
    nextQuarter,
    nextYear,
    yesterday,
    lastWeek,
    lastMonth,
    lastQuarter,
    lastYear,
    none,  ///< the records without that date; not the same as no range
};
template <>
inline constexpr auto enumerationForm<PipelineBoardDateRange> = EnumerationForm::keyed;

// What pickers offer, in this order. `allCases<PipelineBoardDateRange>` has all.
inline constexpr std::array nowRanges{PipelineBoardDateRange::today, PipelineBoardDateRange::thisWeek,
                                      PipelineBoardDateRange::thisMonth, PipelineBoardDateRange::thisQuarter,
                                      PipelineBoardDateRange::thisYear};
inline constexpr std::array nowRangesWithYTD{PipelineBoardDateRange::today,     PipelineBoardDateRange::thisWeek,
                                             PipelineBoardDateRange::thisMonth, PipelineBoardDateRange::thisQuarter,
                                             PipelineBoardDateRange::thisYear,  PipelineBoardDateRange::thisYearToDate};
inline constexpr std::array futureRanges{PipelineBoardDateRange::tomorrow, PipelineBoardDateRange::nextWeek,
                                         PipelineBoardDateRange::nextMonth, PipelineBoardDateRange::nextQuarter,
                                         PipelineBoardDateRange::nextYear};
inline constexpr std::array pastRanges{PipelineBoardDateRange::yesterday, PipelineBoardDateRange::lastWeek,
                                       PipelineBoardDateRange::lastMonth, PipelineBoardDateRange::lastQuarter,
                                       PipelineBoardDateRange::lastYear};

/// The range's name in the user's language.
[[nodiscard]] std::string localizedName(PipelineBoardDateRange range);

/// The days of a range as moments, from the start of its first day up to the start of the day behind its last: weeks
/// start on the calendar's first weekday, quarters with January, April, July and October. Absent for `none`, which has
/// no days.
[[nodiscard]] std::optional<DateRange> resolve(PipelineBoardDateRange range,
                                               const Calendar& calendar = Calendar::current(), Date now = Date::now());

}  // namespace kestrel
