#pragma once

#include <kestrel/foundation/date.h>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace date {
class time_zone;
}

namespace kestrel {

/// What starts on a clock.
enum class ClockUnit : std::uint8_t {
    minute,  ///< when the seconds are 0
    hour     ///< when minutes and seconds are 0
};

/// The Gregorian calendar in a time zone, with a first day of the week. A small value: copying is cheap, and reading it
/// is safe from any thread.
///
/// A day starts at its first moment. Where clocks are put forward at midnight that is one o'clock, and where they are
/// put back over midnight it is the earlier of the two midnights; days are therefore of 23, 24 or 25 hours.
class Calendar {
  public:
    /// Of the user: the zone that the environment variable TZ names, UTC when it names none of the database; without TZ
    /// the zone of the system, else UTC; the first weekday of the user's locale, Monday where the locale says nothing.
    /// Reads the environment at every call.
    [[nodiscard]] static Calendar current();
    /// In Coordinated Universal Time, where every day has 24 hours.
    [[nodiscard]] static Calendar utc(std::chrono::weekday firstWeekday = std::chrono::Monday);
    /// By the zone's name in the time-zone database, such as "Europe/Berlin". Absent when there is no such zone.
    [[nodiscard]] static std::optional<Calendar> inZone(std::string_view timeZoneName,
                                                        std::chrono::weekday firstWeekday = std::chrono::Monday);

    /// Of the zone in the time-zone database; "UTC" for `utc`. Valid as long as the program.
    [[nodiscard]] std::string_view timeZoneName() const;
    /// The day with which weeks start.
    [[nodiscard]] std::chrono::weekday firstWeekday() const noexcept { return firstWeekday_; }

    /// The calendar day on which a moment falls.
    [[nodiscard]] std::chrono::local_days dayOf(Date date) const;
    /// The first moment of a day.
    [[nodiscard]] Date startOf(std::chrono::local_days day) const;

    /// Whether both fall on one calendar day.
    [[nodiscard]] bool isSameDay(Date a, Date b) const { return dayOf(a) == dayOf(b); }
    /// Whether `date` falls on the day of `now`.
    [[nodiscard]] bool isToday(Date date, Date now = Date::now()) const { return isSameDay(date, now); }
    /// Midnights passed from `from` to `to`: 0 on the same day, 1 on the next, negative when `to` is earlier.
    [[nodiscard]] int daysBetween(Date from, Date to) const;

    /// The first moment of the day on which the date falls.
    [[nodiscard]] Date startOfDay(Date date) const;
    /// The first moment of its week, which starts with `firstWeekday`.
    [[nodiscard]] Date startOfWeek(Date date) const;
    /// The first moment of its month.
    [[nodiscard]] Date startOfMonth(Date date) const;
    /// Quarters start with January, April, July and October.
    [[nodiscard]] Date startOfQuarter(Date date) const;
    /// The first moment of its year.
    [[nodiscard]] Date startOfYear(Date date) const;

    /// The first moment after `date` at which a minute or an hour starts on the clocks of the zone. Where clocks are
    /// put forward or back, hours may be shorter or longer; an hour that the change cuts off at its start does not
    /// start.
    [[nodiscard]] Date nextStartOf(ClockUnit unit, Date date) const;

    /// The same zone by its name, and the same first weekday.
    friend bool operator==(const Calendar& a, const Calendar& b);

  private:
    Calendar(const ::date::time_zone* zone, std::chrono::weekday firstWeekday)
        : zone_(zone), firstWeekday_(firstWeekday) {}

    /// Owned by the time-zone database, which lives as long as the program. Absent means UTC.
    const ::date::time_zone* zone_;
    std::chrono::weekday firstWeekday_;
};

/// Where and when something is looked at: what depends on "today" takes one. By default the user's calendar, now.
/// Asking for the user's calendar costs some microseconds: where there are many cards, make one for all of them, which
/// also keeps "today" the same day for all.
struct CalendarMoment {
    /// Where: its zone decides which day it is.
    Calendar calendar = Calendar::current();
    /// When.
    Date now = Date::now();
};

/// The parts of a moment in a calendar that relative ranges are made of, as whole days.
namespace calendar_days {

/// The last such weekday that is not after the day.
[[nodiscard]] std::chrono::local_days startOfWeek(std::chrono::local_days day, std::chrono::weekday firstWeekday);
/// The first day of its month.
[[nodiscard]] std::chrono::local_days startOfMonth(std::chrono::local_days day);
/// The first day of its January, April, July or October.
[[nodiscard]] std::chrono::local_days startOfQuarter(std::chrono::local_days day);
/// The first of January of its year.
[[nodiscard]] std::chrono::local_days startOfYear(std::chrono::local_days day);
/// Adds months, up or down, to the first day of a month.
[[nodiscard]] std::chrono::local_days addMonths(std::chrono::local_days firstOfMonth, int months);

}  // namespace calendar_days

}  // namespace kestrel
