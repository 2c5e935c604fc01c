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

/// A project: work that moves through a pipeline.
///
/// Fields that end in ID refer to other records by primary key.
struct Project {
    static constexpr auto recordName = recordNameOf<Project>;
    static constexpr auto entityName = entityNameOf<Project>;

    ReadOnly<ObjectID<Project>, Project> projectID;
    /// Key of the user it is assigned to.
    std::optional<std::int64_t> assignedToID{};
    /// The total of estimates, as the store keeps it, in the store's unit.
    std::optional<std::int64_t> cachedTotalEstimatedTime{};
    /// Key of its category.
    std::optional<std::int64_t> categoryID{};
    /// When the project was completed.
    std::optional<Date> completeDate{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of the user who created it.
    std::optional<std::int64_t> createdByID{};
    /// Key of the pipeline that the project is in.
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
    /// What users note about the project.
    std::optional<std::string> details{};
    /// When the project is to be completed.
    std::optional<Date> dueDate{};
    /// How long it is estimated to take, in the store's unit.
    std::optional<std::int64_t> estimatedTime{};
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
    /// The status before the current one.
    std::int64_t lastStatusCode{};
    /// The store's level code.
    std::int64_t level{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What the project is called.
    std::optional<std::string> name{};
    /// Key of the related opportunity.
    std::optional<std::int64_t> opportunityID{};
    /// Position among its siblings.
    std::int64_t order{};
    /// How much of it is done, from 0 to 100.
    std::int64_t percentComplete{};
    /// The store's packed permission word, kept beside the decoded `permissions` and not interpreted.
    std::int64_t permissionMask{};
    /// A code of the users' choice.
    std::optional<std::string> projectCode{};
    /// The identifier that the record had where it was imported from.
    std::optional<std::string> sourceImportID{};
    /// When work on the project begins.
    std::optional<Date> startDate{};
    /// The store's code of its status.
    std::int64_t statusCode{};
    /// Key of its visibility preset.
    std::optional<std::int64_t> visibilityPresetID{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Who may read and change it.
    Permissions permissions{};

    [[nodiscard]] const ObjectID<Project>& objectID() const noexcept { return projectID.get(); }
    [[nodiscard]] const ObjectID<Project>& id() const noexcept { return projectID.get(); }
    friend bool operator==(const Project&, const Project&) = default;
};
extern template struct Codec<Project>;

}  // namespace kestrel
