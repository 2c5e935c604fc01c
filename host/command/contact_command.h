#pragma once

#include <host/terminal/output.h>
#include <string>

namespace kestrel::host {

/// `kestrel contact RECORD --database FILE --user NAME`.
struct ContactOptions {
    /// An identifier's text, such as "Contact/42", its key alone, or a contact's name.
    std::string record{};
    std::string database{};
    std::string user{};
    /// How names are written; the user's when empty.
    std::string locale{};
    bool isJSON{};
};

/// Writes a contact's page as a user may see it.
void contactCommand(const ContactOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
