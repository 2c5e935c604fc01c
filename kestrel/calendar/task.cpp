#include <kestrel/calendar/task.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(Task, taskID, billedDate, completeDate, createDate, deletionDate, deletionIdentifier, deletionUserID,
               details, dueDate, estimatedTime, isSomeday, kind, location, modifyDate, priority, repeatByDays,
               repeatByMonthDays, repeatByMonths, repeatByNthDay, repeatCount, repeatEndDate, repeatFrequency,
               repeatInterval, repeatModifyDate, repeatOriginalDate, startDate, status, title, urlString, permissions,
               category, keywords);

}  // namespace kestrel
