#include <kestrel/coding/wire_form.h>
#include <kestrel/records/project.h>

namespace kestrel {

KESTREL_FIELDS(Project, projectID, assignedToID, cachedTotalEstimatedTime, categoryID, completeDate, createDate,
               createdByID, currentPipelineID, currentPipelineStageHistoryID, currentPipelineStageID, defaultNoteID,
               delegateChain, deletionDate, deletionIdentifier, deletionUserID, details, dueDate, estimatedTime, extra1,
               extra10, extra11, extra12, extra2, extra3, extra4, extra5, extra6, extra7, extra8, extra9, extraDate1,
               extraDate2, extraDate3, extraDate4, goalID, lastStatusCode, level, modifyDate, name, opportunityID,
               order, percentComplete, permissionMask, projectCode, sourceImportID, startDate, statusCode,
               visibilityPresetID, permissions, category);

}  // namespace kestrel
