#pragma once

#include <host/store/record_writer.h>
#include <kestrel/calendar/task.h>
#include <kestrel/identity/occurrence_ids.h>

namespace kestrel::host {

/// Marks a task as done at a date, a repeating one as a whole. A Failure when the user may not change it.
Task markTaskDone(RecordWriter& records, const ObjectID<Task>& id, Date completionDate);

/// Marks one occurrence of a repeating task as done: it is taken out of the series by a TaskException and becomes a
/// task of its own, which is done, does not repeat, and has the subjects and the owner of the series. An import of the
/// series knows it as that occurrence.
///
/// RecordMissing when the task does not repeat, when the occurrence is due before the first or after the end of the
/// series, or when it has been taken out before. Whether the rule of the series gives that date is not asked: rules are
/// stored as their files have them. A Failure when the user may not change the series.
Task completeOccurrence(RecordWriter& records, const TaskOccurrence& occurrence, Date completionDate);

}  // namespace kestrel::host
