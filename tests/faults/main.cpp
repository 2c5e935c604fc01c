#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>

#include <cerrno>
#include <cstdlib>

#include "sqlite_faults.h"

namespace kestrel::faults {

bool givesWatches = true;

}  // namespace kestrel::faults

/// The system's own, or that there are no more of them.
// NOLINTNEXTLINE(readability-identifier-naming): the system's name.
extern "C" int inotify_init1(int flags) noexcept {
    if (kestrel::faults::givesWatches) {
        static const auto original = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "inotify_init1"));
        return original(flags);
    }
    errno = EMFILE;
    return -1;
}

int main(int argc, char** argv) {
    // What the desktop says of whoever runs the tests is kept out of them.
    setenv("GSETTINGS_BACKEND", "memory", 0);
    setenv("GIO_USE_VFS", "local", 0);
    kestrel::faults::installSQLiteFaults();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
