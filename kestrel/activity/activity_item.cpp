#include <kestrel/activity/activity_item.h>
#include <kestrel/coding/wire_form.h>
#include <array>
#include <variant>

namespace kestrel {

KESTREL_FIELDS(EmailItem, email);
KESTREL_FIELDS(FileItem, fileAttachment);
KESTREL_FIELDS(URLReferenceItem, urlReference);
KESTREL_FIELDS(FormFieldItem, record, definition);
KESTREL_FIELDS(FormItem, form, definition, fields);
KESTREL_FIELDS(NoteItem, note, ownerID, ownerName);
KESTREL_FIELDS(TaskItem, task, ownerID, ownerName);
KESTREL_FIELDS(TimeblockItem, timeblock);

namespace {

constexpr std::array rows{CaseRow{"email", "_0"},       CaseRow{"fileAttachment", "_0"}, CaseRow{"form", "_0"},
                          CaseRow{"note", "_0"},        CaseRow{"task", "_0"},           CaseRow{"timeblock", "_0"},
                          CaseRow{"urlReference", "_0"}};

}  // namespace

template <>
struct CaseTable<ActivityItemID> {
    static constexpr std::string_view typeName = "ActivityItem.ID";
    static constexpr auto rows = kestrel::rows;
};
template struct Codec<ActivityItemID>;

template <>
struct CaseTable<ActivityItem> {
    static constexpr std::string_view typeName = "ActivityItem";
    static constexpr auto rows = kestrel::rows;
};
template struct Codec<ActivityItem>;

const std::optional<Date>& TaskItem::activityFeedReferenceDate() const noexcept {
    switch (task->status) {
        case TaskStatus::done: return task->completeDate;
        case TaskStatus::cancelled: return task->createDate;
        case TaskStatus::open:
        case TaskStatus::pending:
        case TaskStatus::deferred:
        case TaskStatus::inProgress: break;
    }
    return task->dueDate ? task->dueDate : task->createDate;
}

// NOLINTNEXTLINE(bugprone-exception-escape): a choice always has a case to visit.
std::strong_ordering operator<=>(const ActivityItemID& a, const ActivityItemID& b) noexcept {
    if (a.caseIndex() != b.caseIndex()) return a.caseIndex() <=> b.caseIndex();
    return a.match([&]<class T>(const ObjectID<T>& id) { return id <=> *b.template payloadIf<ObjectID<T>>(); });
}

ActivityItem::ID ActivityItem::id() const {
    return match([](const EmailItem& item) { return ID::email(item.id()); },
                 [](const FileItem& item) { return ID::fileAttachment(item.id()); },
                 [](const FormItem& item) { return ID::form(item.id()); },
                 [](const NoteItem& item) { return ID::note(item.id()); },
                 [](const TaskItem& item) { return ID::task(item.id()); },
                 [](const TimeblockItem& item) { return ID::timeblock(item.id()); },
                 [](const URLReferenceItem& item) { return ID::urlReference(item.id()); });
}

// NOLINTNEXTLINE(bugprone-exception-escape): a choice always has a case to visit.
const std::optional<Date>& ActivityItem::date() const noexcept {
    return match([](const auto& item) -> const std::optional<Date>& { return activityDate(item); });
}

}  // namespace kestrel
