#pragma once

#include <kestrel/access/visibility_preset.h>
#include <kestrel/coding/codec.h>
#include <kestrel/lookups/team.h>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrel {

/// Why a text is not a set of teams.
enum class PermissionSetError : std::uint8_t {
    invalidPipeSet,  ///< the text is not of the form `|3|17|`
};

/// The teams that may do something. An empty set means no restriction.
struct PermissionSet {
    using Coded = void;

    /// Who may. Empty: everybody.
    TeamIDs teamIDs{};

    /// No teams: no restriction.
    PermissionSet() = default;
    /// Of these teams, in any order; of equal ones one.
    PermissionSet(std::initializer_list<ObjectID<Team>> teams) : teamIDs(teams) {}
    /// Of these teams.
    explicit PermissionSet(TeamIDs teams) : teamIDs(std::move(teams)) {}
    /// Of these teams, in any order; of equal ones one.
    explicit PermissionSet(std::span<const ObjectID<Team>> teams) : teamIDs(teams.begin(), teams.end()) {}

    /// No teams: no restriction.
    [[nodiscard]] static PermissionSet empty() { return {}; }
    /// Reads the data store's text form, `|3|17|`; an empty text and `|` are the empty set.
    [[nodiscard]] static std::expected<PermissionSet, PermissionSetError> parsePipeSet(std::string_view text);
    /// The text form, with the keys ascending. Absent when a team is not saved, since it has no key.
    [[nodiscard]] std::optional<std::string> pipeSet() const;

    /// How many teams are named; 0 for no restriction.
    [[nodiscard]] std::size_t count() const noexcept { return teamIDs.size(); }
    /// Whether no team is named, and so nothing restricted.
    [[nodiscard]] bool isEmpty() const noexcept { return teamIDs.empty(); }
    /// Names one more team; nothing when it is there. The first one makes the restriction.
    void add(const ObjectID<Team>& teamID) { teamIDs.insert(teamID); }
    /// Takes a team out; nothing when it is not there. The last one lifts the restriction.
    void remove(const ObjectID<Team>& teamID) { teamIDs.erase(teamID); }

    /// Whether the set is empty or has this team.
    [[nodiscard]] bool isAuthorized(const ObjectID<Team>& teamID) const {
        return isEmpty() || teamIDs.contains(teamID);
    }
    /// Whether the set is empty or shares a team with `anyOf`. Linear in both.
    [[nodiscard]] bool isAuthorized(const TeamIDs& anyOf) const noexcept;

    friend bool operator==(const PermissionSet&, const PermissionSet&) = default;
};
extern template struct Codec<PermissionSet>;

/// The first team, in order, that two sets share; absent when they share none. Linear in both sets, without allocation.
[[nodiscard]] std::optional<ObjectID<Team>> firstSharedTeam(const TeamIDs& a, const TeamIDs& b) noexcept;

/// Who may read and who may change a record. The two sets are independent of each other: a team with write access need
/// not have read access. Removing the last team of a set makes it empty, and so lifts the restriction.
struct Permissions {
    using Coded = void;

    /// Who may read.
    PermissionSet readPermissions{};
    /// Who may change. Reading is not part of it.
    PermissionSet writePermissions{};
    /// The named visibility that the record was given, if any.
    std::optional<VisibilityPreset> visibilityPreset{};

    /// Unrestricted, without a preset.
    [[nodiscard]] static Permissions empty() { return {}; }

    /// Whether members of the team may read.
    [[nodiscard]] bool isReadableByTeam(const ObjectID<Team>& team) const { return readPermissions.isAuthorized(team); }
    /// Whether members of the team may change.
    [[nodiscard]] bool isWritableByTeam(const ObjectID<Team>& team) const {
        return writePermissions.isAuthorized(team);
    }
    /// Whether members of one of the teams may read; with no team only what is not restricted.
    [[nodiscard]] bool isReadableByAnyTeamIn(const TeamIDs& teams) const noexcept {
        return readPermissions.isAuthorized(teams);
    }
    /// Whether members of one of the teams may change; with no team only what is not restricted.
    [[nodiscard]] bool isWritableByAnyTeamIn(const TeamIDs& teams) const noexcept {
        return writePermissions.isAuthorized(teams);
    }
    /// Lets the team read; where nobody was named before, nobody else may from then on.
    void giveReadAccess(const ObjectID<Team>& team) { readPermissions.add(team); }
    /// Takes the team out of those who may read; without the last one everybody may.
    void removeReadAccess(const ObjectID<Team>& team) { readPermissions.remove(team); }
    /// Lets the team change; where nobody was named before, nobody else may from then on.
    void giveWriteAccess(const ObjectID<Team>& team) { writePermissions.add(team); }
    /// Takes the team out of those who may change; without the last one everybody may.
    void removeWriteAccess(const ObjectID<Team>& team) { writePermissions.remove(team); }

    friend bool operator==(const Permissions&, const Permissions&) = default;
};
extern template struct Codec<Permissions>;

/// A record under access control: its permissions are a member, or for what wraps a record a member function.
template <class Record>
concept AuthorizedAccess = requires(const Record& record) {
    { record.permissions } -> std::convertible_to<const Permissions&>;
} || requires(const Record& record) {
    { record.permissions() } -> std::convertible_to<const Permissions&>;
};

/// The permissions of either form: what the record gives, by reference or by value.
[[nodiscard]] decltype(auto) permissionsOf(const AuthorizedAccess auto& record) {
    if constexpr (requires { record.permissions(); }) {
        return record.permissions();
    } else {
        return (record.permissions);
    }
}

}  // namespace kestrel
