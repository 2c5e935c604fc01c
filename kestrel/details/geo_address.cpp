#include <kestrel/coding/wire_form.h>
#include <kestrel/details/geo_address.h>

namespace kestrel {

KESTREL_FIELDS(GeoAddress, geoAddressID, city, country, countryCode, createDate, deletionDate, deletionIdentifier,
               deletionUserID, label, latitude, longitude, modifyDate, postalCode, state, street);

}  // namespace kestrel
