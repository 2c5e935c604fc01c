// expect: private|no viable overloaded
#include <kestrel/records/company.h>

using namespace kestrel;

void change(Company& company) {
#ifdef KESTREL_CORRECT
    company = Company{.organizationID = 7};
#else
    company.organizationID = 7;
#endif
}
