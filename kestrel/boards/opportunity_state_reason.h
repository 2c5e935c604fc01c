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

/// A reason that is chosen when an opportunity is closed.
struct OpportunityStateReason {
    static constexpr auto recordName = recordNameOf<OpportunityStateReason>;
    static constexpr auto entityName = entityNameOf<OpportunityStateReason>;

    ReadOnly<ObjectID<OpportunityStateReason>, OpportunityStateReason> opportunityStateReasonID;
    /// Whether pick lists offer it: 0 or 1.
    std::int64_t active{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When to choose it, as users describe it.
    std::optional<std::string> details{};
    /// What users call the reason.
    std::optional<std::string> name{};
    /// The raw value of the OpportunityState that it belongs to.
    std::int64_t opportunityStateType{};
    /// Position in pick lists.
    std::int64_t order{};
    /// The fixed code of a built-in reason.
    std::int64_t privateTypeCode{};

    [[nodiscard]] const ObjectID<OpportunityStateReason>& objectID() const noexcept {
        return opportunityStateReasonID.get();
    }
    [[nodiscard]] const ObjectID<OpportunityStateReason>& id() const noexcept { return opportunityStateReasonID.get(); }
    friend bool operator==(const OpportunityStateReason&, const OpportunityStateReason&) = default;
};
extern template struct Codec<OpportunityStateReason>;

}  // namespace kestrel
