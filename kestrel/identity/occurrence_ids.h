#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/link_target.h>
#include <kestrel/identity/object_id.h>
#include <optional>
#include <string>

namespace kestrel {

/// One occurrence of a repeating appointment: its series and its start.
struct TimeblockOccurrence {
    using Coded = void;

    /// The series.
    ReadOnly<ObjectID<Timeblock>, TimeblockOccurrence> parentID;
    /// When the occurrence starts by the rule of repetition.
    ReadOnly<Date, TimeblockOccurrence> startDate{};

    friend bool operator==(const TimeblockOccurrence&, const TimeblockOccurrence&) = default;
};
extern template struct Codec<TimeblockOccurrence>;

/// One occurrence of a repeating event of the host's calendar: the event, by that calendar's own identifier, and its
/// start.
struct EventOccurrence {
    using Coded = void;

    /// As the calendar of the host identifies the event.
    ReadOnly<std::string, EventOccurrence> eventID{};
    /// When the occurrence starts.
    ReadOnly<Date, EventOccurrence> startDate{};

    friend bool operator==(const EventOccurrence&, const EventOccurrence&) = default;
};
extern template struct Codec<EventOccurrence>;

/// An appointment as a calendar sees it: stored, or one occurrence of a stored series, or an event of the host's
/// calendar, or one occurrence of such an event. In keyed form one key, the case's name, holding the payload's labels.
class AppointmentID
    : public Choice<AppointmentID, ObjectID<Timeblock>, TimeblockOccurrence, std::string, EventOccurrence> {
  public:
    using Coded = void;
    /// The payload of the case of that name.
    using TimeblockOccurrence = kestrel::TimeblockOccurrence;
    /// The payload of the case of that name.
    using EventOccurrence = kestrel::EventOccurrence;

    /// A stored appointment that does not repeat, or a repeating one as a whole.
    [[nodiscard]] static AppointmentID timeblock(ObjectID<Timeblock> timeblockID) { return AppointmentID(timeblockID); }
    /// One occurrence of a stored appointment that repeats.
    [[nodiscard]] static AppointmentID timeblockOccurrence(ObjectID<Timeblock> parentID, Date startDate) {
        return AppointmentID(TimeblockOccurrence{parentID, startDate});
    }
    /// An event of the host's calendar that does not repeat, or a repeating one as a whole.
    [[nodiscard]] static AppointmentID event(std::string eventID) { return AppointmentID(std::move(eventID)); }
    /// One occurrence of an event of the host's calendar that repeats.
    [[nodiscard]] static AppointmentID eventOccurrence(std::string eventID, Date startDate) {
        return AppointmentID(EventOccurrence{std::move(eventID), startDate});
    }

    /// Of a stored appointment as a whole; an occurrence does not report its series here.
    [[nodiscard]] std::optional<ObjectID<Timeblock>> timeblock() const { return payload<ObjectID<Timeblock>>(); }
    [[nodiscard]] std::optional<TimeblockOccurrence> timeblockOccurrence() const {
        return payload<TimeblockOccurrence>();
    }
    [[nodiscard]] std::optional<std::string> event() const { return payload<std::string>(); }
    [[nodiscard]] std::optional<EventOccurrence> eventOccurrence() const { return payload<EventOccurrence>(); }
    /// Whether it is one occurrence of something that repeats.
    [[nodiscard]] bool isRepeating() const noexcept { return caseIndex() == 1 || caseIndex() == 3; }

    friend bool operator==(const AppointmentID&, const AppointmentID&) = default;

  private:
    friend CodingAccess;
    explicit AppointmentID(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<AppointmentID>;

/// One occurrence of a repeating task: its series and its due date.
struct TaskOccurrence {
    using Coded = void;

    /// The series.
    ReadOnly<ObjectID<Task>, TaskOccurrence> parentID;
    /// When the occurrence is due.
    ReadOnly<Date, TaskOccurrence> dueDate{};

    friend bool operator==(const TaskOccurrence&, const TaskOccurrence&) = default;
};
extern template struct Codec<TaskOccurrence>;

/// A task, or one occurrence of a repeating one. In keyed form one key, the case's name, holding the payload's labels.
class TaskID : public Choice<TaskID, ObjectID<Task>, TaskOccurrence> {
  public:
    using Coded = void;
    /// The payload of the case of that name.
    using TaskOccurrence = kestrel::TaskOccurrence;

    /// A task, or a repeating one as a whole.
    [[nodiscard]] static TaskID task(ObjectID<Task> taskID) { return TaskID(taskID); }
    /// One occurrence of a repeating task.
    [[nodiscard]] static TaskID taskOccurrence(ObjectID<Task> parentID, Date dueDate) {
        return TaskID(TaskOccurrence{parentID, dueDate});
    }

    [[nodiscard]] std::optional<ObjectID<Task>> task() const { return payload<ObjectID<Task>>(); }
    [[nodiscard]] std::optional<TaskOccurrence> taskOccurrence() const { return payload<TaskOccurrence>(); }
    /// Whether it is one occurrence of a repeating task.
    [[nodiscard]] bool isRepeating() const noexcept { return caseIndex() == 1; }
    /// The task as a link's target; of an occurrence the series, without the date.
    [[nodiscard]] LinkTarget linkTarget() const;

    friend bool operator==(const TaskID&, const TaskID&) = default;

  private:
    friend CodingAccess;
    explicit TaskID(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<TaskID>;

}  // namespace kestrel
