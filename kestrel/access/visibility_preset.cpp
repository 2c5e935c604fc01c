#include <kestrel/access/visibility_preset.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(VisibilityPreset, (objectID, visibilityPresetID), deletionDate, deletionIdentifier, deletionUserID, name,
               noReadAccess, noWriteAccess);

}  // namespace kestrel
