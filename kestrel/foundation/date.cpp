#include <fmt/format.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/fatal.h>

#include <cmath>

namespace kestrel {

using std::chrono::days;
using std::chrono::microseconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;

void Date::refuseNaN() {
    fatal("A date was made from a number that is not a number.");
}

Date Date::now() {
    return from(std::chrono::floor<microseconds>(std::chrono::system_clock::now()));
}

std::chrono::sys_time<microseconds> Date::time() const noexcept {
    using Time = std::chrono::sys_time<microseconds>;
    const double since = since1970();
    // Beyond these, microseconds overflow 64 bits.
    constexpr double limit = 9.2e12;
    if (since >= limit) return Time::max();
    if (since <= -limit) return Time::min();
    const double whole = std::floor(seconds_);
    const auto seconds = static_cast<std::int64_t>(whole) + static_cast<std::int64_t>(referenceSince1970);
    const auto fraction = static_cast<std::int64_t>(std::llround((seconds_ - whole) * 1e6));
    return Time(microseconds(seconds * 1'000'000 + fraction));
}

std::optional<std::string> Date::iso8601() const {
    if (*this < distantPast() || since1970() >= 253'402'300'800.0) return std::nullopt;
    const auto moment = time();
    const auto day = std::chrono::floor<days>(moment);
    const year_month_day date(day);
    if (static_cast<int>(date.year()) > 9999) return std::nullopt;
    const std::int64_t ofDay = (moment - day).count();
    const std::int64_t seconds = ofDay / 1'000'000;
    std::string text = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(date.year()),
                                   static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                                   seconds / 3600, seconds / 60 % 60, seconds % 60);
    if (const std::int64_t fraction = ofDay % 1'000'000; fraction != 0) {
        text += fmt::format(".{:06}", fraction);
        text.erase(text.find_last_not_of('0') + 1);
    }
    text += 'Z';
    return text;
}

namespace {

/// Reads fixed-width fields off the front of a text.
class FieldScanner {
  public:
    explicit FieldScanner(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    bool accept(std::string_view anyOf) {
        if (rest_.empty() || anyOf.find(rest_.front()) == std::string_view::npos) return false;
        last_ = rest_.front();
        rest_.remove_prefix(1);
        return true;
    }
    [[nodiscard]] char accepted() const { return last_; }
    std::optional<int> digits(std::size_t width) {
        if (rest_.size() < width) return std::nullopt;
        int value = 0;
        for (const char c : rest_.substr(0, width)) {
            if (c < '0' || c > '9') return std::nullopt;
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(width);
        return value;
    }
    /// The digits of a fraction, as a number below one. Absent when there are none.
    std::optional<double> fraction() {
        double value = 0;
        double unit = 0.1;
        std::size_t count = 0;
        while (!rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9') {
            value += unit * (rest_.front() - '0');
            unit /= 10;
            ++count;
            rest_.remove_prefix(1);
        }
        if (count == 0) return std::nullopt;
        return std::round(value * 1e6) / 1e6;
    }

  private:
    std::string_view rest_;
    char last_ = '\0';
};

}  // namespace

std::optional<Date> Date::parseISO8601(std::string_view text) {
    FieldScanner scanner(text);
    const auto year = scanner.digits(4);
    if (!year || !scanner.accept("-")) return std::nullopt;
    const auto month = scanner.digits(2);
    if (!month || !scanner.accept("-")) return std::nullopt;
    const auto day = scanner.digits(2);
    if (!day) return std::nullopt;
    const year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                              std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok() || *year < 1) return std::nullopt;
    const Date midnight = from(sys_days(date));
    if (scanner.atEnd()) return midnight;

    if (!scanner.accept("Tt")) return std::nullopt;
    const auto hour = scanner.digits(2);
    if (!hour || *hour > 23 || !scanner.accept(":")) return std::nullopt;
    const auto minute = scanner.digits(2);
    if (!minute || *minute > 59 || !scanner.accept(":")) return std::nullopt;
    const auto second = scanner.digits(2);
    if (!second || *second > 59) return std::nullopt;
    double fraction = 0;
    if (scanner.accept(".,")) {
        const auto read = scanner.fraction();
        if (!read) return std::nullopt;
        fraction = *read;
    }
    int offset = 0;
    if (scanner.accept("+-")) {
        const int sign = scanner.accepted() == '-' ? -1 : 1;
        const auto offsetHour = scanner.digits(2);
        if (!offsetHour || *offsetHour > 23) return std::nullopt;
        (void)scanner.accept(":");
        const auto offsetMinute = scanner.digits(2);
        if (!offsetMinute || *offsetMinute > 59) return std::nullopt;
        offset = sign * (*offsetHour * 3600 + *offsetMinute * 60);
    } else if (!scanner.accept("Zz")) {
        return std::nullopt;
    }
    if (!scanner.atEnd()) return std::nullopt;
    const int ofDay = *hour * 3600 + *minute * 60 + *second - offset;
    return midnight + static_cast<double>(ofDay) + fraction;
}

std::string Date::description() const {
    if (auto text = iso8601()) return *std::move(text);
    return fmt::format("{} s since 2001-01-01T00:00:00Z", seconds_);
}

}  // namespace kestrel
