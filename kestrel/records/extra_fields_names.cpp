#include <kestrel/coding/wire_form.h>
#include <kestrel/records/extra_fields_names.h>

namespace kestrel {

KESTREL_FIELDS(ExtraFieldsNames, (objectID, extraFieldsNamesID), deletionDate, deletionIdentifier, deletionUserID,
               extra1, extra10, extra11, extra12, extra2, extra3, extra4, extra5, extra6, extra7, extra8, extra9,
               extraDate1, extraDate2, extraDate3, extraDate4, typeString);

}  // namespace kestrel
