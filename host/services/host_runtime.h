#pragma once

#include <kestrel/runtime/runtime.h>
#include <filesystem>
#include <optional>
#include <string>

namespace kestrel::host {

/// The services of the system, those of a database as a user may see it, without a user as nobody may, and the session
/// and the login of this machine's accounts. No file and no name is looked at before a service is asked for something.
[[nodiscard]] Runtime makeHostRuntime(const std::filesystem::path& database, std::optional<std::string> user);

/// Who looks at which database.
struct Viewer {
    std::filesystem::path database{};
    std::string user{};

    friend bool operator==(const Viewer&, const Viewer&) = default;
};
/// For a command that shows a database to a user. An empty user is who is signed in on this machine, and an empty
/// database the one of the company; WrongUsage when nobody is, or the database is another one. A Failure that says why
/// when the session may not go on.
[[nodiscard]] Viewer viewerOf(const std::string& database, const std::string& user);

/// The runtime of that viewer.
[[nodiscard]] Runtime makeUserRuntime(const std::string& database, const std::string& user);

}  // namespace kestrel::host
