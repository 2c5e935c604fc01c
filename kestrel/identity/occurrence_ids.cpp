#include <kestrel/coding/wire_form.h>
#include <kestrel/identity/occurrence_ids.h>

namespace kestrel {

KESTREL_FIELDS(TimeblockOccurrence, parentID, startDate);
KESTREL_FIELDS(EventOccurrence, eventID, startDate);
KESTREL_FIELDS(TaskOccurrence, parentID, dueDate);

template <>
struct CaseTable<AppointmentID> {
    static constexpr std::string_view typeName = "AppointmentID";
    static constexpr std::array rows{CaseRow{"timeblock", "timeblockID"}, CaseRow{"timeblockOccurrence"},
                                     CaseRow{"event", "eventID"}, CaseRow{"eventOccurrence"}};
};
template struct Codec<AppointmentID>;

template <>
struct CaseTable<TaskID> {
    static constexpr std::string_view typeName = "TaskID";
    static constexpr std::array rows{CaseRow{"task", "taskID"}, CaseRow{"taskOccurrence"}};
};
template struct Codec<TaskID>;

LinkTarget TaskID::linkTarget() const {
    return match([](const ObjectID<Task>& task) { return LinkTarget::task(task); },
                 [](const TaskOccurrence& occurrence) { return LinkTarget::task(occurrence.parentID); });
}

}  // namespace kestrel
