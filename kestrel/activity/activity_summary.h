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

/// The emails around a record.
struct EmailSummary {
    /// Limited and in order, as the host gives them.
    std::vector<EmailItem> recent{};
    /// How many there are in all.
    std::int64_t total{};

    /// No items, and a total of 0.
    [[nodiscard]] static EmailSummary empty() { return {}; }
    /// Whether there is no recent item, whatever the total.
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const EmailSummary&, const EmailSummary&) = default;
};

/// The file attachments and the links around a record.
struct FilesSummary {
    /// Limited and in order, as the host gives them.
    std::vector<FileItem> recentAttachments{};
    /// How many attachments there are in all.
    std::int64_t totalAttachments{};
    /// Limited and in order, as the host gives them.
    std::vector<URLReferenceItem> recentURLReferences{};
    /// How many links there are in all.
    std::int64_t totalURLReferences{};

    /// No items, and totals of 0.
    [[nodiscard]] static FilesSummary empty() { return {}; }
    /// Whether there is no recent item of either kind, whatever the totals.
    [[nodiscard]] bool isEmpty() const noexcept { return recentAttachments.empty() && recentURLReferences.empty(); }
    /// Attachments and links together. A sum beyond 64 bits is a mistake in the program: fatal().
    [[nodiscard]] std::int64_t total() const;

    friend bool operator==(const FilesSummary&, const FilesSummary&) = default;
};

/// The forms around a record.
struct FormsSummary {
    /// Limited and in order, as the host gives them.
    std::vector<FormItem> recent{};
    /// How many there are in all.
    std::int64_t total{};

    /// No items, and a total of 0.
    [[nodiscard]] static FormsSummary empty() { return {}; }
    /// Whether there is no recent item, whatever the total.
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const FormsSummary&, const FormsSummary&) = default;
};

/// The notes around a record.
struct NotesSummary {
    /// Limited and in order, as the host gives them.
    std::vector<NoteItem> recent{};
    /// How many there are in all.
    std::int64_t total{};

    /// No items, and a total of 0.
    [[nodiscard]] static NotesSummary empty() { return {}; }
    /// Whether there is no recent item, whatever the total.
    [[nodiscard]] bool isEmpty() const noexcept { return recent.empty(); }

    friend bool operator==(const NotesSummary&, const NotesSummary&) = default;
};

/// The tasks around a record.
struct TasksSummary {
    /// Those that were done last; limited and in order, as the host gives them.
    std::vector<TaskItem> recentlyCompleted{};
    /// Those that should have been done last; limited and in order, as the host gives them.
    std::vector<TaskItem> recentlyOverdue{};
    /// Those that are due on no date; limited and in order, as the host gives them.
    std::vector<TaskItem> recentlyCreatedWithoutDueDates{};
    /// How many there are in all, of every user.
    std::int64_t allTasksTotal{};
    /// Of the signed-in user.
    std::int64_t myTasksTotal{};
    /// How many of all are neither done nor cancelled.
    std::int64_t incompleteTasksTotal{};
    /// How many of them are the signed-in user's.
    std::int64_t myIncompleteTasksTotal{};
    /// How many are kept for some day.
    std::int64_t somedayTasksTotal{};

    /// No items, and totals of 0.
    [[nodiscard]] static TasksSummary empty() { return {}; }
    /// Whether there is no recent item in any of the lists, whatever the totals.
    [[nodiscard]] bool isEmpty() const noexcept {
        return recentlyCompleted.empty() && recentlyOverdue.empty() && recentlyCreatedWithoutDueDates.empty();
    }

    friend bool operator==(const TasksSummary&, const TasksSummary&) = default;
};

/// The appointments around a record.
struct TimeblocksSummary {
    /// Limited and in order, as the host gives them.
    std::vector<TimeblockItem> recent{};
    /// How many there are in all.
    std::int64_t total{};

    /// No items, and a total of 0.
    [[nodiscard]] static TimeblocksSummary empty() { return {}; }
    /// Whether there is no recent item, whatever the total.
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
    ///@{
    /// What the host found of that kind; empty until it is set.
    EmailSummary email{};
    FilesSummary files{};
    FormsSummary forms{};
    NotesSummary notes{};
    TasksSummary tasks{};
    TimeblocksSummary timeblocks{};
    ///@}

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
