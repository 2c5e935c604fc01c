#include <date/tz.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/fatal.h>
#include <langinfo.h>
#include <locale.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <type_traits>

namespace kestrel {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::microseconds;
using std::chrono::months;
using std::chrono::weekday;
using std::chrono::year_month_day;

namespace {

const ::date::time_zone* locate(std::string_view name) {
    try {
        return ::date::locate_zone(name);
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// The zone that TZ names (":Europe/Berlin" is an older spelling of the same), else the system's. `current_zone` of the
/// time-zone library ignores TZ and throws where /etc/localtime is missing.
const ::date::time_zone* userZone() {
    if (const char* named = std::getenv("TZ"); named != nullptr) {
        std::string_view name = named;
        if (name.starts_with(':')) name.remove_prefix(1);
        if (const auto* zone = locate(name)) return zone;
        return nullptr;
    }
    try {
        return ::date::current_zone();
    } catch (const std::exception&) {
        return nullptr;
    }
}

weekday userFirstWeekday() {
    using Locale = std::remove_pointer_t<locale_t>;
    const std::unique_ptr<Locale, decltype(&freelocale)> locale(newlocale(LC_TIME_MASK, "", nullptr), freelocale);
    if (!locale) return std::chrono::Monday;
    const std::string_view name = nl_langinfo_l(_NL_LOCALE_NAME(LC_TIME), locale.get());
    if (name == "C" || name == "POSIX" || name.starts_with("C.")) return std::chrono::Monday;
    // The locale counts from 1, and counts from the weekday of a day that it gives as a number such as 19971130.
    const auto first = static_cast<unsigned char>(*nl_langinfo_l(_NL_TIME_FIRST_WEEKDAY, locale.get()));
    const auto origin =
        static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(nl_langinfo_l(_NL_TIME_WEEK_1STDAY, locale.get())));
    const unsigned base = origin == 19971201U ? 1U : 0U;
    return weekday((base + first - 1U) % 7U);
}

::date::sys_time<microseconds> moment(Date date) {
    return ::date::sys_time<microseconds>(date.time().time_since_epoch());
}

}  // namespace

Calendar Calendar::current() {
    return {userZone(), userFirstWeekday()};
}

Calendar Calendar::utc(weekday firstWeekday) {
    return {nullptr, firstWeekday};
}

std::optional<Calendar> Calendar::inZone(std::string_view timeZoneName, weekday firstWeekday) {
    const auto* zone = locate(timeZoneName);
    if (zone == nullptr) return std::nullopt;
    return Calendar(zone, firstWeekday);
}

std::string_view Calendar::timeZoneName() const {
    return zone_ == nullptr ? std::string_view("UTC") : zone_->name();
}

local_days Calendar::dayOf(Date date) const {
    const auto time = moment(date);
    if (zone_ == nullptr) return local_days(days(::date::floor<::date::days>(time).time_since_epoch().count()));
    const auto local = zone_->to_local(time);
    return local_days(days(::date::floor<::date::days>(local).time_since_epoch().count()));
}

Date Calendar::startOf(local_days day) const {
    const int year = static_cast<int>(year_month_day(day).year());
    if (year < -9999 || year > 9999) fatal("A calendar was asked for a day outside the years -9999 to 9999.");
    const auto count = static_cast<int>(day.time_since_epoch().count());
    if (zone_ == nullptr) return Date::from(std::chrono::sys_days(days(count)));
    // Of two midnights the earlier; where there is none, the moment at which the clocks jump over it.
    const auto start = zone_->to_sys(::date::local_days(::date::days(count)), ::date::choose::earliest);
    return Date::from(std::chrono::sys_seconds(std::chrono::seconds(start.time_since_epoch().count())));
}

int Calendar::daysBetween(Date from, Date to) const {
    return static_cast<int>((dayOf(to) - dayOf(from)).count());
}

Date Calendar::startOfDay(Date date) const {
    return startOf(dayOf(date));
}
Date Calendar::startOfWeek(Date date) const {
    return startOf(calendar_days::startOfWeek(dayOf(date), firstWeekday_));
}
Date Calendar::startOfMonth(Date date) const {
    return startOf(calendar_days::startOfMonth(dayOf(date)));
}
Date Calendar::startOfQuarter(Date date) const {
    return startOf(calendar_days::startOfQuarter(dayOf(date)));
}
Date Calendar::startOfYear(Date date) const {
    return startOf(calendar_days::startOfYear(dayOf(date)));
}

namespace calendar_days {

local_days startOfWeek(local_days day, weekday firstWeekday) {
    return day - (weekday(day) - firstWeekday);
}

local_days startOfMonth(local_days day) {
    const year_month_day date(day);
    return local_days(date.year() / date.month() / 1);
}

local_days startOfQuarter(local_days day) {
    const year_month_day date(day);
    const unsigned month = static_cast<unsigned>(date.month());
    return local_days(date.year() / std::chrono::month(month - (month - 1) % 3) / 1);
}

local_days startOfYear(local_days day) {
    return local_days(year_month_day(day).year() / 1 / 1);
}

local_days addMonths(local_days firstOfMonth, int count) {
    return local_days(year_month_day(firstOfMonth) + months(count));
}

}  // namespace calendar_days

}  // namespace kestrel
