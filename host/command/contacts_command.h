#pragma once

#include <host/terminal/output.h>
#include <cstddef>
#include <optional>
#include <string>

namespace kestrel::host {

/// `kestrel contacts --database FILE --user NAME`.
struct ContactsOptions {
    std::string database{};
    std::string user{};
    /// Only contacts that have this text.
    std::optional<std::string> search{};
    /// The most contacts to list; 0 lists all. When absent fifty, and in JSON all.
    std::optional<std::size_t> limit{};
    bool isJSON{};
};

/// Writes the contacts that a user may read, by name.
void contactsCommand(const ContactsOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
