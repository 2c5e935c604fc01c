#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/pipeline_board_service.h>
#include <kestrel/services/system_user_defaults_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The boards of a database.
///
/// How a user left a board is a preference of whoever runs the program, apart for each database file and each user of
/// it. One that cannot be read any more, or is of a pipeline that is gone, counts as never stored.
///
/// What stops a change and is none of the cases of its error, a database that cannot be opened for example, is reported
/// as the record's not being there. So is a record that the user may not read.
class SQLitePipelineBoardService final : public PipelineBoardService {
  public:
    SQLitePipelineBoardService(std::shared_ptr<HostContext> context, SystemUserDefaultsService& preferences)
        : context_(std::move(context)), preferences_(&preferences) {}

    [[nodiscard]] AnyPublisher<Void> boardDidChange() const override;
    /// Retired ones included: records may still be in them.
    [[nodiscard]] AnyPublisher<std::vector<PipelineDefinition>, ReadError> fetchPipelines(BoardKind kind) override;
    /// Without those that are deleted.
    [[nodiscard]] AnyPublisher<std::vector<PipelineStageDefinition>, ReadError> fetchStages(
        const ObjectID<PipelineDefinition>& id) override;
    [[nodiscard]] AnyPublisher<BoardConfig, ReadError> fetchBoardConfig(BoardKind kind) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> storeBoardConfig(const BoardConfig& config) override;
    [[nodiscard]] AnyPublisher<BoardData, ReadError> fetchBoard(const BoardConfig& config,
                                                                const CalendarMoment& at) override;
    /// See `moveToStage`.
    [[nodiscard]] AnyPublisher<Never, ChangeStageError> changeStage(const ChangeStageOptions& options) override;
    [[nodiscard]] AnyPublisher<Never, ChangeStateError> changeState(const ObjectID<Opportunity>& id,
                                                                    const ChangeStateOptions& options) override;
    [[nodiscard]] AnyPublisher<Never, ChangeStatusError> changeStatus(const ObjectID<Project>& id,
                                                                      std::int64_t statusCode) override;

  private:
    std::shared_ptr<HostContext> context_;
    SystemUserDefaultsService* preferences_;
};

}  // namespace kestrel::host
