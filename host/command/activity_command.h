#pragma once

#include <host/terminal/output.h>
#include <cstddef>
#include <optional>
#include <string>

namespace kestrel::host {

/// `kestrel activity RECORD --database FILE --user NAME`.
struct ActivityOptions {
    /// An identifier's text, such as "Contact/42".
    std::string record{};
    std::string database{};
    std::string user{};
    /// Now when absent.
    std::optional<std::string> at{};
    /// The most items to show; 0 shows all. Twenty when absent.
    std::optional<std::size_t> limit{};
    bool isJSON{};
};

/// Writes what happened around a record as a user may see it.
void activityCommand(const ActivityOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
