#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// A moment, independent of calendar and time zone: seconds, with fractions, since 2001-01-01T00:00:00Z, leap seconds
/// not counted. Never NaN, so that dates have a total order; about a tenth of a microsecond of resolution in this
/// century.
class Date {
  public:
    /// Seconds from 1970-01-01T00:00:00Z to the reference date.
    static constexpr double referenceSince1970 = 978'307'200.0;

    /// The reference date itself.
    constexpr Date() noexcept = default;
    /// NaN stops the program; where the number comes from outside, use `fromSeconds`.
    constexpr explicit Date(double secondsSinceReferenceDate) : seconds_(secondsSinceReferenceDate) {
        if (secondsSinceReferenceDate != secondsSinceReferenceDate) refuseNaN();
    }
    /// Absent for NaN.
    [[nodiscard]] static constexpr std::optional<Date> fromSeconds(double sinceReferenceDate) {
        if (sinceReferenceDate != sinceReferenceDate) return std::nullopt;
        return Date(sinceReferenceDate);
    }
    /// That many seconds after 1970-01-01T00:00:00Z; negative before. NaN stops the program.
    [[nodiscard]] static constexpr Date since1970(double seconds) { return Date(seconds - referenceSince1970); }
    /// From a time of `std::chrono::system_clock` of any resolution.
    template <class Duration>
    [[nodiscard]] static constexpr Date from(std::chrono::sys_time<Duration> time) {
        // Whole seconds apart from the fraction: each is exact, so that chrono times of microseconds come back
        // unchanged.
        const auto whole = std::chrono::floor<std::chrono::seconds>(time);
        const std::chrono::duration<double> fraction = time - whole;
        return Date(static_cast<double>(whole.time_since_epoch().count()) - referenceSince1970 + fraction.count());
    }

    /// The moment of the call by the system's clock.
    [[nodiscard]] static Date now();
    /// 0001-01-01T00:00:00Z: before every date that a record holds.
    [[nodiscard]] static constexpr Date distantPast() { return Date(-63'113'904'000.0); }
    /// 4001-01-01T00:00:00Z: after every date that a record holds.
    [[nodiscard]] static constexpr Date distantFuture() { return Date(63'113'904'000.0); }

    /// In seconds, as they are held: exact.
    [[nodiscard]] constexpr double sinceReferenceDate() const noexcept { return seconds_; }
    /// In seconds, rounded to what a double holds that far from its zero: some tenths of a microsecond.
    [[nodiscard]] constexpr double since1970() const noexcept { return seconds_ + referenceSince1970; }
    /// Rounded to the nearest microsecond; a date beyond chrono's range becomes the nearest end of it.
    [[nodiscard]] std::chrono::sys_time<std::chrono::microseconds> time() const noexcept;

    /// ISO 8601 in UTC, such as "2017-03-01T00:00:00Z", with up to six decimals of the second where it has any. Absent
    /// outside the years 1 to 9999.
    [[nodiscard]] std::optional<std::string> iso8601() const;
    /// Reads a date and time with "Z" or an offset, such as "2017-03-01T09:30:00.25+01:00", or a date alone, which is
    /// midnight UTC. Absent for anything else, days and hours that do not exist included.
    [[nodiscard]] static std::optional<Date> parseISO8601(std::string_view text);
    /// For people who debug: ISO 8601 where it has one, else the seconds.
    [[nodiscard]] std::string description() const;

    friend constexpr bool operator==(const Date&, const Date&) = default;
    /// A total order: the earlier one first.
    friend constexpr std::strong_ordering operator<=>(const Date& a, const Date& b) noexcept {
        if (a.seconds_ < b.seconds_) return std::strong_ordering::less;
        return b.seconds_ < a.seconds_ ? std::strong_ordering::greater : std::strong_ordering::equal;
    }
    /// So many seconds later. A result that is NaN stops the program.
    [[nodiscard]] friend constexpr Date operator+(Date date, double seconds) { return Date(date.seconds_ + seconds); }
    /// So many seconds earlier. A result that is NaN stops the program.
    [[nodiscard]] friend constexpr Date operator-(Date date, double seconds) { return Date(date.seconds_ - seconds); }
    /// Seconds from `b` to `a`.
    [[nodiscard]] friend constexpr double operator-(Date a, Date b) noexcept { return a.seconds_ - b.seconds_; }

  private:
    [[noreturn]] static void refuseNaN();

    double seconds_ = 0;
};

/// The moments from `start` up to, and without, `end`.
struct DateRange {
    /// The first moment that belongs to it.
    Date start{};
    /// The first moment behind it. At or before the start, the range is empty.
    Date end{};

    /// Whether the moment lies in it, `start` included and `end` not.
    [[nodiscard]] constexpr bool contains(Date date) const noexcept { return start <= date && date < end; }
    friend constexpr bool operator==(const DateRange&, const DateRange&) = default;
};

}  // namespace kestrel

template <>
struct std::hash<kestrel::Date> {
    [[nodiscard]] std::size_t operator()(const kestrel::Date& value) const noexcept {
        return std::hash<double>{}(value.sinceReferenceDate());
    }
};
