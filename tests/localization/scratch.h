#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include <stdlib.h>
#include <sys/wait.h>

namespace kestrel::test {

/// A folder of its own for one test, gone with the test.
class ScratchFolder {
  public:
    ScratchFolder() {
        auto name = (std::filesystem::temp_directory_path() / "kestrel-XXXXXX").native();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder");
        path_ = std::filesystem::canonical(name);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Writes a file and the folders above it.
    std::filesystem::path write(const std::filesystem::path& name, std::string_view content) const {
        auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream{file, std::ios::binary} << content;
        return file;
    }

  private:
    std::filesystem::path path_;
};

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
    const ScratchFolder scratch;
    const auto log = scratch.path() / "log";
    const int status = std::system(("( " + command + " ) > '" + log.native() + "' 2>&1").c_str());
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1, .output = contentsOf(log)};
}

}  // namespace kestrel::test
