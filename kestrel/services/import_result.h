#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// What became of the entries of one kind: found = imported + repeated + broken.
struct ImportCount {
    /// What they are, as a program calls them: "cards", "events".
    std::string kind{};
    std::int64_t found{};
    std::int64_t imported{};
    /// Those that were there before, in the database or earlier in the same import.
    std::int64_t repeated{};
    std::int64_t broken{};

    friend bool operator==(const ImportCount&, const ImportCount&) = default;
};

/// An entry that could not be imported as it is.
struct ImportProblem {
    std::filesystem::path file{};
    /// From 1; absent when it is about the file as a whole.
    std::optional<std::int64_t> line{};
    std::string description{};

    friend bool operator==(const ImportProblem&, const ImportProblem&) = default;
};

struct ImportResult {
    std::vector<ImportCount> counts{};
    std::vector<ImportProblem> problems{};

    friend bool operator==(const ImportResult&, const ImportResult&) = default;
};

}  // namespace kestrel
