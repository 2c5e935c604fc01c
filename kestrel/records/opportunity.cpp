#include <kestrel/coding/wire_form.h>
#include <kestrel/records/opportunity.h>

namespace kestrel {

KESTREL_FIELDS(Opportunity, opportunityID, assignedToID, cachedTotalAmount, categoryID, completeDate, connectorLockDate,
               connectorLockIdentifier, connectorLockUserID, createDate, createdByID, currentPipelineID,
               currentPipelineStageHistoryID, currentPipelineStageID, defaultNoteID, delegateChain, deletionDate,
               deletionIdentifier, deletionUserID, details, dueDate, extra1, extra10, extra11, extra12, extra2, extra3,
               extra4, extra5, extra6, extra7, extra8, extra9, extraDate1, extraDate2, extraDate3, extraDate4, goalID,
               lastOpportunityStateType, level, modifyDate, name, opportunityCode, opportunityStateReasonID,
               opportunityStateType, opportunityTypeID, order, permissionMask, probability, productServiceID,
               sourceImportID, startDate, termID, unitPrice, units, visibilityPresetID, permissions, category);

}  // namespace kestrel
