#include <kestrel/boards/change_options.h>

namespace kestrel {

ChangeStageOptions ChangeStageOptions::defaultOptions(std::string stageName, PipelineBoardObjectID id,
                                                      ObjectID<PipelineStageDefinition> stageID,
                                                      std::optional<Date> startDate) {
    return {.id = std::move(id),
            .stageID = stageID,
            .stageName = std::move(stageName),
            .start = startDate,
            .createActivities = true};
}

}  // namespace kestrel
