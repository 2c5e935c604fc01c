#include <kestrel/boards/pipeline_board_date_range.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/localized.h>

namespace kestrel {

std::string localizedName(PipelineBoardDateRange range) {
    using enum PipelineBoardDateRange;
    switch (range) {
        case today: return localized("Today", "");
        case thisWeek: return localized("This Week", "");
        case thisMonth: return localized("This Month", "");
        case thisQuarter: return localized("This Quarter", "");
        case thisYear: return localized("This Year", "");
        case thisYearToDate: return localized("This Year to Date", "");
        case tomorrow: return localized("Tomorrow", "");
        case nextWeek: return localized("Next Week", "");
        case nextMonth: return localized("Next Month", "");
        case nextQuarter: return localized("Next Quarter", "");
        case nextYear: return localized("Next Year", "");
        case yesterday: return localized("Yesterday", "");
        case lastWeek: return localized("Last Week", "");
        case lastMonth: return localized("Last Month", "");
        case lastQuarter: return localized("Last Quarter", "");
        case lastYear: return localized("Last Year", "");
        case none: return localized("None", "");
    }
    fatal("A PipelineBoardDateRange holds no case.");
}

std::optional<DateRange> resolve(PipelineBoardDateRange range, const Calendar& calendar, Date now) {
    using enum PipelineBoardDateRange;
    using std::chrono::days;
    using std::chrono::local_days;
    using std::chrono::weeks;
    namespace of = calendar_days;

    const local_days day = calendar.dayOf(now);
    const auto between = [&](local_days first, local_days behind) {
        return DateRange{calendar.startOf(first), calendar.startOf(behind)};
    };
    const auto someDays = [&](int from) { return between(day + days(from), day + days(from + 1)); };
    const auto someWeek = [&](int from) {
        const local_days week = of::startOfWeek(day, calendar.firstWeekday()) + weeks(from);
        return between(week, week + weeks(1));
    };
    const auto someMonths = [&](local_days start, int from, int length) {
        const local_days first = of::addMonths(start, from * length);
        return between(first, of::addMonths(first, length));
    };
    const auto someMonth = [&](int from) { return someMonths(of::startOfMonth(day), from, 1); };
    const auto someQuarter = [&](int from) { return someMonths(of::startOfQuarter(day), from, 3); };
    const auto someYear = [&](int from) { return someMonths(of::startOfYear(day), from, 12); };

    switch (range) {
        case today: return someDays(0);
        case thisWeek: return someWeek(0);
        case thisMonth: return someMonth(0);
        case thisQuarter: return someQuarter(0);
        case thisYear: return someYear(0);
        case thisYearToDate: return between(of::startOfYear(day), day + days(1));
        case tomorrow: return someDays(1);
        case nextWeek: return someWeek(1);
        case nextMonth: return someMonth(1);
        case nextQuarter: return someQuarter(1);
        case nextYear: return someYear(1);
        case yesterday: return someDays(-1);
        case lastWeek: return someWeek(-1);
        case lastMonth: return someMonth(-1);
        case lastQuarter: return someQuarter(-1);
        case lastYear: return someYear(-1);
        case none: return std::nullopt;
    }
    fatal("A PipelineBoardDateRange holds no case.");
}

}  // namespace kestrel
