#pragma once

#include <host/terminal/output.h>
#include <kestrel/activity/activity_summary.h>
#include <kestrel/foundation/calendar.h>
#include <string>
#include <vector>

namespace kestrel::host {

/// A summary with what stands above it.
struct ActivityPicture {
    ActivitySummary summary;
    /// What the record is called.
    std::string title{};
    /// Who looks at it.
    std::string userName{};
    CalendarMoment at{};
};

/// An item as lists show it.
struct ActivityEntry {
    /// Of the day; empty for what is dated to a whole day.
    std::string time{};
    std::string kind{};
    std::string title{};
    /// Further facts, in the order of their weight.
    std::vector<std::string> facts{};
};
struct ActivityDay {
    std::string heading{};
    std::vector<ActivityEntry> entries{};
};
/// The recent items by day, the newest first.
[[nodiscard]] std::vector<ActivityDay> activityDays(const ActivitySummary& summary, const CalendarMoment& at);

/// The summary as text: the totals, and then the recent items by day, the newest first.
[[nodiscard]] std::string rendered(const ActivityPicture& picture, const Terminal& terminal);

/// The summary as a JSON object, the recent items in keyed form.
[[nodiscard]] std::string activityJSON(const ActivitySummary& summary);

/// The first line of a note's text that is not blank, without the marks of HTML; empty when there is none.
[[nodiscard]] std::string firstLine(const TextBody& body);

}  // namespace kestrel::host
