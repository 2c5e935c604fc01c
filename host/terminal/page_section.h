#pragma once

#include <host/terminal/output.h>
#include <cstddef>
#include <string>
#include <vector>

namespace kestrel::host {

/// A row of a page: a label and what it names, or several facts.
struct PageRow {
    std::vector<std::string> cells{};
    /// The identifier of the record that the row leads to, which is one of the cells, too; empty when there is none.
    std::string record{};
    /// Which cell names that record.
    std::size_t nameCell{};
};

/// A part of a record's page, before anybody has decided how pages look.
struct PageSection {
    /// Empty for what needs none.
    std::string title{};
    /// Each with the same number of cells.
    std::vector<PageRow> rows{};
    /// Text below the rows, line by line.
    std::vector<std::string> lines{};

    [[nodiscard]] bool isEmpty() const noexcept { return rows.empty() && lines.empty(); }
};

/// The section as text, with an empty line above it; empty for a section without content.
[[nodiscard]] std::string rendered(const PageSection& section, const Terminal& terminal);

}  // namespace kestrel::host
