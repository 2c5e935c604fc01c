#include <kestrel/activity/form.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(Form, customRecordSetID, createDate, deletionDate, deletionIdentifier, deletionUserID, modifyDate, name,
               permissions, keywords);

}  // namespace kestrel
