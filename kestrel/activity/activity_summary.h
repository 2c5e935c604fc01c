#pragma once

#include <kestrel/activity/activity_item.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/activity_source_id.h>
#include <kestrel/identity/object_id.h>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace kestrel {

// The digest of what happened around a record. For each kind the host gives the recent items, limited and in its own
// order, and how many there are in all. A part without recent items is empty, whatever its totals say.

struct EmailSummary {
    std::vector<EmailItem> recent{};
    std::int64_t total{};

    [[nodiscard]] static EmailSummary empty() { return {}; }
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const EmailSummary&, const EmailSummary&) = default;
};

struct FilesSummary {
    std::vector<FileItem> recentAttachments{};
    std::int64_t totalAttachments{};
    std::vector<URLReferenceItem> recentURLReferences{};
    std::int64_t totalURLReferences{};

    [[nodiscard]] static FilesSummary empty() { return {}; }
    [[nodiscard]] bool isEmpty() const noexcept { return recentAttachments.empty() && recentURLReferences.empty(); }
    /// Attachments and links together. A sum beyond 64 bits is a mistake in the program: fatal().
    [[nodiscard]] std::int64_t total() const;

    friend bool operator==(const FilesSummary&, const FilesSummary&) = default;
};

struct FormsSummary {
    std::vector<FormItem> recent{};
    std::int64_t total{};

    [[nodiscard]] static FormsSummary empty() { return {}; }
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const FormsSummary&, const FormsSummary&) = default;
};

struct NotesSummary {
    std::vector<NoteItem> recent{};
    std::int64_t total{};

    [[nodiscard]] static NotesSummary empty() { return {}; }
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const NotesSummary&, const NotesSummary&) = default;
};

struct TasksSummary {
    std::vector<TaskItem> recentlyCompleted{};
    std::vector<TaskItem> recentlyOverdue{};
    std::vector<TaskItem> recentlyCreatedWithoutDueDates{};
    std::int64_t allTasksTotal{};
    /// Of the signed-in user.
    std::int64_t myTasksTotal{};
    std::int64_t incompleteTasksTotal{};
    std::int64_t myIncompleteTasksTotal{};
    std::int64_t somedayTasksTotal{};

    [[nodiscard]] static TasksSummary empty() { return {}; }
    [[nodiscard]] bool isEmpty() const noexcept {
        return recentlyCompleted.empty() && recentlyOverdue.empty() && recentlyCreatedWithoutDueDates.empty();
    }

    friend bool operator==(const TasksSummary&, const TasksSummary&) = default;
};

struct TimeblocksSummary {
    std::vector<TimeblockItem> recent{};
    std::int64_t total{};

    [[nodiscard]] static TimeblocksSummary empty() { return {}; }
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const TimeblocksSummary&, const TimeblocksSummary&) = default;
};

/// What happened around one record, as of a moment. The host fills the parts; `recent()` merges them into one list.
struct ActivitySummary {
    /// The record whose activity it is.
    ReadOnly<ActivitySourceID, ActivitySummary> sourceID;
    /// The moment that it describes.
    Date timestamp{};
    /// How many items `recent()` gives at most. Not negative.
    std::int64_t limit{};
    EmailSummary email{};
    FilesSummary files{};
    FormsSummary forms{};
    NotesSummary notes{};
    TasksSummary tasks{};
    TimeblocksSummary timeblocks{};

    /// All parts empty.
    ActivitySummary(ActivitySourceID source, Date moment, std::int64_t most)
        : sourceID(std::move(source)), timestamp(moment), limit(most) {}
    /// The same with a limit of 0: `recent()` gives nothing until the limit is set.
    [[nodiscard]] static ActivitySummary empty(ActivitySourceID sourceID, Date timestamp) {
        return {std::move(sourceID), timestamp, 0};
    }

    /// Whether all parts are empty. Overlaid tasks do not count.
    [[nodiscard]] bool isEmpty() const noexcept;

    /// Lays a task, as it was edited here, over the stored one: `recent()` shows it in the stored one's place, by its
    /// own date. It replaces what was overlaid for the same task before. The stored lists stay as they are, and a task
    /// that is in none of them is not added.
    void overlayTask(TaskItem taskItem);

    /// The newest `limit` items of all parts, the newest first; of those with the same date the one with the greater
    /// identifier first. Items without a date are left out. What stands in two lists comes twice.
    ///
    /// Linear in the items, plus n log n in the limit; copies only the items that it gives. A negative limit is a
    /// mistake in the program: fatal().
    [[nodiscard]] std::vector<ActivityItem> recent() const;

    friend bool operator==(const ActivitySummary&, const ActivitySummary&) = default;

  private:
    std::unordered_map<ObjectID<Task>, TaskItem> overlaidTasks_;
};

}  // namespace kestrel
