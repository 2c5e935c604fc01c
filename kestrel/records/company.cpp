#include <kestrel/coding/wire_form.h>
#include <kestrel/records/company.h>

namespace kestrel {

KESTREL_FIELDS(Company, organizationID, assignedToID, categoryID, createDate, createdByID, davCachedDepartment,
               davIdentifier, defaultNoteID, deletionDate, deletionIdentifier, deletionUserID, detailsID, eTag, extra1,
               extra10, extra11, extra12, extra2, extra3, extra4, extra5, extra6, extra7, extra8, extra9, extraDate1,
               extraDate2, extraDate3, extraDate4, flagged, imageDataID, industryTypeID, level, modifyDate, name,
               numberOfEmployees, order, permissionMask, regionTypeID, sicCode, sourceImportID, tagline, tickerSymbol,
               visibilityPresetID, permissions, category);

}  // namespace kestrel
