#pragma once

#include <kestrel/calendar/task.h>
#include <kestrel/foundation/date.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <memory>

namespace kestrel {

/// Tasks.
class TasksService : public ServiceProtocol {
  public:
    /// Marks a task, or one occurrence of a repeating task, as done; the task as it is then.
    [[nodiscard]] virtual AnyPublisher<Task, UpdateError> completeTask(const TaskID& id, Date completionDate) = 0;
};

template <>
class Forwarding<TasksService> : public TasksService {
  public:
    [[nodiscard]] virtual std::shared_ptr<TasksService> target() const = 0;

    [[nodiscard]] AnyPublisher<Task, UpdateError> completeTask(const TaskID& id, Date completionDate) override {
        return target()->completeTask(id, completionDate);
    }
};

namespace services {
inline constexpr ServiceKey<TasksService> tasks;
}

}  // namespace kestrel
