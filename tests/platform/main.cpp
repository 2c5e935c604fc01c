#include "support.h"

#include <gtest/gtest.h>

#include <iostream>

// What the desktop of whoever runs the tests holds is kept out of them; each test says what there is. Variables that
// are set already are those that a test gives to a part of its own.
int main(int argc, char** argv) {
    for (const auto* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "XDG_CURRENT_DESKTOP", "http_proxy",
                             "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"}) {
        if (argc < 2 || std::string_view(argv[1]) != "--as") unsetenv(name);
    }
    setenv("GSETTINGS_BACKEND", "memory", 0);
    setenv("GIO_USE_VFS", "local", 0);

    if (argc > 2 && std::string_view(argv[1]) == "--as") {
        const auto part = kestrel::test::parts().find(argv[2]);
        if (part == kestrel::test::parts().end()) {
            std::cerr << "There is no part " << argv[2] << '\n';
            return 2;
        }
        return part->second({argv + 3, argv + argc});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
