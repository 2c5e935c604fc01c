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

/// A kind of sales deal.
struct OpportunityType {
    static constexpr auto recordName = recordNameOf<OpportunityType>;
    static constexpr auto entityName = entityNameOf<OpportunityType>;

    ReadOnly<ObjectID<OpportunityType>, OpportunityType> opportunityTypeID;
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
    /// What users call the kind.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<OpportunityType>& objectID() const noexcept { return opportunityTypeID.get(); }
    [[nodiscard]] const ObjectID<OpportunityType>& id() const noexcept { return opportunityTypeID.get(); }
    friend bool operator==(const OpportunityType&, const OpportunityType&) = default;
};
extern template struct Codec<OpportunityType>;

}  // namespace kestrel
