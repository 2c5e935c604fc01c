#include <kestrel/coding/wire_form.h>
#include <kestrel/lookups/team.h>

namespace kestrel {

KESTREL_FIELDS(Team, teamID, createDate, deletionDate, deletionIdentifier, deletionUserID, details, isActive,
               isUserPrivateTeam, modifyDate, name, order);

}  // namespace kestrel
