#pragma once

#include <host/people/calendar_entry.h>
#include <host/people/import_store.h>
#include <kestrel/calendar/task.h>
#include <vector>

namespace kestrel::host {

/// Brings the database up to date with the entries of calendars, in the caller's transaction. What an entry says is
/// written over what there was.
///
/// - An event becomes an appointment, a to-do a task, a journal entry a note. Each is found again by its identifier and
///   the occurrence that it stands for; one without an identifier by what and when it is. Days and times are compared
///   as the file has them, so that those without a zone are the same ones in every zone.
/// - An entry that is older than the record that came of it is left out with a warning.
/// - What has other exceptions, invitations or addresses than before has changed.
/// - An entry that stands for one occurrence of a series is a record of its own, with `repeatOriginalDate`, and an
///   exception of the series, as are the occurrences that the series leaves out.
/// - Everybody who is invited to an event becomes an invitation. Those whom an entry names are linked to it by their
///   addresses, as its subjects.
/// - Of an appointment that lasts whole days the end is the start of the day behind it. A position stands behind the
///   location. Priorities of tasks are those of the file: 0 for none, 1 for the highest, 9 for the lowest. How far an
///   unfinished task is done is the last line of its details.
void importCalendarEntries(const std::vector<CalendarEntry>& entries, ImportStore& store);

/// Notes that a task stands for the occurrence of another one at a moment, and has its addresses, so that a later
/// import of the series takes the two for what an earlier import made of it. Does nothing for a series of no import.
void noteOccurrence(SQLite::Database& database, const ObjectID<Task>& series, Date occurrence,
                    const ObjectID<Task>& task);

}  // namespace kestrel::host
