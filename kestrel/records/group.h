#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A group: a collection of records. Groups nest.
///
/// Fields that end in ID refer to other records by primary key.
struct Group {
    static constexpr auto recordName = recordNameOf<Group>;
    static constexpr auto entityName = entityNameOf<Group>;

    ReadOnly<ObjectID<Group>, Group> groupID;
    /// 0 or 1.
    std::int64_t active{};
    /// Key of the user it is assigned to.
    std::optional<std::int64_t> assignedToID{};
    /// Key of its category.
    std::optional<std::int64_t> categoryID{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of the user who created it.
    std::optional<std::int64_t> createdByID{};
    /// Key of the note that shows first.
    std::optional<std::int64_t> defaultNoteID{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When what the group is for ends; absent where it does not.
    std::optional<Date> endDate{};
    // Free texts and dates whose names each database gives: see ExtraFieldsNames.
    std::optional<std::string> extra1{};
    std::optional<std::string> extra10{};
    std::optional<std::string> extra11{};
    std::optional<std::string> extra12{};
    std::optional<std::string> extra2{};
    std::optional<std::string> extra3{};
    std::optional<std::string> extra4{};
    std::optional<std::string> extra5{};
    std::optional<std::string> extra6{};
    std::optional<std::string> extra7{};
    std::optional<std::string> extra8{};
    std::optional<std::string> extra9{};
    std::optional<Date> extraDate1{};
    std::optional<Date> extraDate2{};
    std::optional<Date> extraDate3{};
    std::optional<Date> extraDate4{};
    /// The store's level code.
    std::int64_t level{};
    /// A text about the group, beside the note.
    std::optional<std::string> message{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the group.
    std::optional<std::string> name{};
    /// What users note about the group.
    std::optional<std::string> note{};
    /// Position among its siblings.
    std::int64_t order{};
    /// Key of the group that this one is part of.
    std::optional<std::int64_t> parentGroupID{};
    /// The store's packed permission word, kept beside the decoded `permissions` and not interpreted.
    std::int64_t permissionMask{};
    /// The identifier that the record had where it was imported from.
    std::optional<std::string> sourceImportID{};
    /// When what the group is for begins.
    std::optional<Date> startDate{};
    /// Key of its visibility preset.
    std::optional<std::int64_t> visibilityPresetID{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<Group>& objectID() const noexcept { return groupID.get(); }
    [[nodiscard]] const ObjectID<Group>& id() const noexcept { return groupID.get(); }
    friend bool operator==(const Group&, const Group&) = default;
};
extern template struct Codec<Group>;

}  // namespace kestrel
