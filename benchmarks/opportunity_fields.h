#pragma once

/// The members of an Opportunity that are texts, numbers and dates, for codecs written by hand against other libraries:
/// X(member) once each. The identifier, the permissions and the category are objects and handled apart.
#define OPPORTUNITY_PLAIN_FIELDS(X)                                                                                 \
    X(assignedToID)                                                                                                 \
    X(cachedTotalAmount)                                                                                            \
    X(categoryID)                                                                                                   \
    X(completeDate) X(connectorLockDate) X(connectorLockIdentifier) X(connectorLockUserID) X(createDate)            \
        X(createdByID) X(currentPipelineID) X(currentPipelineStageHistoryID) X(currentPipelineStageID)              \
            X(defaultNoteID) X(delegateChain) X(deletionDate) X(deletionIdentifier) X(deletionUserID) X(details)    \
                X(dueDate) X(extra1) X(extra10) X(extra11) X(extra12) X(extra2) X(extra3) X(extra4) X(extra5)       \
                    X(extra6) X(extra7) X(extra8) X(extra9) X(extraDate1) X(extraDate2) X(extraDate3) X(extraDate4) \
                        X(goalID) X(lastOpportunityStateType) X(level) X(modifyDate) X(name) X(opportunityCode)     \
                            X(opportunityStateReasonID) X(opportunityStateType) X(opportunityTypeID) X(order)       \
                                X(permissionMask) X(probability) X(productServiceID) X(sourceImportID) X(startDate) \
                                    X(termID) X(unitPrice) X(units) X(visibilityPresetID)
