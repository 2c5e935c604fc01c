#include <kestrel/coding/wire_form.h>
#include <kestrel/records/group.h>

namespace kestrel {

KESTREL_FIELDS(Group, groupID, active, assignedToID, categoryID, createDate, createdByID, defaultNoteID, deletionDate,
               deletionIdentifier, deletionUserID, endDate, extra1, extra10, extra11, extra12, extra2, extra3, extra4,
               extra5, extra6, extra7, extra8, extra9, extraDate1, extraDate2, extraDate3, extraDate4, level, message,
               modifyDate, name, note, order, parentGroupID, permissionMask, sourceImportID, startDate,
               visibilityPresetID, permissions);

}  // namespace kestrel
