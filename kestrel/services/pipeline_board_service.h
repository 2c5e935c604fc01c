#pragma once

#include <kestrel/boards/board.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/change_options.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/reactive/void.h>
#include <kestrel/records/project.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <cstdint>
#include <memory>
#include <vector>

namespace kestrel {

/// Boards of opportunities and projects, and what users do with the cards.
class PipelineBoardService : public ServiceProtocol {
  public:
    /// A value whenever a board may look different.
    [[nodiscard]] virtual AnyPublisher<Void> boardDidChange() const = 0;
    /// The pipelines that a board of that kind can show, by name.
    [[nodiscard]] virtual AnyPublisher<std::vector<PipelineDefinition>, ReadError> fetchPipelines(BoardKind kind) = 0;
    /// The stages of a pipeline, in their order.
    [[nodiscard]] virtual AnyPublisher<std::vector<PipelineStageDefinition>, ReadError> fetchStages(
        const ObjectID<PipelineDefinition>& id) = 0;
    /// How the user left the board; the usual one when it was never changed.
    [[nodiscard]] virtual AnyPublisher<BoardConfig, ReadError> fetchBoardConfig(BoardKind kind) = 0;
    /// Remembers it for the user.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> storeBoardConfig(const BoardConfig& config) = 0;
    /// The board as the user may see it, looked at in that moment.
    [[nodiscard]] virtual AnyPublisher<BoardData, ReadError> fetchBoard(const BoardConfig& config,
                                                                        const CalendarMoment& at) = 0;
    /// Moves a card to another stage, and writes it into the history.
    [[nodiscard]] virtual AnyPublisher<Never, ChangeStageError> changeStage(const ChangeStageOptions& options) = 0;
    /// Changes the outcome of an opportunity.
    [[nodiscard]] virtual AnyPublisher<Never, ChangeStateError> changeState(const ObjectID<Opportunity>& id,
                                                                            const ChangeStateOptions& options) = 0;
    /// Changes the status of a project.
    [[nodiscard]] virtual AnyPublisher<Never, ChangeStatusError> changeStatus(const ObjectID<Project>& id,
                                                                              std::int64_t statusCode) = 0;
};

template <>
class Forwarding<PipelineBoardService> : public PipelineBoardService {
  public:
    [[nodiscard]] virtual std::shared_ptr<PipelineBoardService> target() const = 0;

    [[nodiscard]] AnyPublisher<Void> boardDidChange() const override { return target()->boardDidChange(); }
    [[nodiscard]] AnyPublisher<std::vector<PipelineDefinition>, ReadError> fetchPipelines(BoardKind kind) override {
        return target()->fetchPipelines(kind);
    }
    [[nodiscard]] AnyPublisher<std::vector<PipelineStageDefinition>, ReadError> fetchStages(
        const ObjectID<PipelineDefinition>& id) override {
        return target()->fetchStages(id);
    }
    [[nodiscard]] AnyPublisher<BoardConfig, ReadError> fetchBoardConfig(BoardKind kind) override {
        return target()->fetchBoardConfig(kind);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> storeBoardConfig(const BoardConfig& config) override {
        return target()->storeBoardConfig(config);
    }
    [[nodiscard]] AnyPublisher<BoardData, ReadError> fetchBoard(const BoardConfig& config,
                                                                const CalendarMoment& at) override {
        return target()->fetchBoard(config, at);
    }
    [[nodiscard]] AnyPublisher<Never, ChangeStageError> changeStage(const ChangeStageOptions& options) override {
        return target()->changeStage(options);
    }
    [[nodiscard]] AnyPublisher<Never, ChangeStateError> changeState(const ObjectID<Opportunity>& id,
                                                                    const ChangeStateOptions& options) override {
        return target()->changeState(id, options);
    }
    [[nodiscard]] AnyPublisher<Never, ChangeStatusError> changeStatus(const ObjectID<Project>& id,
                                                                      std::int64_t statusCode) override {
        return target()->changeStatus(id, statusCode);
    }
};

namespace services {
inline constexpr ServiceKey<PipelineBoardService> pipelineBoard;
}

}  // namespace kestrel
