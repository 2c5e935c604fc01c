#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

struct RelationshipType;

/// A copy of a relationship type to be edited.
struct EditRelationshipType {
    using Coded = void;

    ReadOnly<ObjectID<RelationshipType>, EditRelationshipType> relationshipTypeID;
    /// When the record was created.
    ReadOnly<std::optional<Date>, EditRelationshipType> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Read from the source to the destination: "is parent of".
    std::optional<std::string> forwardName{};
    /// Whether it is offered for new relationships.
    bool isActive{true};
    /// May relate companies.
    bool isForCompany{};
    /// May relate contacts.
    bool isForContact{};
    /// Read from the destination back to the source: "is child of".
    std::optional<std::string> reverseName{};
    /// As `forwardName`, where there is little room.
    std::optional<std::string> shortForwardName{};
    /// As `reverseName`, where there is little room.
    std::optional<std::string> shortReverseName{};

    [[nodiscard]] const ObjectID<RelationshipType>& objectID() const noexcept { return relationshipTypeID.get(); }
    [[nodiscard]] const ObjectID<RelationshipType>& id() const noexcept { return relationshipTypeID.get(); }

    /// A copy of all members.
    [[nodiscard]] static EditRelationshipType fromRecord(const RelationshipType& record);
    /// The relationship type as edited.
    [[nodiscard]] RelationshipType record() const;

    friend bool operator==(const EditRelationshipType&, const EditRelationshipType&) = default;
};
extern template struct Codec<EditRelationshipType>;

/// A relationship type: the names of a relationship, read in both directions. It changes through `edit()`.
struct RelationshipType {
    static constexpr auto recordName = recordNameOf<RelationshipType>;
    static constexpr auto entityName = entityNameOf<RelationshipType>;

    ReadOnly<ObjectID<RelationshipType>, RelationshipType> relationshipTypeID;
    /// When the record was created.
    ReadOnly<std::optional<Date>, RelationshipType> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    ReadOnly<std::optional<Date>, RelationshipType> deletionDate{};
    /// A marker of the deletion.
    ReadOnly<std::optional<std::string>, RelationshipType> deletionIdentifier{};
    /// Key of the user who deleted it.
    ReadOnly<std::optional<std::int64_t>, RelationshipType> deletionUserID{};
    /// Read from the source to the destination: "is parent of".
    ReadOnly<std::optional<std::string>, RelationshipType> forwardName{};
    /// Whether it is offered for new relationships.
    ReadOnly<bool, RelationshipType> isActive{true};
    /// May relate companies.
    ReadOnly<bool, RelationshipType> isForCompany{};
    /// May relate contacts.
    ReadOnly<bool, RelationshipType> isForContact{};
    /// Read from the destination back to the source: "is child of".
    ReadOnly<std::optional<std::string>, RelationshipType> reverseName{};
    /// As `forwardName`, where there is little room.
    ReadOnly<std::optional<std::string>, RelationshipType> shortForwardName{};
    /// As `reverseName`, where there is little room.
    ReadOnly<std::optional<std::string>, RelationshipType> shortReverseName{};

    [[nodiscard]] const ObjectID<RelationshipType>& objectID() const noexcept { return relationshipTypeID.get(); }
    [[nodiscard]] const ObjectID<RelationshipType>& id() const noexcept { return relationshipTypeID.get(); }

    /// A copy to be edited.
    [[nodiscard]] EditRelationshipType edit() const { return EditRelationshipType::fromRecord(*this); }

    friend bool operator==(const RelationshipType&, const RelationshipType&) = default;
};
extern template struct Codec<RelationshipType>;

}  // namespace kestrel
