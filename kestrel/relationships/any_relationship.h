#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/relationships/relationship_type.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A relationship as it is stored: of a contact, its source, to another contact or a company, its destination.
struct AnyRelationship {
    static constexpr auto recordName = recordNameOf<AnyRelationship>;
    static constexpr auto entityName = entityNameOf<AnyRelationship>;

    ReadOnly<ObjectID<AnyRelationship>, AnyRelationship> relationID;
    /// When the record was created.
    ReadOnly<std::optional<Date>, AnyRelationship> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// A note on the relationship.
    std::optional<std::string> details{};
    /// Absent when it is untyped.
    std::optional<RelationshipType> relationshipType{};

    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return relationID.get(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return relationID.get(); }
    friend bool operator==(const AnyRelationship&, const AnyRelationship&) = default;
};
extern template struct Codec<AnyRelationship>;

}  // namespace kestrel
