#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/relationships/role_type.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A role as it is stored: what a contact is at a company, on an opportunity or on a project.
struct AnyRole {
    static constexpr auto recordName = recordNameOf<AnyRole>;
    static constexpr auto entityName = entityNameOf<AnyRole>;

    ReadOnly<ObjectID<AnyRole>, AnyRole> roleID;
    /// When the record was created.
    ReadOnly<std::optional<Date>, AnyRole> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// The department at the destination.
    std::optional<std::string> department{};
    /// Whether it is the contact's default role.
    bool isDefaultForContact{};
    /// The role's title.
    std::optional<std::string> name{};
    /// Absent when it is untyped.
    std::optional<AnyRoleType> roleType{};

    [[nodiscard]] const ObjectID<AnyRole>& objectID() const noexcept { return roleID.get(); }
    [[nodiscard]] const ObjectID<AnyRole>& id() const noexcept { return roleID.get(); }
    friend bool operator==(const AnyRole&, const AnyRole&) = default;
};
extern template struct Codec<AnyRole>;

}  // namespace kestrel
