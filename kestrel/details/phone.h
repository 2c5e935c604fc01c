#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/details/label.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// A phone number. Its place in the list of its owner is its rank: the first one is the default.
struct Phone {
    static constexpr auto recordName = recordNameOf<Phone>;
    static constexpr auto entityName = entityNameOf<Phone>;

    ReadOnly<ObjectID<Phone>, Phone> phoneID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What the user calls it: "Work", "Home".
    std::optional<AnyLabel> label{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// As the user wrote it.
    std::optional<std::string> number{};

    [[nodiscard]] const ObjectID<Phone>& objectID() const noexcept { return phoneID.get(); }
    [[nodiscard]] const ObjectID<Phone>& id() const noexcept { return phoneID.get(); }
    friend bool operator==(const Phone&, const Phone&) = default;
};
extern template struct Codec<Phone>;

}  // namespace kestrel
