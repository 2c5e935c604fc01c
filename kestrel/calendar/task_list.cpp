#include <kestrel/calendar/task_list.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(TaskList, taskListID, createDate, deletionDate, deletionIdentifier, deletionUserID, details, modifyDate,
               name, opportunityID, order, projectID);

}  // namespace kestrel
