#pragma once

#include <host/terminal/output.h>
#include <string>

namespace kestrel::host {

/// `kestrel import DIRECTORY --database FILE`.
struct ImportOptions {
    std::string directory{};
    std::string database{};
    bool isJSON{};
};

/// Imports a CRM export and writes a report of it. A Failure leaves the database as it was.
void importCommand(const ImportOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
