#include <kestrel/calendar/alert_object.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(AlertObject, alertObjectID, alertTypeCode, createDate, deletionDate, deletionIdentifier, deletionUserID,
               dismissed, hidden, isReadCode, isShownCode, messageBlob, opportunityID, projectID, receivingUserID,
               sendingUserID, taskID, timeblockID, userInfoStorage);

}  // namespace kestrel
