#pragma once

#include <SQLiteCpp/Database.h>
#include <kestrel/access/permission_checker.h>
#include <kestrel/lookups/team.h>
#include <kestrel/lookups/user.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// The users and teams of a database.
class Directory {
  public:
    explicit Directory(SQLite::Database& database);

    /// The users who may sign in.
    [[nodiscard]] const std::vector<User>& users() const noexcept { return users_; }
    /// Those whose name, or whose name to sign in with, it is, whatever the case of the letters.
    [[nodiscard]] std::vector<const User*> usersCalled(std::string_view name) const;
    /// The one user who is called like that. A Failure when there is none, with names that may have been meant, or when
    /// there are several.
    [[nodiscard]] const User& user(std::string_view name) const;
    /// The team's name, or its identifier's text when it has none.
    [[nodiscard]] std::string teamName(const ObjectID<Team>& id) const;
    /// The names of teams, in the order of their identifiers.
    [[nodiscard]] std::vector<std::string> teamNames(const TeamIDs& ids) const;
    /// What decides what a user may see.
    [[nodiscard]] PermissionChecker checkerFor(const User& user) const;

  private:
    std::vector<User> users_;
    std::vector<Team> teams_;
};

/// The name to show for a user.
[[nodiscard]] std::string shownName(const User& user);

}  // namespace kestrel::host
