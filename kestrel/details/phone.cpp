#include <kestrel/coding/wire_form.h>
#include <kestrel/details/phone.h>

namespace kestrel {

KESTREL_FIELDS(Phone, phoneID, createDate, deletionDate, deletionIdentifier, deletionUserID, label, modifyDate, number);

}  // namespace kestrel
