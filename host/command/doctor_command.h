#pragma once

#include <host/terminal/output.h>

namespace kestrel::host {

/// `kestrel doctor`: writes what the system around the program really answers, from what that is known, and what to
/// install or start where something is missing.
void doctorCommand(bool isJSON, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
