#include <fmt/format.h>
#include <host/activity/activity_query.h>
#include <host/activity/activity_rendering.h>
#include <host/board/board_options.h>
#include <host/command/activity_command.h>
#include <host/contact/contact_names.h>
#include <host/store/find_record.h>
#include <host/store/store.h>
#include <host/terminal/day_text.h>
#include <host/terminal/text.h>

namespace kestrel::host {
namespace {

constexpr std::size_t usualLimit = 20;

/// What a record is called, with its identifier: "Ada Lovelace (Contact/12)".
template <class Record>
std::string titleOf(const Record& record) {
    const std::string id = record.objectID().stringValue();
    std::optional<std::string> name;
    if constexpr (std::is_same_v<Record, Contact>) {
        name = shownName(record);
    } else if constexpr (requires { record.subject; }) {
        name = textIn(record.subject);
    } else if constexpr (requires { record.title; }) {
        name = textIn(record.title);
    } else {
        name = textIn(record.name);
    }
    return !name || *name == id ? id : fmt::format("{} ({})", *name, id);
}

}  // namespace

void activityCommand(const ActivityOptions& options, Output& output, const Terminal& terminal) {
    const AnyObjectID id = identifierOf(options.record);
    const auto source = activitySourceOf(id);
    if (!source) {
        throw WrongUsage(fmt::format("there is no activity of {}; there is of: {}", id.stringValue(),
                                     listed(activitySourceEntities())));
    }
    const ActivityPicture picture = withDatabase(options.database, [&] {
        ReadingStore store(options.database);
        const Directory directory(store.database());
        const User& user = directory.user(options.user);
        ReadableRecords records(store.database(), directory, user);
        CalendarMoment at{.calendar = calendarOf(user), .now = Date::now()};
        if (options.at) at.now = momentOf(*options.at, at.calendar);
        ActivitySummary summary = activityOf(records, *source, at, options.limit.value_or(usualLimit));
        return ActivityPicture{
            .summary = std::move(summary),
            .title = source->match([&](const auto& sourceID) { return titleOf(records.required(sourceID)); }),
            .userName = shownName(user),
            .at = at};
    });
    if (options.isJSON) return writeJSONLine(activityJSON(picture.summary), output, terminal);
    output.write(rendered(picture, terminal));
}

}  // namespace kestrel::host
