#include <host/command/show_command.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/store/find_record.h>
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
    Runtime runtime = makeHostRuntime(options.database, std::nullopt);
    const RecordText record = valueOf(runtime[host_services::records].fetchRecord(id), id);
    if (options.isJSON) return writeJSONLine(record.json, output, terminal);
    output.write(printableLines(record.mirror));
}

}  // namespace kestrel::host
