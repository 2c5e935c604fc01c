// expect: no match for|invalid operands
#include <kestrel/identity/object_id.h>

using namespace kestrel;

bool same(ObjectID<Contact> contact, ObjectID<Company> company) {
#ifdef KESTREL_CORRECT
    return contact == contact && company == company;
#else
    return contact == company;
#endif
}
