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
    /// How many entries there are.
    std::int64_t found{};
    /// How many became records.
    std::int64_t imported{};
    /// Those that were there before, in the database or earlier in the same import.
    std::int64_t repeated{};
    /// How many could not be read.
    std::int64_t broken{};

    friend bool operator==(const ImportCount&, const ImportCount&) = default;
};

/// An entry that could not be imported as it is.
struct ImportProblem {
    /// The file that it is about.
    std::filesystem::path file{};
    /// From 1; absent when it is about the file as a whole.
    std::optional<std::int64_t> line{};
    /// What is wrong, in a sentence.
    std::string description{};

    friend bool operator==(const ImportProblem&, const ImportProblem&) = default;
};

/// What became of an import.
struct ImportResult {
    /// One entry a kind.
    std::vector<ImportCount> counts{};
    /// In the order in which they were found.
    std::vector<ImportProblem> problems{};

    friend bool operator==(const ImportResult&, const ImportResult&) = default;
};

}  // namespace kestrel
