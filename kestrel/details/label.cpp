#include <kestrel/coding/wire_form.h>
#include <kestrel/details/label.h>

namespace kestrel {

KESTREL_FIELDS(AnyLabel, labelID, createDate, deletionDate, deletionIdentifier, deletionUserID, isActive,
               isForElectronicAddress, isForGeoAddress, isForPhone, modifyDate, name, order);

}  // namespace kestrel
