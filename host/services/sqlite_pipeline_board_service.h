#pragma once

#include <host/failure.h>
#include <host/services/host_context.h>
#include <kestrel/services/pipeline_board_service.h>
#include <kestrel/services/system_user_defaults_service.h>
#include <memory>
#include <optional>
#include <utility>

namespace kestrel::host {

/// The boards of a database.
///
/// How a user left a board is a preference of whoever runs the program, apart for each database file and each user of
/// it. One that cannot be read any more, or is of a pipeline that is gone, counts as never stored.
///
/// A record that the user may not read is reported as not being there, and so is one of a database that is not there.
/// What else stops a change and is none of the cases of its error, a database that is busy, full or broken for example,
/// is reported as `noWritePermission`; `changeFailure` tells it from a refusal.
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
    /// Why the last change could not be written, for a reason that its error has no case for; absent when it was
    /// written, or refused for what its error says.
    [[nodiscard]] const std::optional<Failure>& changeFailure() const noexcept { return *changeFailure_; }

  private:
    std::shared_ptr<HostContext> context_;
    SystemUserDefaultsService* preferences_;
    /// Shared with the changes that are subscribed to later.
    std::shared_ptr<std::optional<Failure>> changeFailure_ = std::make_shared<std::optional<Failure>>();
};

}  // namespace kestrel::host
