#include <kestrel/activity/note.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(Note, noteID, body, createDate, deletionDate, deletionIdentifier, deletionUserID, modifyDate,
               organizationID, title, permissions, category, keywords);

}  // namespace kestrel
