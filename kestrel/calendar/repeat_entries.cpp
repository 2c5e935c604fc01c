#include <kestrel/calendar/repeat_entries.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(RepeatEntry, repeatEntryID, daysOfYear, deletionDate, deletionIdentifier, deletionUserID, timeblockID,
               year);

KESTREL_FIELDS(RepeatExceptionEntry, repeatExceptionEntryID, daysOfYear, deletionDate, deletionIdentifier,
               deletionUserID, timeblockID, year);

}  // namespace kestrel
