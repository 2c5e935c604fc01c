#include <kestrel/coding/wire_form.h>
#include <kestrel/foundation/rgba_color.h>

namespace kestrel {

KESTREL_FIELDS(RGBAColor, red, green, blue, alpha);

}  // namespace kestrel
