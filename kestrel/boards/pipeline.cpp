#include <kestrel/boards/pipeline.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(PipelineDefinition, pipelineDefinitionID, active, createDate, deletionDate, deletionIdentifier,
               deletionUserID, forOpportunity, forProject, lowerThreshold, modifyDate, name, note, upperThreshold);
KESTREL_FIELDS(PipelineStageDefinition, pipelineStageDefinitionID, actionSetID, createDate, deletionDate,
               deletionIdentifier, deletionUserID, lowerThreshold, modifyDate, name, note, order, pipelineDefinitionID,
               upperThreshold);
KESTREL_FIELDS(Pipeline, pipelineID, createDate, deletionDate, deletionIdentifier, deletionUserID, lowerThreshold,
               modifyDate, name, note, opportunityID, pipelineDefinitionID, projectID, upperThreshold);
KESTREL_FIELDS(PipelineStage, pipelineStageID, createDate, deletionDate, deletionIdentifier, deletionUserID,
               isActivitySetCreated, lowerThreshold, modifyDate, name, note, opportunityID, order, pipelineID,
               pipelineStageDefinitionID, projectID, upperThreshold);
KESTREL_FIELDS(PipelineStageHistory, pipelineStageHistoryID, createDate, createdByID, createdByUsername, deletionDate,
               deletionIdentifier, deletionUserID, endDate, modifyDate, note, opportunityID, pipelineID, pipelineName,
               pipelineStageID, previousPipelineID, previousPipelineName, previousPipelineStageID, previousStageName,
               projectID, stageName, startDate);

}  // namespace kestrel
