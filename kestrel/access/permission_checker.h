#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/lookups/team.h>
#include <kestrel/lookups/user.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// The rule that decided what a user may do with a record, in the order in which the rules are asked.
enum class AccessRule : std::uint8_t {
    noUserMayNotDelete,          ///< nobody is signed in: deleting is refused, before anything else is asked
    restrictedMayNotDelete,      ///< the user is restricted to delete records, and neither administrator nor super user
    permissionSystemDisabled,    ///< the permission system is off: allowed
    permissionSystemOverridden,  ///< the permission system is overridden: allowed
    noUser,                      ///< nobody is signed in: refused
    userWithoutTeams,            ///< the user is a member of no team: allowed
    recordUnrestricted,          ///< the record names no team: allowed
    sharedTeam,                  ///< the user is a member of a team that the record names: allowed
    noSharedTeam,                ///< the user is a member of none of the teams that the record names: refused
};

/// A verdict and what it rests on.
struct AccessDecision {
    /// The verdict.
    bool isAllowed{};
    /// What it rests on.
    AccessRule rule{};
    /// The first team that the user and the record share, where that decided.
    std::optional<ObjectID<Team>> sharedTeamID{};

    friend bool operator==(const AccessDecision&, const AccessDecision&) = default;
};

/// What the signed-in user may do with records, and how their visibility is to be called. A plain value: it answers
/// from what it holds, and safely so from several threads at once.
struct PermissionChecker {
    /// The signed-in user, if any.
    std::optional<User> user{};
    /// All teams known to the client.
    std::vector<Team> teams{};
    /// Whether access is restricted at all. When false everything may be read and changed, and with a user deleted.
    bool permissionSystemEnabled{true};
    /// Whether restrictions are lifted for now. When true everything may be read and changed, and with a user deleted.
    bool overridePermissionSystem{false};

    /// See there.
    class Visibility;

    /// No user and no teams, with the permission system on: refuses everything.
    [[nodiscard]] static PermissionChecker empty() { return {}; }

    /// Whether the user may read a record of these permissions.
    [[nodiscard]] bool canRead(const Permissions& permissions) const { return decideRead(permissions).isAllowed; }
    /// Whether the user may change a record of these permissions.
    [[nodiscard]] bool canUpdate(const Permissions& permissions) const { return decideUpdate(permissions).isAllowed; }
    /// Without a user nothing may be deleted, even when the permission system is off or overridden.
    [[nodiscard]] bool canDelete(const Permissions& permissions) const { return decideDelete(permissions).isAllowed; }
    /// What to call the visibility: a preset before all; then public, private, private to a team; else custom. Who is
    /// signed in does not matter.
    [[nodiscard]] Visibility visibility(const Permissions& permissions) const;

    /// Whether the user may read the record.
    [[nodiscard]] bool canRead(const AuthorizedAccess auto& record) const { return canRead(permissionsOf(record)); }
    /// Whether the user may change the record.
    [[nodiscard]] bool canUpdate(const AuthorizedAccess auto& record) const { return canUpdate(permissionsOf(record)); }
    /// Whether the user may delete the record; nobody may without being signed in.
    [[nodiscard]] bool canDelete(const AuthorizedAccess auto& record) const { return canDelete(permissionsOf(record)); }
    /// What to call the record's visibility.
    [[nodiscard]] Visibility visibility(const AuthorizedAccess auto& record) const;

    ///@{
    /// The same verdict with the rule that decided.
    [[nodiscard]] AccessDecision decideRead(const Permissions& permissions) const;
    [[nodiscard]] AccessDecision decideUpdate(const Permissions& permissions) const;
    [[nodiscard]] AccessDecision decideDelete(const Permissions& permissions) const;
    ///@}

    friend bool operator==(const PermissionChecker&, const PermissionChecker&) = default;
};

/// How a record's visibility is presented.
class PermissionChecker::Visibility
    : public Choice<PermissionChecker::Visibility, Team, VisibilityPreset, NoPayload<2>, NoPayload<3>, NoPayload<4>> {
  public:
    /// Private to one ordinary team, beside the private teams of users.
    [[nodiscard]] static Visibility privateForTeam(Team team) { return Visibility(std::move(team)); }
    /// As the preset says, whatever teams there are.
    [[nodiscard]] static Visibility preset(VisibilityPreset preset) { return Visibility(std::move(preset)); }
    /// No team is named: everybody may read and change it.
    [[nodiscard]] static Visibility public_() { return Visibility(NoPayload<2>{}); }
    /// Exactly one team may read it and exactly one may change it.
    [[nodiscard]] static Visibility private_() { return Visibility(NoPayload<3>{}); }
    /// Anything else.
    [[nodiscard]] static Visibility custom() { return Visibility(NoPayload<4>{}); }

    /// Whether it is private to one ordinary team.
    [[nodiscard]] bool isPrivateForTeam() const noexcept { return caseIndex() == 0; }
    /// Whether a preset says it.
    [[nodiscard]] bool isPreset() const noexcept { return caseIndex() == 1; }
    /// Whether no team is named.
    [[nodiscard]] bool isPublic() const noexcept { return caseIndex() == 2; }
    /// Whether exactly one team may read and one change it.
    [[nodiscard]] bool isPrivate() const noexcept { return caseIndex() == 3; }
    /// Whether it is none of the others.
    [[nodiscard]] bool isCustom() const noexcept { return caseIndex() == 4; }
    [[nodiscard]] std::optional<Team> privateTeam() const { return payload<Team>(); }
    [[nodiscard]] std::optional<VisibilityPreset> visibilityPreset() const { return payload<VisibilityPreset>(); }

    /// The team's or the preset's name, or the visibility's own word, in the user's language.
    [[nodiscard]] std::string localizedDisplayName() const;

    friend bool operator==(const Visibility&, const Visibility&) = default;

  private:
    explicit Visibility(Variant value) : Choice(std::move(value)) {}
};

PermissionChecker::Visibility PermissionChecker::visibility(const AuthorizedAccess auto& record) const {
    return visibility(permissionsOf(record));
}

}  // namespace kestrel
