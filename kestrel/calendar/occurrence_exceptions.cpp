#include <kestrel/calendar/occurrence_exceptions.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(TaskException, taskExceptionID, dateTime, deletionDate, deletionIdentifier, deletionUserID, taskID);

KESTREL_FIELDS(TimeblockException, timeblockExceptionID, dateTime, deletionDate, deletionIdentifier, deletionUserID,
               timeblockID);

}  // namespace kestrel
