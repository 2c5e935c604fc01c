#include <fmt/format.h>
#include <host/activity/activity_query.h>
#include <host/activity/activity_rendering.h>
#include <host/board/board_options.h>
#include <host/command/activity_command.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/store/find_record.h>
#include <host/terminal/day_text.h>
#include <host/terminal/text.h>
#include <kestrel/services/activity_service.h>

#include <utility>

namespace kestrel::host {
namespace {

constexpr std::size_t usualLimit = 20;

}  // namespace

void activityCommand(const ActivityOptions& options, Output& output, const Terminal& terminal) {
    const AnyObjectID id = identifierOf(options.record);
    const auto source = activitySourceOf(id);
    if (!source) {
        throw WrongUsage(fmt::format("there is no activity of {}; there is of: {}", id.stringValue(),
                                     listed(activitySourceEntities())));
    }
    Runtime runtime = makeUserRuntime(options.database, options.user);
    RecordsService& records = runtime[host_services::records];
    const User user = valueOf(records.fetchUser());
    CalendarMoment at{.calendar = calendarOf(user), .now = Date::now()};
    if (options.at) at.now = momentOf(*options.at, at.calendar);
    ActivitySummary summary =
        valueOf(runtime[services::activity].fetchActivity(*source, at, options.limit.value_or(usualLimit)), id);
    const ActivityPicture picture{.summary = std::move(summary),
                                  .title = valueOf(records.fetchTitle(id), id),
                                  .userName = shownName(user),
                                  .at = at};
    if (options.isJSON) return writeJSONLine(activityJSON(picture.summary), output, terminal);
    output.write(rendered(picture, terminal));
}

}  // namespace kestrel::host
