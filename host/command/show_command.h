#pragma once

#include <host/terminal/output.h>
#include <string>

namespace kestrel::host {

/// `kestrel show RECORD --database FILE`.
struct ShowOptions {
    /// An identifier's text, such as "Opportunity/42".
    std::string record{};
    std::string database{};
    bool isJSON{};
};

/// Writes a record as its debug mirror, or in keyed form.
void showCommand(const ShowOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
