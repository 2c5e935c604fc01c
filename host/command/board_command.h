#pragma once

#include <host/terminal/output.h>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::host {

/// `kestrel board --database FILE --user NAME`.
struct BoardOptions {
    std::string database{};
    std::string user{};
    /// "KEY=VALUE" each, or "none".
    std::vector<std::string> filters{};
    /// "KEY" or "KEY:ORDER".
    std::optional<std::string> sort{};
    /// Now when absent.
    std::optional<std::string> at{};
    /// The most cards to show of a column; 0 shows all. When absent ten, and in JSON all.
    std::optional<std::size_t> limit{};
    /// The file that the board's filter and order are read from, and left in.
    std::optional<std::string> config{};
    bool isJSON{};
};

/// Writes the board as a user may see it.
void boardCommand(const BoardOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
