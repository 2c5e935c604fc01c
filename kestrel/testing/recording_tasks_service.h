#pragma once

#include <kestrel/services/tasks_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// A TasksService that answers as a test prepares it, and keeps what it is asked.
class RecordingTasksService final : public TasksService {
  public:
    struct Stubs {
        Stub<AnyPublisher<Task, UpdateError>(const TaskID&, Date)> completeTask;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<Task, UpdateError> completeTask(const TaskID& id, Date completionDate) override {
        return on.completeTask(id, completionDate);
    }
};

}  // namespace kestrel
