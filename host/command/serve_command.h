#pragma once

#include <host/terminal/output.h>
#include <cstdint>
#include <string>

namespace kestrel::host {

/// `kestrel serve`.
struct ServeOptions {
    std::string database{};
    std::string user{};
    /// Any free one when 0.
    std::uint16_t port{};
};

/// Shows the database to a user in a browser of this machine, until the program is told to end by SIGINT or SIGTERM.
/// Writes the address to open when it is ready.
void serveCommand(const ServeOptions& options, Output& output);

}  // namespace kestrel::host
