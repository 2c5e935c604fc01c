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

/// A pipeline template: an ordered series of stages that records can be moved through.
struct PipelineDefinition {
    static constexpr auto recordName = recordNameOf<PipelineDefinition>;
    static constexpr auto entityName = entityNameOf<PipelineDefinition>;

    ReadOnly<ObjectID<PipelineDefinition>, PipelineDefinition> pipelineDefinitionID;
    /// 1 when the template may be applied, 0 when it is retired.
    std::int64_t active{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Non-zero when it applies to opportunities.
    std::int64_t forOpportunity{};
    /// Non-zero when it applies to projects.
    std::int64_t forProject{};
    /// Lower bound of its band, by convention a percentage.
    std::int64_t lowerThreshold{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the template.
    std::optional<std::string> name{};
    /// What users note about the template.
    std::optional<std::string> note{};
    /// Upper bound of its band.
    std::int64_t upperThreshold{};

    [[nodiscard]] const ObjectID<PipelineDefinition>& objectID() const noexcept { return pipelineDefinitionID.get(); }
    [[nodiscard]] const ObjectID<PipelineDefinition>& id() const noexcept { return pipelineDefinitionID.get(); }
    friend bool operator==(const PipelineDefinition&, const PipelineDefinition&) = default;
};
extern template struct Codec<PipelineDefinition>;

/// A stage of a template.
struct PipelineStageDefinition {
    static constexpr auto recordName = recordNameOf<PipelineStageDefinition>;
    static constexpr auto entityName = entityNameOf<PipelineStageDefinition>;

    ReadOnly<ObjectID<PipelineStageDefinition>, PipelineStageDefinition> pipelineStageDefinitionID;
    /// Key of the set of activities that entering the stage creates.
    std::optional<std::int64_t> actionSetID{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Lower bound of the probability, by convention a percentage.
    std::int64_t lowerThreshold{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the stage.
    std::optional<std::string> name{};
    /// What users note about the stage.
    std::optional<std::string> note{};
    /// Position in its template.
    std::int64_t order{};
    /// Key of its template.
    std::optional<std::int64_t> pipelineDefinitionID{};
    /// Upper bound of the probability.
    std::int64_t upperThreshold{};

    [[nodiscard]] const ObjectID<PipelineStageDefinition>& objectID() const noexcept {
        return pipelineStageDefinitionID.get();
    }
    [[nodiscard]] const ObjectID<PipelineStageDefinition>& id() const noexcept {
        return pipelineStageDefinitionID.get();
    }
    friend bool operator==(const PipelineStageDefinition&, const PipelineStageDefinition&) = default;
};
extern template struct Codec<PipelineStageDefinition>;

/// A template as applied to one opportunity or one project.
struct Pipeline {
    static constexpr auto recordName = recordNameOf<Pipeline>;
    static constexpr auto entityName = entityNameOf<Pipeline>;

    ReadOnly<ObjectID<Pipeline>, Pipeline> pipelineID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Lower bound of its band, by convention a percentage.
    std::int64_t lowerThreshold{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The template's when it was applied.
    std::optional<std::string> name{};
    /// What users note about it.
    std::optional<std::string> note{};
    /// Key of the opportunity that it belongs to.
    std::optional<std::int64_t> opportunityID{};
    /// Key of the template that it was made from.
    std::optional<std::int64_t> pipelineDefinitionID{};
    /// Key of the project that it belongs to.
    std::optional<std::int64_t> projectID{};
    /// Upper bound of its band.
    std::int64_t upperThreshold{};

    [[nodiscard]] const ObjectID<Pipeline>& objectID() const noexcept { return pipelineID.get(); }
    [[nodiscard]] const ObjectID<Pipeline>& id() const noexcept { return pipelineID.get(); }
    friend bool operator==(const Pipeline&, const Pipeline&) = default;
};
extern template struct Codec<Pipeline>;

/// A stage of an applied pipeline.
struct PipelineStage {
    static constexpr auto recordName = recordNameOf<PipelineStage>;
    static constexpr auto entityName = entityNameOf<PipelineStage>;

    ReadOnly<ObjectID<PipelineStage>, PipelineStage> pipelineStageID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Non-zero once the stage's activities have been created for the record.
    std::optional<std::int64_t> isActivitySetCreated{};
    /// Lower bound of the probability, by convention a percentage.
    std::int64_t lowerThreshold{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// That of the template's stage when it was copied.
    std::optional<std::string> name{};
    /// What users note about it.
    std::optional<std::string> note{};
    /// Key of the opportunity that is moved through it; absent for a project.
    std::optional<std::int64_t> opportunityID{};
    /// Position in its pipeline.
    std::int64_t order{};
    /// Key of its pipeline.
    std::optional<std::int64_t> pipelineID{};
    /// Key of the template's stage that it was copied from.
    std::optional<std::int64_t> pipelineStageDefinitionID{};
    /// Key of the project that is moved through it; absent for an opportunity.
    std::optional<std::int64_t> projectID{};
    /// Upper bound of the probability.
    std::int64_t upperThreshold{};

    [[nodiscard]] const ObjectID<PipelineStage>& objectID() const noexcept { return pipelineStageID.get(); }
    [[nodiscard]] const ObjectID<PipelineStage>& id() const noexcept { return pipelineStageID.get(); }
    friend bool operator==(const PipelineStage&, const PipelineStage&) = default;
};
extern template struct Codec<PipelineStage>;

/// One stay of a record in a stage. The names are copies, so that the history reads correctly after a stage is renamed
/// or deleted.
struct PipelineStageHistory {
    static constexpr auto recordName = recordNameOf<PipelineStageHistory>;
    static constexpr auto entityName = entityNameOf<PipelineStageHistory>;

    ReadOnly<ObjectID<PipelineStageHistory>, PipelineStageHistory> pipelineStageHistoryID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of the user who created it.
    std::optional<std::int64_t> createdByID{};
    /// The name of that user, copied.
    std::optional<std::string> createdByUsername{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When the record left the stage; absent while it is still there.
    std::optional<Date> endDate{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The note entered with the change.
    std::optional<std::string> note{};
    /// Key of the opportunity that stayed; absent for a project.
    std::optional<std::int64_t> opportunityID{};
    /// Key of the pipeline entered.
    std::optional<std::int64_t> pipelineID{};
    /// Its name, copied.
    std::optional<std::string> pipelineName{};
    /// Key of the stage entered.
    std::optional<std::int64_t> pipelineStageID{};
    /// Key of the pipeline left.
    std::optional<std::int64_t> previousPipelineID{};
    /// Its name, copied.
    std::optional<std::string> previousPipelineName{};
    /// Key of the stage left.
    std::optional<std::int64_t> previousPipelineStageID{};
    /// Its name, copied.
    std::optional<std::string> previousStageName{};
    /// Key of the project that stayed; absent for an opportunity.
    std::optional<std::int64_t> projectID{};
    /// The name of the stage entered, copied.
    std::optional<std::string> stageName{};
    /// When the record entered the stage.
    std::optional<Date> startDate{};

    [[nodiscard]] const ObjectID<PipelineStageHistory>& objectID() const noexcept {
        return pipelineStageHistoryID.get();
    }
    [[nodiscard]] const ObjectID<PipelineStageHistory>& id() const noexcept { return pipelineStageHistoryID.get(); }
    friend bool operator==(const PipelineStageHistory&, const PipelineStageHistory&) = default;
};
extern template struct Codec<PipelineStageHistory>;

}  // namespace kestrel
