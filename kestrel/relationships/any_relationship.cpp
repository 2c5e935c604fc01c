#include <kestrel/coding/wire_form.h>
#include <kestrel/relationships/any_relationship.h>

namespace kestrel {

KESTREL_FIELDS(AnyRelationship, relationID, createDate, deletionDate, deletionIdentifier, deletionUserID, details,
               relationshipType);

}  // namespace kestrel
