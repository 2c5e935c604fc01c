#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <boost/container/flat_set.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A team of users. Access to records is granted to teams.
struct Team {
    static constexpr auto recordName = recordNameOf<Team>;
    static constexpr auto entityName = entityNameOf<Team>;

    ReadOnly<ObjectID<Team>, Team> teamID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What the team is for, as users describe it.
    std::optional<std::string> details{};
    /// Whether it may be given new access.
    bool isActive{true};
    /// Whether it is the one-person team that every user owns.
    bool isUserPrivateTeam{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the team.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<Team>& objectID() const noexcept { return teamID.get(); }
    [[nodiscard]] const ObjectID<Team>& id() const noexcept { return teamID.get(); }
    friend bool operator==(const Team&, const Team&) = default;
};
extern template struct Codec<Team>;

/// Teams by their identifiers, sorted: small sets, read far more often than changed.
using TeamIDs = boost::container::flat_set<ObjectID<Team>>;

}  // namespace kestrel
