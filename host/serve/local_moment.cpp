#include <date/tz.h>
#include <fmt/format.h>
#include <host/serve/local_moment.h>
#include <host/terminal/day_text.h>

#include <chrono>
#include <cmath>

namespace kestrel::host {

std::string localMomentText(Date date, const Calendar& calendar) {
    if (!isReachable(date)) return "";
    const auto local = localTime(date, calendar);
    const auto day = std::chrono::floor<std::chrono::days>(local);
    const std::chrono::year_month_day ymd(day);
    const std::chrono::hh_mm_ss time(local - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}", static_cast<int>(ymd.year()),
                       static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()), time.hours().count(),
                       time.minutes().count());
}

std::optional<Date> momentOfLocalText(std::string_view text, const Calendar& calendar) {
    constexpr std::size_t withMinutes = std::string_view("2017-03-14T09:30").size();
    constexpr std::size_t withSeconds = withMinutes + 3;
    if (text.size() != withMinutes && text.size() != withSeconds) return std::nullopt;
    // As if the clocks were those of UTC.
    const auto shown = Date::parseISO8601(std::string(text) + (text.size() == withMinutes ? ":00Z" : "Z"));
    if (!shown || !isReachable(*shown)) return std::nullopt;
    const std::string_view zone = calendar.timeZoneName();
    if (zone == "UTC") return shown;
    const ::date::local_seconds local(std::chrono::seconds(std::llround(shown->since1970())));
    const auto moment = ::date::locate_zone(zone)->to_sys(local, ::date::choose::earliest);
    return Date::since1970(static_cast<double>(moment.time_since_epoch().count()));
}

}  // namespace kestrel::host
