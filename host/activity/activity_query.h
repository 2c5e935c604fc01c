#pragma once

#include <host/store/readable_records.h>
#include <kestrel/activity/activity_summary.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/identity/activity_source_id.h>
#include <kestrel/identity/any_object_id.h>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::host {

/// The record of that identifier as a source of activity; absent when records of its type have none.
[[nodiscard]] std::optional<ActivitySourceID> activitySourceOf(const AnyObjectID& id);
/// The entities of the records that have activity.
[[nodiscard]] std::vector<std::string> activitySourceEntities();

/// What happened around a record up to a moment, as a user may see it. A Failure when the user may not see the record.
///
/// An item belongs to the record when it has the record as its subject. A company also has the items of its people, the
/// contacts with a role there, since what is talked about with them is talked about with the company; an item of both
/// counts once. Items, roles and people that are deleted or not to be read by the user do not count.
///
/// The totals count all of these items. The lists hold at most `limit` items each, 0 for all, the newest first and of
/// equal dates the one with the greater key first; what is dated later than the day of the moment has not happened yet
/// and is in none of them, and what has no date comes last:
///
/// - emails by the date of the message, appointments by their start, and notes, forms, files and links by when they
/// were
///   created;
/// - completed tasks, which are done, by when they were;
/// - overdue tasks, which are neither done nor cancelled and were due before the moment, by when they were due;
/// - tasks without a due date, neither done nor cancelled, by when they were created.
///
/// A task is "mine" when the user owns it, incomplete when it is neither done nor cancelled, and for some day when it
/// is incomplete and kept for some day. A form comes with its template and its fields in their order.
[[nodiscard]] ActivitySummary activityOf(ReadableRecords& records, const ActivitySourceID& source,
                                         const CalendarMoment& at, std::size_t limit);

}  // namespace kestrel::host
