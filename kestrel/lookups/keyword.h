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

/// A keyword; records carry any number of them.
struct Keyword {
    static constexpr auto recordName = recordNameOf<Keyword>;
    static constexpr auto entityName = entityNameOf<Keyword>;

    ReadOnly<ObjectID<Keyword>, Keyword> keywordID;
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
    /// The keyword itself.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<Keyword>& objectID() const noexcept { return keywordID.get(); }
    [[nodiscard]] const ObjectID<Keyword>& id() const noexcept { return keywordID.get(); }
    friend bool operator==(const Keyword&, const Keyword&) = default;
};
extern template struct Codec<Keyword>;

}  // namespace kestrel
