// expect: must list every member, each once
#include <kestrel/coding/wire_form.h>

namespace kestrel {

struct Point {
    using Coded = void;
    double x{};
    std::optional<double> y{};
};
#ifdef KESTREL_CORRECT
KESTREL_FIELDS(Point, x, y);
#else
KESTREL_FIELDS(Point, x);
#endif

}  // namespace kestrel
