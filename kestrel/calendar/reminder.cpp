#include <kestrel/calendar/reminder.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(Reminder, reminderID, active, archived, createDate, deletionDate, deletionIdentifier, deletionUserID,
               fireDatetime, firedDatetime, isDefaultForUserFlag, isRelativeFlag, measurement, modifyDate,
               reminderSettings, taskID, timeblockID, typeCode, unit, userID);

}  // namespace kestrel
