#include <host/terminal/page_section.h>
#include <host/terminal/table.h>
#include <host/terminal/text.h>

namespace kestrel::host {

std::string rendered(const PageSection& section, const Terminal& terminal) {
    constexpr std::size_t indent = 2;
    if (section.isEmpty()) return "";
    std::string text = "\n";
    if (!section.title.empty()) text += styled(section.title, boldStyle, terminal) + '\n';
    if (!section.rows.empty()) {
        Table table(section.rows.front().cells.size());
        for (const PageRow& row : section.rows)
            table.add(row.cells);
        text += table.rendered(terminal, section.title.empty() ? 0 : indent);
    }
    // Not a table: long lines are folded by the terminal, not cut off.
    for (const std::string& line : section.lines)
        text += line.empty() ? "\n" : std::string(indent, ' ') + printable(line) + '\n';
    return text;
}

}  // namespace kestrel::host
