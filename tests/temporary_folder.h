#pragma once

#include <stdlib.h>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace kestrel::test {

/// A new folder, removed with everything in it at the end of its scope.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& within = std::filesystem::temp_directory_path()) {
        std::string name = (within / "kestrel-XXXXXX").native();
        if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
        path_ = std::filesystem::canonical(name);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

    /// Writes a file and makes the folders above it.
    // NOLINTNEXTLINE(modernize-use-nodiscard): many want the file only.
    std::filesystem::path write(const std::filesystem::path& name, std::string_view content) const {
        auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream{file, std::ios::binary} << content;
        return file;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace kestrel::test
