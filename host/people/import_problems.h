#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace kestrel::host {

/// What a file of people's data holds; each is counted apart.
enum class EntryKind : std::uint8_t { card, event, toDo, journal, message };
inline constexpr std::size_t entryKindCount = 5;
/// What programs call the entries of each kind.
inline constexpr std::array<std::string_view, entryKindCount> entryKeys{"cards", "events", "toDos", "journals",
                                                                        "messages"};

/// A line of a file; the first is 1.
struct FilePlace {
    std::string file{};
    std::size_t line = 1;

    [[nodiscard]] FilePlace at(std::size_t otherLine) const { return {.file = file, .line = otherLine}; }
};

/// Something in a file that could not be taken as it stands.
struct ImportProblem {
    FilePlace place{};
    std::string message{};
    /// Counts the problems as they were met.
    std::size_t number{};
};

/// What was wrong with the files, gathered while they are read and merged.
class ImportProblems {
  public:
    /// A part of an entry was left out or taken differently; the entry itself comes in.
    void warn(FilePlace place, std::string message) {
        problems_.push_back({.place = std::move(place), .message = std::move(message), .number = problems_.size()});
    }
    /// A whole entry was left out.
    void refuse(EntryKind kind, FilePlace place, std::string message) {
        ++refused_[static_cast<std::size_t>(kind)];
        warn(std::move(place), std::move(message));
    }

    /// Tells that a file is read now.
    void beginFile(const std::string& file) { ranks_.try_emplace(file, ranks_.size()); }
    /// Puts the problems in the order in which the files were read, those of a file in that of its lines.
    void sort() {
        std::ranges::sort(problems_, {}, [&](const ImportProblem& problem) {
            return std::tuple(ranks_[problem.place.file], problem.place.line, problem.number);
        });
    }

    [[nodiscard]] const std::vector<ImportProblem>& all() const noexcept { return problems_; }
    [[nodiscard]] std::size_t refused(EntryKind kind) const { return refused_[static_cast<std::size_t>(kind)]; }
    [[nodiscard]] std::size_t refused() const {
        std::size_t count = 0;
        for (const std::size_t ofKind : refused_)
            count += ofKind;
        return count;
    }

  private:
    std::vector<ImportProblem> problems_;
    /// The places of the files in the order in which they were read.
    std::map<std::string, std::size_t> ranks_;
    std::array<std::size_t, entryKindCount> refused_{};
};

}  // namespace kestrel::host
