#include <date/tz.h>
#include <fmt/format.h>
#include <host/terminal/day_text.h>

#include <array>
#include <string_view>

namespace kestrel::host {
namespace {

constexpr std::array<std::string_view, 12> monthNames{"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> weekdayNames{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

std::string dayAndMonth(unsigned day, unsigned month) {
    return fmt::format("{} {}", day, monthNames.at(month - 1));
}

}  // namespace

bool isReachable(Date date) {
    return date >= Date::distantPast() && date < Date::distantFuture();
}

Calendar calendarOf(const User& user) {
    if (user.timeZoneName && !user.timeZoneName->empty()) {
        if (const auto calendar = Calendar::inZone(*user.timeZoneName)) return *calendar;
    }
    return Calendar::current();
}

std::chrono::local_seconds localTime(Date date, const Calendar& calendar) {
    // On the days when clocks change this is not the time since midnight.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date.time());
    const std::string_view zone = calendar.timeZoneName();
    // UTC is there without a time-zone database, too.
    const auto offset = zone == "UTC" ? std::chrono::seconds(0) : ::date::locate_zone(zone)->get_info(seconds).offset;
    return std::chrono::local_seconds((seconds + offset).time_since_epoch());
}

std::optional<Date> shownStart(const Timeblock& appointment, const Calendar& calendar) {
    const std::optional<Date>& start = appointment.startDate;
    if (!start || !appointment.isAllDay || !appointment.timeZoneName || !isReachable(*start)) return start;
    if (*appointment.timeZoneName == calendar.timeZoneName()) return start;
    const auto own = Calendar::inZone(*appointment.timeZoneName);
    return own ? calendar.startOf(own->dayOf(*start)) : start;
}

std::string dayText(std::chrono::local_days day) {
    const std::chrono::year_month_day date(day);
    return fmt::format("{} {}", dayAndMonth(static_cast<unsigned>(date.day()), static_cast<unsigned>(date.month())),
                       static_cast<int>(date.year()));
}

std::string dayText(Date date, const Calendar& calendar) {
    return isReachable(date) ? dayText(calendar.dayOf(date)) : date.description();
}

std::string weekdayText(std::chrono::local_days day) {
    return fmt::format("{}, {}", weekdayNames.at(std::chrono::weekday(day).c_encoding()), dayText(day));
}

std::string timeText(Date date, const Calendar& calendar) {
    if (!isReachable(date)) return date.description();
    const auto local = localTime(date, calendar);
    const std::chrono::hh_mm_ss time(local - std::chrono::floor<std::chrono::days>(local));
    return fmt::format("{:02}:{:02}", time.hours().count(), time.minutes().count());
}

std::string momentText(Date date, const Calendar& calendar) {
    if (!isReachable(date)) return date.description();
    return fmt::format("{}, {}", dayText(date, calendar), timeText(date, calendar));
}

std::string partialDateText(const PartialDate& date) {
    if (!date.date(Calendar::utc())) {
        return date.year ? fmt::format("{:04}-{:02}-{:02}", *date.year, date.month, date.day)
                         : fmt::format("--{:02}-{:02}", date.month, date.day);
    }
    std::string text = dayAndMonth(static_cast<unsigned>(date.day), static_cast<unsigned>(date.month));
    if (!date.year) return text;
    // There is no year 0: the year before 1 is 1 BC.
    return *date.year > 0 ? fmt::format("{} {}", text, *date.year) : fmt::format("{} {} BC", text, 1 - *date.year);
}

}  // namespace kestrel::host
