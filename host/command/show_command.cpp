#include <host/command/show_command.h>
#include <host/store/find_record.h>
#include <host/store/store.h>
#include <host/terminal/text.h>

#include <string_view>

namespace kestrel::host {
namespace {

/// A text whose line feeds are lines, fit for a terminal.
std::string printableLines(std::string_view text) {
    std::string shown;
    for (;;) {
        const std::string_view line = text.substr(0, text.find('\n'));
        shown += printable(line) + '\n';
        if (line.size() == text.size()) return shown;
        text.remove_prefix(line.size() + 1);
    }
}

}  // namespace

void showCommand(const ShowOptions& options, Output& output, const Terminal& terminal) {
    const AnyObjectID id = identifierOf(options.record);
    withDatabase(options.database, [&] {
        ReadingStore store(options.database);
        visitRecord(store.database(), id, [&](const auto& record) {
            if (!options.isJSON) return output.write(printableLines(debugMirror(record)));
            const auto json = encodeJSON(record);
            if (!json) throw Failure(json.error().message());
            writeJSONLine(*json, output, terminal);
        });
    });
}

}  // namespace kestrel::host
