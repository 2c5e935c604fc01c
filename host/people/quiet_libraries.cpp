#include <glib.h>
#include <host/people/quiet_libraries.h>

namespace kestrel::host {

QuietLibraries::QuietLibraries()
    : before_(reinterpret_cast<AnyFunction>(
          g_log_set_default_handler([](const char*, GLogLevelFlags, const char*, void*) {}, nullptr))) {}

QuietLibraries::~QuietLibraries() {
    g_log_set_default_handler(reinterpret_cast<GLogFunc>(before_), nullptr);
}

}  // namespace kestrel::host
