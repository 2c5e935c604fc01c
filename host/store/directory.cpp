#include <fmt/format.h>
#include <host/store/directory.h>
#include <host/store/record_table.h>
#include <host/terminal/text.h>

#include <algorithm>

namespace kestrel::host {

Directory::Directory(SQLite::Database& database)
    : users_(RecordTable<User>(database).all()), teams_(RecordTable<Team>(database).all()) {
    std::erase_if(users_, [](const User& user) { return user.deletionDate || !user.isActive; });
}

std::vector<const User*> Directory::usersCalled(std::string_view name) const {
    const std::string wanted = foldedCase(name);
    const auto isWanted = [&](const std::optional<std::string>& text) { return text && foldedCase(*text) == wanted; };
    std::vector<const User*> found;
    for (const User& user : users_) {
        if (isWanted(user.name) || isWanted(user.username)) found.push_back(&user);
    }
    return found;
}

const User& Directory::user(std::string_view name) const {
    const auto found = usersCalled(name);
    if (found.size() == 1) return *found.front();
    if (found.size() > 1) {
        std::vector<std::string> usernames;
        for (const User* user : found)
            usernames.push_back(user->username.value_or(user->objectID().stringValue()));
        throw Refusal(fmt::format("\"{}\" is the name of several users: {}", name, listed(usernames)));
    }
    std::vector<std::string> names;
    for (const User& user : users_)
        names.push_back(shownName(user));
    for (const User& user : users_) {
        if (user.username) names.push_back(*user.username);
    }
    std::vector<std::string> near = nearNames(name, names);
    if (near.empty()) throw Refusal(fmt::format("there is no user \"{}\"", name));
    for (std::string& candidate : near)
        candidate = fmt::format("\"{}\"", candidate);
    throw Refusal(fmt::format("there is no user \"{}\"; did you mean {}?", name, fmt::join(near, " or ")));
}

std::string Directory::teamName(const ObjectID<Team>& id) const {
    const auto found = std::ranges::find(teams_, id, &Team::objectID);
    return found != teams_.end() && found->name ? *found->name : id.stringValue();
}

std::vector<std::string> Directory::teamNames(const TeamIDs& ids) const {
    std::vector<std::string> names;
    for (const ObjectID<Team>& id : ids)
        names.push_back(teamName(id));
    return names;
}

PermissionChecker Directory::checkerFor(const User& user) const {
    return {.user = user, .teams = teams_};
}

std::string shownName(const User& user) {
    if (user.name) return *user.name;
    return user.username ? *user.username : user.objectID().stringValue();
}

}  // namespace kestrel::host
