#pragma once

#include <host/terminal/output.h>
#include <host/terminal/text.h>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// SGR parameters of the styles that the host uses.
inline constexpr std::string_view boldStyle = "1";
inline constexpr std::string_view dimStyle = "2";

/// The text in a style where the terminal shows such, else as it is.
[[nodiscard]] std::string styled(std::string_view text, std::string_view style, const Terminal& terminal);

/// Rows of cells in aligned columns, two blanks apart. Cells may hold any text: they are made fit for a terminal.
class Table {
  public:
    explicit Table(std::size_t columns) : columns_(columns) {}

    /// Adds a row; cells that are missing at its end are empty.
    void add(std::vector<std::string> cells, std::string_view style = {});
    [[nodiscard]] bool isEmpty() const noexcept { return rows_.empty(); }

    /// The rows, a line each, behind `indent` blanks and without blanks at the end; a column that is empty throughout
    /// takes no room. On a terminal a row is cut off at its width; elsewhere rows are as long as they are.
    [[nodiscard]] std::string rendered(const Terminal& terminal, std::size_t indent = 0) const;

  private:
    struct Row {
        std::vector<std::string> cells;
        std::string_view style;
    };

    std::size_t columns_;
    std::vector<Row> rows_;
};

}  // namespace kestrel::host
