#include <kestrel/coding/wire_form.h>
#include <kestrel/records/partial_date.h>
#include <chrono>

namespace kestrel {

KESTREL_FIELDS(PartialDate, day, month, year);

std::optional<Date> PartialDate::date(const Calendar& calendar) const {
    constexpr std::int64_t farthestYear = 9999;
    constexpr std::int64_t yearOfYearless = 2000;
    const std::int64_t inYear = year.value_or(yearOfYearless);
    if (inYear < -farthestYear || inYear > farthestYear || month < 1 || month > 12 || day < 1 || day > 31) {
        return std::nullopt;
    }
    const std::chrono::year_month_day components{std::chrono::year(static_cast<int>(inYear)),
                                                 std::chrono::month(static_cast<unsigned>(month)),
                                                 std::chrono::day(static_cast<unsigned>(day))};
    if (!components.ok()) return std::nullopt;
    return calendar.startOf(std::chrono::local_days(components));
}

}  // namespace kestrel
