#include <host/activity/task_changes.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_tasks_service.h>

namespace kestrel::host {

AnyPublisher<Task, UpdateError> SQLiteTasksService::completeTask(const TaskID& id, Date completionDate) {
    return updating([context = context_, id, completionDate] {
        return context->write([&](RecordWriter& records) {
            return id.match([&](const ObjectID<Task>& task) { return markTaskDone(records, task, completionDate); },
                            [&](const TaskOccurrence& occurrence) {
                                return completeOccurrence(records, occurrence, completionDate);
                            });
        });
    });
}

}  // namespace kestrel::host
