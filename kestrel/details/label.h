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

/// What a user calls a phone number or an address: "Work", "Home", "Mobile".
struct AnyLabel {
    static constexpr auto recordName = recordNameOf<AnyLabel>;
    static constexpr auto entityName = entityNameOf<AnyLabel>;

    ReadOnly<ObjectID<AnyLabel>, AnyLabel> labelID;
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
    /// May label e-mail and web addresses and social profiles.
    bool isForElectronicAddress{};
    /// May label postal addresses.
    bool isForGeoAddress{};
    /// May label phone numbers.
    bool isForPhone{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The label itself.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<AnyLabel>& objectID() const noexcept { return labelID.get(); }
    [[nodiscard]] const ObjectID<AnyLabel>& id() const noexcept { return labelID.get(); }
    friend bool operator==(const AnyLabel&, const AnyLabel&) = default;
};
extern template struct Codec<AnyLabel>;

}  // namespace kestrel
