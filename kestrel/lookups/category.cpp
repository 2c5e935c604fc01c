#include <kestrel/coding/wire_form.h>
#include <kestrel/lookups/category.h>

namespace kestrel {

KESTREL_FIELDS(Category, categoryID, color, createDate, deletionDate, deletionIdentifier, deletionUserID, isActive,
               modifyDate, name, order);

}  // namespace kestrel
