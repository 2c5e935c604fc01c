#include <host/activity/activity_query.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_activity_service.h>
#include <host/terminal/day_text.h>

namespace kestrel::host {

AnyPublisher<ActivitySummary, ReadError> SQLiteActivityService::fetchActivity(const ActivitySourceID& source,
                                                                              const CalendarMoment& at,
                                                                              std::size_t limit) {
    return reading([context = context_, source, at, limit] {
        return context->read(
            [&](ReadableRecords& records, const Directory&) { return activityOf(records, source, at, limit); });
    });
}

AnyPublisher<ActivitySummary, ReadError> SQLiteActivityService::observeActivity(const ActivitySourceID& source,
                                                                                std::size_t limit) {
    return observing(context_, [context = context_, source, limit] {
        return context->read([&](ReadableRecords& records, const Directory&) {
            const CalendarMoment at{.calendar = calendarOf(records.user()), .now = context->now()};
            return activityOf(records, source, at, limit);
        });
    });
}

}  // namespace kestrel::host
