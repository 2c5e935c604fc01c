#pragma once

#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <optional>
#include <string>
#include <string_view>

/// Moments as the fields of a page have them: the date and the time that the clocks of a calendar's zone show.
namespace kestrel::host {

/// "2017-03-14T09:30"; empty for a date beyond the years that calendars reach.
[[nodiscard]] std::string localMomentText(Date date, const Calendar& calendar);

/// The moment at which the clocks show it: of two, when the clocks are turned back, the first; when they skip it, the
/// one of the skip. Absent for any other text, and beyond the years 1 to 4000.
[[nodiscard]] std::optional<Date> momentOfLocalText(std::string_view text, const Calendar& calendar);

}  // namespace kestrel::host
