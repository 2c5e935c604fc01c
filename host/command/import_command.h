#pragma once

#include <host/terminal/output.h>
#include <string>
#include <vector>

namespace kestrel::host {

/// `kestrel import PATH... --database FILE`.
struct ImportOptions {
    std::vector<std::string> paths{};
    std::string database{};
    /// A broken card, event, to-do, journal entry or message fails the whole import.
    bool isStrict{};
    bool isJSON{};
};

/// Imports CRM exports, address cards, calendars and mail, and writes a report of it; what was wrong with the files
/// goes to standard error before, a line each. A Failure leaves the database as it was.
void importCommand(const ImportOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
