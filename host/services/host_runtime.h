#pragma once

#include <kestrel/runtime/runtime.h>
#include <filesystem>
#include <optional>
#include <string>

namespace kestrel::host {

/// The services of the system, and those of a database as a user may see it; without a user, as nobody may. Neither
/// the file nor the name are looked at before a service is asked for something.
[[nodiscard]] Runtime makeHostRuntime(const std::filesystem::path& database, std::optional<std::string> user);

}  // namespace kestrel::host
