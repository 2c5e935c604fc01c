#include <host/board/stage_change_message.h>

namespace kestrel::host {

UserErrorMessage userErrorMessage(ChangeStageError error) {
    switch (error) {
        case ChangeStageError::objectiveNotFound:
            return {"The card is not there any more.", "It was deleted, or you may not see it any more."};
        case ChangeStageError::noWritePermission:
            return {"You may not change this card.", "Ask its owner or an administrator for the permission to write."};
        case ChangeStageError::noPipeline:
            return {"The card is in no pipeline.", "Put it into one before you choose its stage."};
        case ChangeStageError::pipelineInactive:
            return {"The pipeline is retired.", "Cards in it stay in the stages where they are."};
        case ChangeStageError::pipelineDoesNotApply:
            return {"The pipeline is not for cards of this kind.",
                    "Its template says whether it is for opportunities or for projects."};
        case ChangeStageError::pipelineMissingStage:
            return {"The card's pipeline does not have this stage.",
                    "The stage was removed, or was added after the card came into the pipeline."};
    }
    return UserErrorMessage::unexpectedError();
}

}  // namespace kestrel::host
