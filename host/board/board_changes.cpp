#include <SQLiteCpp/Statement.h>
#include <host/board/board_changes.h>

#include <algorithm>
#include <type_traits>

namespace kestrel::host {
namespace {

/// A record by the key that another one has of it, as far as it is there and lives.
template <class Record>
std::optional<Record> findByKey(RecordWriter& records, const std::optional<std::int64_t>& key) {
    if (!key) return std::nullopt;
    return records.find(ObjectID<Record>(*key));
}

/// The stage of a pipeline that was made from a stage of its template; not one of either that is deleted.
std::optional<PipelineStage> stageIn(RecordWriter& records, const Pipeline& pipeline,
                                     const ObjectID<PipelineStageDefinition>& definition) {
    if (!records.find(definition)) return std::nullopt;
    SQLite::Statement stages(records.database(),
                             R"(SELECT id, record FROM "PipelineStage"
                                 WHERE pipelineID = ? AND pipelineStageDefinitionID = ? ORDER BY id)");
    stages.bind(1, pipeline.objectID().value().value());
    stages.bind(2, definition.value().value());
    while (stages.executeStep()) {
        auto stage = decodeStored<PipelineStage>(records.database(), stages.getColumn(0).getInt64(),
                                                 textOf(stages.getColumn(1)));
        if (records.isReadable(stage)) return stage;
    }
    return std::nullopt;
}

template <class Record>
std::optional<ChangeStageError> moveToStage(RecordWriter& records, const ObjectID<Record>& id,
                                            const ChangeStageOptions& options) {
    constexpr bool isOpportunity = std::is_same_v<Record, Opportunity>;
    auto deal = records.find(id);
    if (!deal) return ChangeStageError::objectiveNotFound;
    const Date start = options.start.value_or(records.now());
    const bool endsBeforeItStarts = options.end && *options.end < start;
    if (!records.checker().canUpdate(*deal) || endsBeforeItStarts) return ChangeStageError::noWritePermission;
    const auto pipeline = findByKey<Pipeline>(records, deal->currentPipelineID);
    if (!pipeline) return ChangeStageError::noPipeline;
    const auto definition = findByKey<PipelineDefinition>(records, pipeline->pipelineDefinitionID);
    if (!definition || definition->active == 0) return ChangeStageError::pipelineInactive;
    if ((isOpportunity ? definition->forOpportunity : definition->forProject) == 0)
        return ChangeStageError::pipelineDoesNotApply;
    const auto stage = stageIn(records, *pipeline, options.stageID);
    if (!stage) return ChangeStageError::pipelineMissingStage;

    if (auto row = findByKey<PipelineStageHistory>(records, deal->currentPipelineStageHistoryID);
        row && !row->endDate) {
        row->endDate = std::max(start, row->startDate.value_or(start));
        row->modifyDate = records.now();
        records.update(*row);
    }
    PipelineStageHistory row{.pipelineStageHistoryID = records.newID<PipelineStageHistory>(),
                             .createDate = records.now(),
                             .createdByID = records.user().objectID().value(),
                             .createdByUsername = shownName(records.user()),
                             .endDate = options.end,
                             .modifyDate = records.now(),
                             .note = options.note,
                             .pipelineID = pipeline->objectID().value(),
                             .pipelineName = pipeline->name,
                             .pipelineStageID = stage->objectID().value(),
                             .stageName = options.stageName ? options.stageName : stage->name,
                             .startDate = start};
    (isOpportunity ? row.opportunityID : row.projectID) = id.value();
    // What was left is named also when it has been deleted since.
    if (deal->currentPipelineStageID) {
        const auto left = records.findAny(ObjectID<PipelineStage>(*deal->currentPipelineStageID));
        row.previousPipelineID = pipeline->objectID().value();
        row.previousPipelineName = pipeline->name;
        row.previousPipelineStageID = deal->currentPipelineStageID;
        if (left) row.previousStageName = left->name;
    }
    records.insert(row);

    deal->currentPipelineStageID = stage->objectID().value();
    deal->currentPipelineStageHistoryID = row.objectID().value();
    deal->modifyDate = records.now();
    if constexpr (isOpportunity) {
        if (stage->lowerThreshold <= stage->upperThreshold)
            deal->probability = std::clamp(deal->probability, stage->lowerThreshold, stage->upperThreshold);
    }
    records.update(*deal);
    return std::nullopt;
}

}  // namespace

std::optional<ChangeStageError> moveToStage(RecordWriter& records, const ChangeStageOptions& options) {
    return options.id->match([&](const auto& id) { return moveToStage(records, id, options); });
}

std::optional<ChangeStateError> setState(RecordWriter& records, const ObjectID<Opportunity>& id,
                                         const ChangeStateOptions& options) {
    auto deal = records.find(id);
    if (!deal) return ChangeStateError::opportunityNotFound;
    if (!records.checker().canUpdate(*deal)) return ChangeStateError::noWritePermission;
    const auto reason = options.reason ? options.reason->value() : std::nullopt;
    const std::int64_t state = rawValue(options.state);
    if (deal->opportunityStateType == state && deal->opportunityStateReasonID == reason) return std::nullopt;
    if (deal->opportunityStateType != state) {
        deal->lastOpportunityStateType = deal->opportunityStateType;
        deal->opportunityStateType = state;
        const bool isOpen = options.state == OpportunityState::open || options.state == OpportunityState::suspended;
        if (isOpen) {
            deal->completeDate.reset();
        } else if (!deal->completeDate) {
            deal->completeDate = records.now();
        }
    }
    deal->opportunityStateReasonID = reason;
    deal->modifyDate = records.now();
    records.update(*deal);
    return std::nullopt;
}

std::optional<ChangeStatusError> setStatus(RecordWriter& records, const ObjectID<Project>& id,
                                           std::int64_t statusCode) {
    auto project = records.find(id);
    if (!project) return ChangeStatusError::projectNotFound;
    if (!records.checker().canUpdate(*project)) return ChangeStatusError::noWritePermission;
    if (project->statusCode == statusCode) return std::nullopt;
    project->lastStatusCode = project->statusCode;
    project->statusCode = statusCode;
    project->modifyDate = records.now();
    records.update(*project);
    return std::nullopt;
}

}  // namespace kestrel::host
