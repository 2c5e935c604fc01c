#include "host_record.h"

#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(outside::Vehicle, vehicleID, plate, seats);

}  // namespace kestrel
