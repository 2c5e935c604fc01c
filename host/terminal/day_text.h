#pragma once

#include <kestrel/calendar/timeblock.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <kestrel/lookups/user.h>
#include <kestrel/records/partial_date.h>
#include <chrono>
#include <optional>
#include <string>

/// Days and times as the host writes them for people, in English like all of its own words. A date beyond the years
/// that calendars reach, 1 to 4000, is written as its number of seconds since 2001.
namespace kestrel::host {

/// Whether a date lies in the years that calendars reach.
[[nodiscard]] bool isReachable(Date date);

/// The calendar that a user looks at dates in: of the zone that the user's record names when there is such a zone, else
/// the one of whoever runs the command.
[[nodiscard]] Calendar calendarOf(const User& user);

/// What the clocks of the calendar's zone show at a date that calendars reach.
[[nodiscard]] std::chrono::local_seconds localTime(Date date, const Calendar& calendar);

/// When an appointment starts for somebody who looks at it in a calendar. One that lasts whole days does so on the same
/// day everywhere: that of its own time zone.
[[nodiscard]] std::optional<Date> shownStart(const Timeblock& appointment, const Calendar& calendar);

/// "14 March 2017".
[[nodiscard]] std::string dayText(std::chrono::local_days day);
[[nodiscard]] std::string dayText(Date date, const Calendar& calendar);
/// "Tuesday, 14 March 2017".
[[nodiscard]] std::string weekdayText(std::chrono::local_days day);
/// "09:30", by the clocks of the calendar's zone.
[[nodiscard]] std::string timeText(Date date, const Calendar& calendar);
/// "14 March 2017, 09:30".
[[nodiscard]] std::string momentText(Date date, const Calendar& calendar);

/// "10 December 1815", "10 December 44 BC" for the year -43, and without a year "10 December". What is no day of any
/// month is written as its numbers: "1815-02-30", "--02-30".
[[nodiscard]] std::string partialDateText(const PartialDate& date);

}  // namespace kestrel::host
