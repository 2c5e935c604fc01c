#include <date/tz.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/fatal.h>
#include <langinfo.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <type_traits>

namespace kestrel {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::microseconds;
using std::chrono::months;
using std::chrono::weekday;
using std::chrono::year_month_day;

namespace {

/// The zone's rules are read when it is first asked for something: here, so that a file that cannot be read is a zone
/// that is not there, and nothing fails later.
const ::date::time_zone* readable(const ::date::time_zone* zone) {
    (void)zone->get_info(::date::sys_seconds{});
    return zone;
}

const ::date::time_zone* locate(std::string_view name) {
    try {
        return readable(::date::locate_zone(name));
    } catch (const std::bad_alloc&) {
        throw;
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
        return readable(::date::current_zone());
    } catch (const std::bad_alloc&) {
        throw;
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

constexpr int farthestYear = 9999;

bool isWithinYears(local_days day) {
    constexpr local_days first(std::chrono::year(-farthestYear) / 1 / 1);
    constexpr local_days last(std::chrono::year(farthestYear) / 12 / 31);
    return first <= day && day <= last;
}

void requireWithinYears(local_days day) {
    if (!isWithinYears(day)) fatal("A calendar was asked for a day outside the years -9999 to 9999.");
}

/// The time-zone library knows the changes of the clocks up to 2037, where the compiled tables end. The rules that are
/// in force then go on, and a year of the same shape (leap or not, starting on the same weekday) keeps them on the same
/// days: times of later years are looked up in such a year. Gives the days to go back; 0 for the years that are in the
/// tables.
days daysToTabulatedYear(std::chrono::year year) {
    constexpr std::chrono::year lastTabulated(2037);
    if (year <= lastTabulated) return days(0);
    const local_days start(year / 1 / 1);
    for (std::chrono::year like = lastTabulated;; --like) {
        const local_days likeStart(like / 1 / 1);
        if (like.is_leap() == year.is_leap() && weekday(likeStart) == weekday(start)) return start - likeStart;
    }
}

/// The day of a moment in UTC. Days farther away than calendars go are all the same one.
local_days dayInUTC(Date date) {
    constexpr double limit = 1e9;
    const double day = std::floor(date.since1970() / 86'400);
    return local_days(days(static_cast<int>(std::clamp(day, -limit, limit))));
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
    const local_days inUTC = dayInUTC(date);
    if (zone_ == nullptr || !isWithinYears(inUTC)) return inUTC;
    const ::date::days back(daysToTabulatedYear(year_month_day(inUTC).year()).count());
    const ::date::sys_time<microseconds> moment(date.time().time_since_epoch());
    const auto local = zone_->to_local(moment - back) + back;
    return local_days(days(::date::floor<::date::days>(local).time_since_epoch().count()));
}

Date Calendar::startOf(local_days day) const {
    requireWithinYears(day);
    const auto count = static_cast<int>(day.time_since_epoch().count());
    if (zone_ == nullptr) return Date::from(std::chrono::sys_days(days(count)));
    const ::date::days back(daysToTabulatedYear(year_month_day(day).year()).count());
    // Of two midnights the earlier; where there is none, the moment at which the clocks jump over it.
    const auto start = zone_->to_sys(::date::local_days(::date::days(count)) - back, ::date::choose::earliest) + back;
    return Date::from(std::chrono::sys_seconds(std::chrono::seconds(start.time_since_epoch().count())));
}

Date Calendar::nextStartOf(ClockUnit unit, Date date) const {
    const std::int64_t length = unit == ClockUnit::minute ? 60 : 3'600;
    const local_days inUTC = dayInUTC(date);
    const bool isUTC = zone_ == nullptr || !isWithinYears(inUTC);
    const ::date::days back(isUTC ? 0 : daysToTabulatedYear(year_month_day(inUTC).year()).count());
    const double seconds = std::floor(date.since1970());
    if (isUTC)
        return Date::since1970((std::floor(seconds / static_cast<double>(length)) + 1) * static_cast<double>(length));

    ::date::sys_seconds moment(std::chrono::seconds(static_cast<std::int64_t>(seconds)) - back);
    auto rule = zone_->get_info(moment);
    while (true) {
        const std::int64_t now = moment.time_since_epoch().count();
        const std::int64_t passed = ((now + rule.offset.count()) % length + length) % length;
        const std::int64_t next = now + length - passed;
        // What comes behind a change of the clocks is theirs to say.
        if (next < rule.end.time_since_epoch().count())
            return Date::since1970(static_cast<double>(
                (::date::sys_seconds(std::chrono::seconds(next)) + back).time_since_epoch().count()));
        moment = rule.end;
        rule = zone_->get_info(moment);
        if ((moment.time_since_epoch() + rule.offset).count() % length == 0)
            return Date::since1970(static_cast<double>((moment + back).time_since_epoch().count()));
    }
}

bool operator==(const Calendar& a, const Calendar& b) {
    return a.firstWeekday_ == b.firstWeekday_ && (a.zone_ == b.zone_ || a.timeZoneName() == b.timeZoneName());
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
    requireWithinYears(day);
    const year_month_day date(day);
    return local_days(date.year() / date.month() / 1);
}

local_days startOfQuarter(local_days day) {
    requireWithinYears(day);
    const year_month_day date(day);
    const unsigned month = static_cast<unsigned>(date.month());
    return local_days(date.year() / std::chrono::month(month - (month - 1) % 3) / 1);
}

local_days startOfYear(local_days day) {
    return local_days(year_month_day(day).year() / 1 / 1);
}

local_days addMonths(local_days firstOfMonth, int count) {
    requireWithinYears(firstOfMonth);
    return local_days(year_month_day(firstOfMonth) + months(count));
}

}  // namespace calendar_days

}  // namespace kestrel
