#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/tasks_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The tasks of a database.
class SQLiteTasksService final : public TasksService {
  public:
    explicit SQLiteTasksService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    /// See `markTaskDone` and `completeOccurrence`.
    [[nodiscard]] AnyPublisher<Task, UpdateError> completeTask(const TaskID& id, Date completionDate) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
