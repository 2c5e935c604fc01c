#include <kestrel/access/permission_checker.h>
#include <kestrel/localization/localized.h>

#include <algorithm>

namespace kestrel {
namespace {

AccessDecision decide(const PermissionChecker& checker, const PermissionSet& set) {
    using enum AccessRule;
    if (!checker.permissionSystemEnabled) return {true, permissionSystemDisabled};
    if (checker.overridePermissionSystem) return {true, permissionSystemOverridden};
    if (!checker.user) return {false, noUser};
    if (checker.user->teamIDs.empty()) return {true, userWithoutTeams};
    if (set.isEmpty()) return {true, recordUnrestricted};
    if (const auto shared = firstSharedTeam(checker.user->teamIDs, set.teamIDs)) return {true, sharedTeam, shared};
    return {false, noSharedTeam};
}

const Team* findTeam(const std::vector<Team>& teams, const ObjectID<Team>& id) {
    const auto found = std::ranges::find_if(teams, [&](const Team& team) { return team.objectID() == id; });
    return found == teams.end() ? nullptr : &*found;
}

/// The teams of a set that matter for how a record is called: known ones, and no user's private team.
TeamIDs ordinaryTeams(const std::vector<Team>& teams, const PermissionSet& set) {
    TeamIDs kept;
    for (const ObjectID<Team>& id : set.teamIDs) {
        const Team* team = findTeam(teams, id);
        if (team != nullptr && !team->isUserPrivateTeam) kept.insert(id);
    }
    return kept;
}

std::string displayName(const std::optional<std::string>& name) {
    return name ? *name : localized("No Name", "Default permission display name.");
}

}  // namespace

AccessDecision PermissionChecker::decideRead(const Permissions& permissions) const {
    return decide(*this, permissions.readPermissions);
}

AccessDecision PermissionChecker::decideUpdate(const Permissions& permissions) const {
    return decide(*this, permissions.writePermissions);
}

AccessDecision PermissionChecker::decideDelete(const Permissions& permissions) const {
    if (!user) return {false, AccessRule::noUserMayNotDelete};
    if (!user->isAdmin && user->isRestrictedToDeleteObjects && !user->isSuper) {
        return {false, AccessRule::restrictedMayNotDelete};
    }
    return decideUpdate(permissions);
}

PermissionChecker::Visibility PermissionChecker::visibility(const Permissions& permissions) const {
    const PermissionSet& read = permissions.readPermissions;
    const PermissionSet& write = permissions.writePermissions;
    if (permissions.visibilityPreset) return Visibility::preset(*permissions.visibilityPreset);
    if (read.isEmpty() && write.isEmpty()) return Visibility::public_();
    if (read.count() == 1 && write.count() == 1) return Visibility::private_();
    const TeamIDs readTeams = ordinaryTeams(teams, read);
    if (readTeams.size() == 1 && readTeams == ordinaryTeams(teams, write)) {
        if (const Team* team = findTeam(teams, *readTeams.begin())) return Visibility::privateForTeam(*team);
    }
    return Visibility::custom();
}

std::string PermissionChecker::Visibility::localizedDisplayName() const {
    return match([](const Team& team) { return displayName(team.name); },
                 [](const VisibilityPreset& preset) { return displayName(preset.name); },
                 [](NoPayload<2>) { return localized("Public", "Permission display name."); },
                 [](NoPayload<3>) { return localized("Private", "Permission display name."); },
                 [](NoPayload<4>) { return localized("Custom", "Permission display name."); });
}

}  // namespace kestrel
