#pragma once

namespace kestrel::host {

/// Runs the command with the arguments of a program, its name first, on standard input, output and error. The exit
/// code: 0 when it did what was asked, 1 when it could not, 2 when it was asked in a way that it does not have. Errors
/// are one line on standard error; nothing is thrown.
[[nodiscard]] int runCommandLine(int argumentCount, const char* const* arguments) noexcept;

}  // namespace kestrel::host
