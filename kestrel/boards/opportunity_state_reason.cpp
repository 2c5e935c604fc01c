#include <kestrel/boards/opportunity_state_reason.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(OpportunityStateReason, opportunityStateReasonID, active, createDate, deletionDate, deletionIdentifier,
               deletionUserID, details, name, opportunityStateType, order, privateTypeCode);

}  // namespace kestrel
