#include <kestrel/coding/wire_form.h>
#include <kestrel/session/database_preference.h>

namespace kestrel {

KESTREL_FIELDS(DatabasePreference, databasePreferenceID, deletionDate, deletionIdentifier, deletionUserID, name,
               prefValue);

}  // namespace kestrel
