#include <kestrel/coding/wire_form.h>
#include <kestrel/relationships/any_role.h>

namespace kestrel {

KESTREL_FIELDS(AnyRole, roleID, createDate, deletionDate, deletionIdentifier, deletionUserID, department,
               isDefaultForContact, name, roleType);

}  // namespace kestrel
