#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace kestrel::host {

enum class PersonalFileKind : std::uint8_t { cards, calendar, message };

struct PersonalFile {
    PersonalFileKind kind{};
    /// As it was given, or below the folder that was given.
    std::filesystem::path path{};
};

/// What the paths of an import mean.
struct ImportPaths {
    /// Folders of a CRM export, which have one of its files in them.
    std::vector<std::filesystem::path> exports{};
    /// Files of cards, calendars and mail, in the order of the paths; those of a folder by their names.
    std::vector<PersonalFile> files{};
};

/// Looks the paths up. A folder stands for all files of a known kind in it and in the folders below it; others in it
/// are of no concern. What is given twice is read once. A Failure names a path that does not exist, a file of no known
/// kind, and a folder that has nothing to import.
[[nodiscard]] ImportPaths importPathsOf(const std::vector<std::filesystem::path>& paths);

}  // namespace kestrel::host
