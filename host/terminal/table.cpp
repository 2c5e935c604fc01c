#include <fmt/format.h>
#include <host/terminal/table.h>

#include <algorithm>

namespace kestrel::host {

std::string styled(std::string_view text, std::string_view style, const Terminal& terminal) {
    if (!terminal.hasColor || style.empty() || text.empty()) return std::string(text);
    return fmt::format("\033[{}m{}\033[0m", style, text);
}

void Table::add(std::vector<std::string> cells, std::string_view style) {
    cells.resize(columns_);
    for (std::string& cell : cells)
        cell = printable(cell);
    rows_.push_back({.cells = std::move(cells), .style = style});
}

std::string Table::rendered(const Terminal& terminal, std::size_t indent) const {
    constexpr std::size_t gap = 2;
    std::vector<std::size_t> widths(columns_);
    for (const Row& row : rows_) {
        for (std::size_t i = 0; i < columns_; ++i)
            widths[i] = std::max(widths[i], displayWidth(row.cells[i]));
    }
    std::string text;
    for (const Row& row : rows_) {
        std::string line(indent, ' ');
        for (std::size_t i = 0; i < columns_; ++i) {
            if (widths[i] != 0) line += padded(row.cells[i], widths[i] + gap);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        if (terminal.isTerminal) line = fitted(line, terminal.width);
        text += styled(line, row.style, terminal) + '\n';
    }
    return text;
}

}  // namespace kestrel::host
