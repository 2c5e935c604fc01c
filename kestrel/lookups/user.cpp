#include <kestrel/coding/wire_form.h>
#include <kestrel/lookups/user.h>

namespace kestrel {

KESTREL_FIELDS(User, userID, createDate, deletionDate, deletionIdentifier, deletionUserID, email, firstName, isActive,
               isAdmin, isRestrictedToDeleteObjects, isSuper, jobTitle, lastLoginDate, lastName, modifyDate, name,
               phone, timeZoneName, username, teamIDs);

}  // namespace kestrel
