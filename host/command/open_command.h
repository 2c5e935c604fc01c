#pragma once

#include <string>

namespace kestrel::host {

/// `kestrel open URL`: hands a URL over to the application that the desktop has for it. A Failure when there is none,
/// or it cannot be started.
void openCommand(const std::string& url);

}  // namespace kestrel::host
