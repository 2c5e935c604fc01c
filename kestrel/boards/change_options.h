#pragma once

#include <kestrel/boards/opportunity_state.h>
#include <kestrel/boards/opportunity_state_reason.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/pipeline_board_object_id.h>
#include <cstdint>
#include <optional>
#include <string>

/// What a user asks for when a card changes its stage, an opportunity its outcome or a project its status, and why the
/// data layer refuses it.
namespace kestrel {

/// Moves a card to another stage.
struct ChangeStageOptions {
    /// A member that is given when the options are made, and kept.
    template <class T>
    using Fixed = ReadOnly<T, ChangeStageOptions>;

    /// Which of the inputs a stage demands before it accepts the change.
    struct Requirements {
        /// A start of the stay.
        bool start{};
        /// An end of the stay.
        bool end{};
        /// A note for the history.
        bool note{};
        /// That the stage's activities are created.
        bool activities{};

        friend bool operator==(const Requirements&, const Requirements&) = default;
    };

    /// The opportunity or project to move.
    Fixed<PipelineBoardObjectID> id;
    /// The target, named by its template's stage.
    Fixed<ObjectID<PipelineStageDefinition>> stageID;
    /// The target's name, to show and for the history.
    std::optional<std::string> stageName{};
    /// The start of the stay in the new stage.
    Fixed<std::optional<Date>> start{};
    /// Its end, when the move closes the stage at once.
    Fixed<std::optional<Date>> end{};
    /// A note for the history.
    Fixed<std::optional<std::string>> note{};
    /// Whether the stage's activities are created.
    Fixed<bool> createActivities{false};
    /// What the stage demands; absent while that is not known.
    std::optional<Requirements> requirements{};
    /// Whether the target is the stage that the record is already in.
    bool isRepeatingStage{};
    /// Whether the user has completed the sheet that asks for the inputs.
    bool hasCompletedSheet{};

    /// What is asked for when a card is dropped on a stage without the sheet being shown: no end, no note, the stage's
    /// activities.
    [[nodiscard]] static ChangeStageOptions defaultOptions(std::string stageName, PipelineBoardObjectID id,
                                                           ObjectID<PipelineStageDefinition> stageID,
                                                           std::optional<Date> startDate);

    friend bool operator==(const ChangeStageOptions&, const ChangeStageOptions&) = default;
};

/// Changes an opportunity's outcome.
struct ChangeStateOptions {
    /// The new outcome.
    OpportunityState state{};
    /// Why; absent without a reason.
    std::optional<ObjectID<OpportunityStateReason>> reason{};

    friend bool operator==(const ChangeStateOptions&, const ChangeStateOptions&) = default;
};

/// Why a card was not moved.
enum class ChangeStageError : std::uint8_t {
    objectiveNotFound,     ///< there is no such opportunity or project
    noWritePermission,     ///< the user may not change it
    noPipeline,            ///< it is in no pipeline
    pipelineInactive,      ///< its pipeline's template is retired
    pipelineDoesNotApply,  ///< the template is not for records of its kind
    pipelineMissingStage,  ///< the target is not among the pipeline's stages
};

/// Why an outcome was not changed.
enum class ChangeStateError : std::uint8_t {
    opportunityNotFound,  ///< there is no such opportunity
    noWritePermission,    ///< the user may not change it
};

/// Why a status was not changed.
enum class ChangeStatusError : std::uint8_t {
    projectNotFound,    ///< there is no such project
    noWritePermission,  ///< the user may not change it
};

}  // namespace kestrel
