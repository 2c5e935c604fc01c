#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>
#include <host/activity/task_changes.h>
#include <host/people/calendar_importer.h>

namespace kestrel::host {
namespace {

bool isTakenOut(RecordWriter& records, const ObjectID<Task>& series, Date occurrence) {
    SQLite::Statement exceptions(records.database(), R"(SELECT id FROM "TaskException" WHERE taskID = ?)");
    exceptions.bind(1, series.value().value());
    while (exceptions.executeStep()) {
        const auto exception = records.find(ObjectID<TaskException>(exceptions.getColumn(0).getInt64()));
        if (exception && exception->dateTime == occurrence) return true;
    }
    return false;
}

/// The occurrence as a task by itself.
Task taskOf(const Task& series, const ObjectID<Task>& id, Date dueDate, Date now) {
    Task task{.taskID = id,
              .createDate = now,
              .details = series.details,
              .dueDate = dueDate,
              .estimatedTime = series.estimatedTime,
              .isSomeday = series.isSomeday,
              .kind = series.kind,
              .location = series.location,
              .modifyDate = now,
              .priority = series.priority,
              .title = series.title,
              .urlString = series.urlString,
              .permissions = series.permissions,
              .category = series.category,
              .keywords = series.keywords};
    if (series.startDate && series.dueDate) task.startDate = dueDate + (*series.startDate - *series.dueDate);
    return task;
}

}  // namespace

Task markTaskDone(RecordWriter& records, const ObjectID<Task>& id, Date completionDate) {
    Task task = records.changeable(id);
    if (task.status == TaskStatus::done && task.completeDate == completionDate) return task;
    task.status = TaskStatus::done;
    task.completeDate = completionDate;
    task.modifyDate = records.now();
    records.update(task);
    return task;
}

Task completeOccurrence(RecordWriter& records, const TaskOccurrence& occurrence, Date completionDate) {
    const ObjectID<Task>& parentID = occurrence.parentID;
    const Task series = records.changeable(parentID);
    const Date dueDate = occurrence.dueDate;
    // Series run by their start; an occurrence that has one is known by it.
    const std::optional<Date> first = series.dueDate ? series.dueDate : series.startDate;
    const Date original =
        series.startDate && series.dueDate ? dueDate + (*series.startDate - *series.dueDate) : dueDate;
    const bool isOfSeries = series.repeatFrequency != 0 && (!first || dueDate >= *first) &&
                            (!series.repeatEndDate || original <= *series.repeatEndDate);
    if (!isOfSeries || isTakenOut(records, parentID, original)) {
        throw RecordMissing(
            fmt::format("occurrence of {} at {} s", parentID.stringValue(), dueDate.sinceReferenceDate()));
    }
    Task task = taskOf(series, records.newID<Task>(), dueDate, records.now());
    task.status = TaskStatus::done;
    task.completeDate = completionDate;
    task.repeatOriginalDate = original;
    records.insert(task);
    for (const LinkKind kind : {LinkKind::subject, LinkKind::owner}) {
        for (const AnyObjectID& target : records.links().targets(parentID, kind))
            records.links().add(task.objectID(), kind, target);
    }
    records.insert(TaskException{
        .taskExceptionID = records.newID<TaskException>(), .dateTime = original, .taskID = parentID.value()});
    noteOccurrence(records.database(), parentID, original, task.objectID());
    return task;
}

}  // namespace kestrel::host
