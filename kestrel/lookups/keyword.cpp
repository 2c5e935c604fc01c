#include <kestrel/coding/wire_form.h>
#include <kestrel/lookups/keyword.h>

namespace kestrel {

KESTREL_FIELDS(Keyword, keywordID, createDate, deletionDate, deletionIdentifier, deletionUserID, isActive, modifyDate,
               name, order);

}  // namespace kestrel
