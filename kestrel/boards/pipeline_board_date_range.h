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
    today,           ///< the day of the moment
    thisWeek,        ///< all seven days, the ones to come included
    thisMonth,       ///< all of it, the days to come included
    thisQuarter,     ///< all of it, the days to come included
    thisYear,        ///< all of it, the days to come included
    thisYearToDate,  ///< from the start of the year to the end of today
    tomorrow,        ///< the day after
    nextWeek,        ///< the week after this one
    nextMonth,       ///< the month after this one
    nextQuarter,     ///< the quarter after this one
    nextYear,        ///< the year after this one
    yesterday,       ///< the day before
    lastWeek,        ///< the week before this one
    lastMonth,       ///< the month before this one
    lastQuarter,     ///< the quarter before this one
    lastYear,        ///< the year before this one
    none,            ///< the records without that date; not the same as no range
};
template <>
inline constexpr auto enumerationForm<PipelineBoardDateRange> = EnumerationForm::keyed;

// What pickers offer, in this order. `allCases<PipelineBoardDateRange>` has all.

/// The ranges that today is in.
inline constexpr std::array nowRanges{PipelineBoardDateRange::today, PipelineBoardDateRange::thisWeek,
                                      PipelineBoardDateRange::thisMonth, PipelineBoardDateRange::thisQuarter,
                                      PipelineBoardDateRange::thisYear};
/// The same, and the year so far.
inline constexpr std::array nowRangesWithYTD{PipelineBoardDateRange::today,     PipelineBoardDateRange::thisWeek,
                                             PipelineBoardDateRange::thisMonth, PipelineBoardDateRange::thisQuarter,
                                             PipelineBoardDateRange::thisYear,  PipelineBoardDateRange::thisYearToDate};
/// The ranges that start later.
inline constexpr std::array futureRanges{PipelineBoardDateRange::tomorrow, PipelineBoardDateRange::nextWeek,
                                         PipelineBoardDateRange::nextMonth, PipelineBoardDateRange::nextQuarter,
                                         PipelineBoardDateRange::nextYear};
/// The ranges that are over.
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
