#pragma once

#include <kestrel/services/pipeline_board_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// A PipelineBoardService that answers as a test prepares it, and keeps what it is asked.
class RecordingPipelineBoardService final : public PipelineBoardService {
  public:
    struct Stubs {
        Stub<AnyPublisher<Void>()> boardDidChange;
        Stub<AnyPublisher<std::vector<PipelineDefinition>, ReadError>(BoardKind)> fetchPipelines;
        Stub<AnyPublisher<std::vector<PipelineStageDefinition>, ReadError>(const ObjectID<PipelineDefinition>&)>
            fetchStages;
        Stub<AnyPublisher<BoardConfig, ReadError>(BoardKind)> fetchBoardConfig;
        Stub<AnyPublisher<Never, UpdateError>(const BoardConfig&)> storeBoardConfig;
        Stub<AnyPublisher<BoardData, ReadError>(const BoardConfig&, const CalendarMoment&)> fetchBoard;
        Stub<AnyPublisher<Never, ChangeStageError>(const ChangeStageOptions&)> changeStage;
        Stub<AnyPublisher<Never, ChangeStateError>(const ObjectID<Opportunity>&, const ChangeStateOptions&)>
            changeState;
        Stub<AnyPublisher<Never, ChangeStatusError>(const ObjectID<Project>&, std::int64_t)> changeStatus;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<Void> boardDidChange() const override { return on.boardDidChange(); }
    [[nodiscard]] AnyPublisher<std::vector<PipelineDefinition>, ReadError> fetchPipelines(BoardKind kind) override {
        return on.fetchPipelines(kind);
    }
    [[nodiscard]] AnyPublisher<std::vector<PipelineStageDefinition>, ReadError> fetchStages(
        const ObjectID<PipelineDefinition>& id) override {
        return on.fetchStages(id);
    }
    [[nodiscard]] AnyPublisher<BoardConfig, ReadError> fetchBoardConfig(BoardKind kind) override {
        return on.fetchBoardConfig(kind);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> storeBoardConfig(const BoardConfig& config) override {
        return on.storeBoardConfig(config);
    }
    [[nodiscard]] AnyPublisher<BoardData, ReadError> fetchBoard(const BoardConfig& config,
                                                                const CalendarMoment& at) override {
        return on.fetchBoard(config, at);
    }
    [[nodiscard]] AnyPublisher<Never, ChangeStageError> changeStage(const ChangeStageOptions& options) override {
        return on.changeStage(options);
    }
    [[nodiscard]] AnyPublisher<Never, ChangeStateError> changeState(const ObjectID<Opportunity>& id,
                                                                    const ChangeStateOptions& options) override {
        return on.changeState(id, options);
    }
    [[nodiscard]] AnyPublisher<Never, ChangeStatusError> changeStatus(const ObjectID<Project>& id,
                                                                      std::int64_t statusCode) override {
        return on.changeStatus(id, statusCode);
    }
};

}  // namespace kestrel
