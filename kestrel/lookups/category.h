#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/foundation/rgba_color.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A category that records are put in, one each.
struct Category {
    static constexpr auto recordName = recordNameOf<Category>;
    static constexpr auto entityName = entityNameOf<Category>;

    ReadOnly<ObjectID<Category>, Category> categoryID;
    /// The colour in which its records are marked.
    std::optional<RGBAColor> color{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Whether pick lists offer it.
    bool isActive{true};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the category.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<Category>& objectID() const noexcept { return categoryID.get(); }
    [[nodiscard]] const ObjectID<Category>& id() const noexcept { return categoryID.get(); }
    friend bool operator==(const Category&, const Category&) = default;
};
extern template struct Codec<Category>;

}  // namespace kestrel
