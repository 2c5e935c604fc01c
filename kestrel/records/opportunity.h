#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/category.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// An opportunity: a sales deal that moves through a pipeline.
///
/// Fields that end in ID refer to other records by primary key.
struct Opportunity {
    static constexpr auto recordName = recordNameOf<Opportunity>;
    static constexpr auto entityName = entityNameOf<Opportunity>;

    ReadOnly<ObjectID<Opportunity>, Opportunity> opportunityID;
    /// Key of the user it is assigned to.
    std::optional<std::int64_t> assignedToID{};
    /// The deal's total value.
    double cachedTotalAmount{};
    /// Key of its category.
    std::optional<std::int64_t> categoryID{};
    /// When the deal was closed.
    std::optional<Date> completeDate{};
    /// The lock that a connector took on the record: when, under which identifier, for which user.
    ///@{
    /// The lock that a connector took on the record: when, under which identifier, for which user. Absent without a
    /// lock.
    std::optional<Date> connectorLockDate{};
    std::optional<std::string> connectorLockIdentifier{};
    std::optional<std::int64_t> connectorLockUserID{};
    ///@}
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of the user who created it.
    std::optional<std::int64_t> createdByID{};
    /// Key of the pipeline that the deal is in.
    std::optional<std::int64_t> currentPipelineID{};
    /// Key of the row of its stay in the current stage.
    std::optional<std::int64_t> currentPipelineStageHistoryID{};
    /// Key of the stage of that pipeline.
    std::optional<std::int64_t> currentPipelineStageID{};
    /// Key of the note that shows first.
    std::optional<std::int64_t> defaultNoteID{};
    /// The store's text form, not interpreted.
    std::optional<std::string> delegateChain{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What users note about the deal.
    std::optional<std::string> details{};
    /// When the deal is forecast to close.
    std::optional<Date> dueDate{};
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
    /// Key of a goal of the store.
    std::optional<std::int64_t> goalID{};
    /// The state before the current one.
    std::int64_t lastOpportunityStateType{};
    /// The store's level code.
    std::int64_t level{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What the deal is called.
    std::optional<std::string> name{};
    /// A code of the users' choice.
    std::optional<std::string> opportunityCode{};
    /// Key of the OpportunityStateReason, why the deal is in its state.
    std::optional<std::int64_t> opportunityStateReasonID{};
    /// The raw value of its OpportunityState.
    std::int64_t opportunityStateType{};
    /// Key of its OpportunityType.
    std::optional<std::int64_t> opportunityTypeID{};
    /// Position among its siblings.
    std::int64_t order{};
    /// The store's packed permission word, kept beside the decoded `permissions` and not interpreted.
    std::int64_t permissionMask{};
    /// Of success, in percent.
    std::int64_t probability{};
    /// Key of a product or service of the store.
    std::optional<std::int64_t> productServiceID{};
    /// The identifier that the record had where it was imported from.
    std::optional<std::string> sourceImportID{};
    /// When work on the deal began.
    std::optional<Date> startDate{};
    /// Key of a term of the store.
    std::optional<std::int64_t> termID{};
    /// The price of one unit.
    double unitPrice{};
    /// How many units are sold.
    double units{};
    /// Key of its visibility preset.
    std::optional<std::int64_t> visibilityPresetID{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<Opportunity>& objectID() const noexcept { return opportunityID.get(); }
    [[nodiscard]] const ObjectID<Opportunity>& id() const noexcept { return opportunityID.get(); }
    friend bool operator==(const Opportunity&, const Opportunity&) = default;
};
extern template struct Codec<Opportunity>;

}  // namespace kestrel
