// expect: could not convert|no viable conversion|conversion from .* requested
#include <kestrel/identity/object_id.h>

using namespace kestrel;

#ifdef KESTREL_CORRECT
ObjectID<Company> convert(ObjectID<Company> company) {
    return company;
}
#else
ObjectID<Company> convert(ObjectID<Contact> contact) {
    return contact;
}
#endif
