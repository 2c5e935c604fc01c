#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/team.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A user of the database.
struct User {
    static constexpr auto recordName = recordNameOf<User>;
    static constexpr auto entityName = entityNameOf<User>;

    ReadOnly<ObjectID<User>, User> userID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// The address under which the user gets mail.
    std::optional<std::string> email{};
    /// The given name.
    std::optional<std::string> firstName{};
    /// Whether the user may sign in.
    bool isActive{true};
    /// An administrator; no restriction on deleting stops one.
    bool isAdmin{};
    /// May not delete records, unless an administrator or a super user.
    bool isRestrictedToDeleteObjects{};
    /// A super user: a restriction on deleting does not apply.
    bool isSuper{};
    /// What the user does in the company.
    std::optional<std::string> jobTitle{};
    /// When the user signed in last; absent when that is not known.
    std::optional<Date> lastLoginDate{};
    /// The family name.
    std::optional<std::string> lastName{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The name to show.
    std::optional<std::string> name{};
    /// The number under which the user can be called, as it was written.
    std::optional<std::string> phone{};
    /// The identifier of the time zone the user works in.
    std::optional<std::string> timeZoneName{};
    /// The name to sign in with.
    std::optional<std::string> username{};
    /// The teams the user is a member of. A user of no team may read and change every record.
    TeamIDs teamIDs{};

    [[nodiscard]] const ObjectID<User>& objectID() const noexcept { return userID.get(); }
    [[nodiscard]] const ObjectID<User>& id() const noexcept { return userID.get(); }
    friend bool operator==(const User&, const User&) = default;
};
extern template struct Codec<User>;

}  // namespace kestrel
