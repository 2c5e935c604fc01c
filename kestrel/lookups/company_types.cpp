#include <kestrel/coding/wire_form.h>
#include <kestrel/lookups/company_types.h>

namespace kestrel {

KESTREL_FIELDS(CompanyType, companyTypeID, createDate, deletionDate, deletionIdentifier, deletionUserID, isActive,
               modifyDate, name, order);
KESTREL_FIELDS(IndustryType, industryTypeID, createDate, deletionDate, deletionIdentifier, deletionUserID, isActive,
               modifyDate, name, order);
KESTREL_FIELDS(RegionType, regionTypeID, createDate, deletionDate, deletionIdentifier, deletionUserID, isActive,
               modifyDate, name, order);

}  // namespace kestrel
