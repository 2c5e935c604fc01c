#pragma once

#include <host/terminal/output.h>
#include <string>

namespace kestrel::host {

/// `kestrel access RECORD --database FILE --user NAME`.
struct AccessOptions {
    /// An identifier's text, such as "Opportunity/42".
    std::string record{};
    std::string database{};
    std::string user{};
    bool isJSON{};
};

/// Writes what a user may do with a record, and which rule says so.
void accessCommand(const AccessOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
