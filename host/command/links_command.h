#pragma once

#include <host/terminal/output.h>
#include <string>

namespace kestrel::host {

/// `kestrel links RECORD --database FILE --user NAME`.
struct LinksOptions {
    /// An identifier's text, such as "Organization/7".
    std::string record{};
    std::string database{};
    std::string user{};
    bool isJSON{};
};

/// Writes the connections of contacts that point at a record, as a user may see them.
void linksCommand(const LinksOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
