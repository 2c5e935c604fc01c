#pragma once

#include <source_location>
#include <string_view>

namespace kestrel {

/// Stops the program with one line on standard error: "KestrelService: MESSAGE (FILE:LINE)".
///
/// For what only a mistake in a program can cause: a negative limit, an overflow, a missing resource bundle, a service
/// that was never installed. What input can cause is an error value instead. Safe in every thread; runs no destructor
/// and no `atexit` function, and leaves by SIGABRT so that a debugger or a core dump shows the place.
[[noreturn]] void fatal(std::string_view message, std::source_location where = std::source_location::current());

}  // namespace kestrel
