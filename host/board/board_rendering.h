#pragma once

#include <host/terminal/output.h>
#include <kestrel/boards/board.h>
#include <kestrel/foundation/calendar.h>
#include <cstddef>
#include <string>

namespace kestrel::host {

/// A board with what stands above it.
struct BoardPicture {
    BoardData board{};
    std::string pipelineName{};
    /// Who looks at it.
    std::string userName{};
    /// Empty when nothing is filtered out.
    std::string filterText{};
    std::string sortText{};
    CalendarMoment at{};
    /// The most cards to show of a column; 0 shows all.
    std::size_t limit{};
};

/// The board as text of several lines: on a terminal with its columns side by side, as many as the width has room for,
/// and elsewhere as one section a column, with the cards as the rows of an aligned table.
[[nodiscard]] std::string rendered(const BoardPicture& picture, const Terminal& terminal);

}  // namespace kestrel::host
