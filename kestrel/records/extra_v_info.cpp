#include <kestrel/coding/wire_form.h>
#include <kestrel/records/extra_v_info.h>

namespace kestrel {

KESTREL_FIELDS(ExtraVInfo, (objectID, extraVInfoID), contactID, deletionDate, deletionIdentifier, deletionUserID, info,
               organizationID, taskID, timeblockID, userID);

}  // namespace kestrel
