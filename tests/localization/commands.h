#pragma once

#include "../temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/wait.h>

namespace kestrel::test {

inline std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{stream}, std::istreambuf_iterator<char>{}};
}

/// What a program run by the shell leaves behind.
struct CommandResult {
    /// -1 if a signal ended it.
    int status;
    /// Of standard output and standard error.
    std::string output;
};

inline CommandResult run(const std::string& command) {
    const TemporaryFolder scratch;
    const auto log = scratch.path() / "log";
    const int status = std::system(("( " + command + " ) > '" + log.native() + "' 2>&1").c_str());
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1, .output = contentsOf(log)};
}

}  // namespace kestrel::test
