#include <kestrel/coding/wire_form.h>
#include <kestrel/files/url_reference.h>

namespace kestrel {

KESTREL_FIELDS(URLReference, urlReferenceID, createDate, deletionDate, deletionIdentifier, deletionUserID, modifyDate,
               name, note, urlString, permissions);

}  // namespace kestrel
