#include <kestrel/foundation/fatal.h>

#include <cstdio>
#include <cstdlib>

namespace kestrel {

void fatal(std::string_view message, std::source_location where) {
    std::string_view file = where.file_name();
    if (const auto slash = file.rfind('/'); slash != std::string_view::npos) file.remove_prefix(slash + 1);
    // NOLINTNEXTLINE(modernize-use-std-print): takes no memory, and the library of g++ 12 has no other.
    std::fprintf(stderr, "KestrelService: %.*s (%.*s:%u)\n", static_cast<int>(message.size()), message.data(),
                 static_cast<int>(file.size()), file.data(), static_cast<unsigned>(where.line()));
    std::fflush(stderr);
    std::abort();
}

}  // namespace kestrel
