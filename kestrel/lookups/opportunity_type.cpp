#include <kestrel/coding/wire_form.h>
#include <kestrel/lookups/opportunity_type.h>

namespace kestrel {

KESTREL_FIELDS(OpportunityType, opportunityTypeID, createDate, deletionDate, deletionIdentifier, deletionUserID,
               isActive, modifyDate, name, order);

}  // namespace kestrel
