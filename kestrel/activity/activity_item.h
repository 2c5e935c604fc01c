#pragma once

#include <kestrel/activity/email.h>
#include <kestrel/activity/form.h>
#include <kestrel/activity/note.h>
#include <kestrel/calendar/task.h>
#include <kestrel/calendar/timeblock.h>
#include <kestrel/coding/codec.h>
#include <kestrel/custom/custom_record.h>
#include <kestrel/files/file_attachment.h>
#include <kestrel/files/url_reference.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/lookups/category.h>
#include <kestrel/records/name.h>
#include <compare>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

// What lists of a record's activity show: each item wraps a whole record and offers the handful of its fields that such
// a list needs under stable names. The record can be read, and does not change any more.

/// An email in a list of activity.
struct EmailItem {
    using Coded = void;

    /// All of it.
    ReadOnly<Email, EmailItem> email;

    [[nodiscard]] const ObjectID<Email>& id() const noexcept { return email->id(); }
    [[nodiscard]] const ObjectID<Email>& objectID() const noexcept { return email->id(); }
    ///@{
    /// The email's own.
    [[nodiscard]] const ObjectID<Email>& emailID() const noexcept { return email->id(); }
    [[nodiscard]] const std::optional<std::string>& subject() const noexcept { return email->subject; }
    [[nodiscard]] const std::optional<Date>& messageDate() const noexcept { return email->messageDate; }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return email->createDate; }
    [[nodiscard]] const std::optional<Category>& category() const noexcept { return email->category; }
    ///@}
    /// The sender's name, as Email::fromDisplayName.
    [[nodiscard]] std::optional<std::string> fromDisplayName() const { return email->fromDisplayName(); }
    /// Whether it was not sent yet, as Email::isDraft.
    [[nodiscard]] bool isDraft() const { return email->isDraft(); }

    friend bool operator==(const EmailItem&, const EmailItem&) = default;
};
extern template struct Codec<EmailItem>;

/// A file attachment in a list of activity.
struct FileItem {
    using Coded = void;

    /// All of it.
    ReadOnly<FileAttachment, FileItem> fileAttachment;

    [[nodiscard]] const ObjectID<FileAttachment>& id() const noexcept { return fileAttachment->id(); }
    [[nodiscard]] const ObjectID<FileAttachment>& objectID() const noexcept { return fileAttachment->id(); }
    ///@{
    /// The attachment's own.
    [[nodiscard]] const ObjectID<FileAttachment>& fileID() const noexcept { return fileAttachment->id(); }
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return fileAttachment->name; }
    [[nodiscard]] const std::optional<std::string>& title() const noexcept { return fileAttachment->title; }
    [[nodiscard]] const std::optional<std::string>& attachmentNote() const noexcept {
        return fileAttachment->attachmentNote;
    }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return fileAttachment->createDate; }
    ///@}

    friend bool operator==(const FileItem&, const FileItem&) = default;
};
extern template struct Codec<FileItem>;

/// A link in a list of activity.
struct URLReferenceItem {
    using Coded = void;

    /// All of it.
    ReadOnly<URLReference, URLReferenceItem> urlReference;

    [[nodiscard]] const ObjectID<URLReference>& id() const noexcept { return urlReference->id(); }
    [[nodiscard]] const ObjectID<URLReference>& objectID() const noexcept { return urlReference->id(); }
    ///@{
    /// The link's own.
    [[nodiscard]] const ObjectID<URLReference>& urlReferenceID() const noexcept { return urlReference->id(); }
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return urlReference->name; }
    [[nodiscard]] const std::optional<std::string>& note() const noexcept { return urlReference->note; }
    [[nodiscard]] const std::optional<std::string>& urlString() const noexcept { return urlReference->urlString; }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return urlReference->createDate; }
    ///@}

    friend bool operator==(const URLReferenceItem&, const URLReferenceItem&) = default;
};
extern template struct Codec<URLReferenceItem>;

/// A field of a form, with its definition.
struct FormFieldItem {
    using Coded = void;

    /// The field as it was filled in.
    ReadOnly<CustomRecord, FormFieldItem> record;
    /// Absent when the field's definition is not known.
    ReadOnly<std::optional<CustomRecordDefinition>, FormFieldItem> definition{};

    [[nodiscard]] const ObjectID<CustomRecord>& id() const noexcept { return record->id(); }
    [[nodiscard]] const ObjectID<CustomRecord>& objectID() const noexcept { return record->id(); }
    /// The identifier of the field.
    [[nodiscard]] const ObjectID<CustomRecord>& fieldID() const noexcept { return record->id(); }
    /// The definition's name, else the record's own.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept {
        return definition && definition->name ? definition->name : record->name;
    }
    /// The value as a text to show.
    [[nodiscard]] const std::optional<std::string>& displayString() const noexcept {
        return record->bridgedDisplayString;
    }
    /// Whether there is nothing to show.
    [[nodiscard]] bool isEmpty() const noexcept { return !displayString() || displayString()->empty(); }

    friend bool operator==(const FormFieldItem&, const FormFieldItem&) = default;
};
extern template struct Codec<FormFieldItem>;

/// A form in a list of activity, with its template and its fields.
struct FormItem {
    using Coded = void;

    /// All of it but its fields.
    ReadOnly<Form, FormItem> form;
    /// Absent when the form's template is not known.
    ReadOnly<std::optional<CustomRecordSetDefinition>, FormItem> definition{};
    /// In the order in which they are shown.
    ReadOnly<std::vector<FormFieldItem>, FormItem> fields{};

    [[nodiscard]] const ObjectID<Form>& id() const noexcept { return form->id(); }
    [[nodiscard]] const ObjectID<Form>& objectID() const noexcept { return form->id(); }
    ///@{
    /// The form's own.
    [[nodiscard]] const ObjectID<Form>& formID() const noexcept { return form->id(); }
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return form->name; }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return form->createDate; }
    ///@}

    friend bool operator==(const FormItem&, const FormItem&) = default;
};
extern template struct Codec<FormItem>;

/// A note in a list of activity.
struct NoteItem {
    using Coded = void;

    /// All of it.
    ReadOnly<Note, NoteItem> note;
    /// Absent when the record has no owner.
    ReadOnly<std::optional<ObjectID<User>>, NoteItem> ownerID{};
    /// The owner's name as the host resolved it.
    ReadOnly<Name, NoteItem> ownerName{};

    [[nodiscard]] const ObjectID<Note>& id() const noexcept { return note->id(); }
    [[nodiscard]] const ObjectID<Note>& objectID() const noexcept { return note->id(); }
    ///@{
    /// The note's own.
    [[nodiscard]] const ObjectID<Note>& noteID() const noexcept { return note->id(); }
    [[nodiscard]] const std::optional<std::string>& title() const noexcept { return note->title; }
    [[nodiscard]] const std::optional<TextBody>& body() const noexcept { return note->body; }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return note->createDate; }
    [[nodiscard]] const std::optional<Category>& category() const noexcept { return note->category; }
    ///@}

    friend bool operator==(const NoteItem&, const NoteItem&) = default;
};
extern template struct Codec<NoteItem>;

/// A task in a list of activity.
struct TaskItem {
    using Coded = void;

    /// All of it.
    ReadOnly<Task, TaskItem> task;
    /// Absent when the record has no owner.
    ReadOnly<std::optional<ObjectID<User>>, TaskItem> ownerID{};
    /// The owner's name as the host resolved it.
    ReadOnly<Name, TaskItem> ownerName{};

    [[nodiscard]] const ObjectID<Task>& id() const noexcept { return task->id(); }
    [[nodiscard]] const ObjectID<Task>& objectID() const noexcept { return task->id(); }
    ///@{
    /// The task's own.
    [[nodiscard]] const ObjectID<Task>& taskID() const noexcept { return task->id(); }
    [[nodiscard]] const std::optional<std::string>& title() const noexcept { return task->title; }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return task->details; }
    [[nodiscard]] const TaskStatus& status() const noexcept { return task->status; }
    [[nodiscard]] const std::optional<Date>& dueDate() const noexcept { return task->dueDate; }
    [[nodiscard]] const std::optional<Date>& completeDate() const noexcept { return task->completeDate; }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return task->createDate; }
    [[nodiscard]] const std::optional<Category>& category() const noexcept { return task->category; }
    [[nodiscard]] const Permissions& permissions() const noexcept { return task->permissions; }
    ///@}
    /// Done or cancelled.
    [[nodiscard]] bool isClosed() const noexcept { return task->isClosed(); }
    /// The date that places it among other activity: when it was done; when it was created, for one that was cancelled;
    /// otherwise when it is due, or when it was created if it is due on no date.
    [[nodiscard]] const std::optional<Date>& activityFeedReferenceDate() const noexcept;

    friend bool operator==(const TaskItem&, const TaskItem&) = default;
};
extern template struct Codec<TaskItem>;

/// An appointment in a list of activity.
struct TimeblockItem {
    using Coded = void;

    /// All of it.
    ReadOnly<Timeblock, TimeblockItem> timeblock;

    [[nodiscard]] const ObjectID<Timeblock>& id() const noexcept { return timeblock->id(); }
    [[nodiscard]] const ObjectID<Timeblock>& objectID() const noexcept { return timeblock->id(); }
    ///@{
    /// The appointment's own.
    [[nodiscard]] const ObjectID<Timeblock>& timeblockID() const noexcept { return timeblock->id(); }
    [[nodiscard]] const std::optional<std::string>& subject() const noexcept { return timeblock->subject; }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return timeblock->details; }
    [[nodiscard]] const std::optional<std::string>& location() const noexcept { return timeblock->location; }
    [[nodiscard]] const std::optional<Date>& startDate() const noexcept { return timeblock->startDate; }
    [[nodiscard]] const std::optional<Category>& category() const noexcept { return timeblock->category; }
    ///@}

    friend bool operator==(const TimeblockItem&, const TimeblockItem&) = default;
};
extern template struct Codec<TimeblockItem>;

/// The identifier of an item of any kind. Ordered by the kind, as declared here, and then by the identifier.
class ActivityItemID : public Choice<ActivityItemID, ObjectID<Email>, ObjectID<FileAttachment>, ObjectID<Form>,
                                     ObjectID<Note>, ObjectID<Task>, ObjectID<Timeblock>, ObjectID<URLReference>> {
  public:
    using Coded = void;

    ///@{
    /// The item of that record.
    [[nodiscard]] static ActivityItemID email(ObjectID<Email> id) { return ActivityItemID(id); }
    [[nodiscard]] static ActivityItemID fileAttachment(ObjectID<FileAttachment> id) { return ActivityItemID(id); }
    [[nodiscard]] static ActivityItemID form(ObjectID<Form> id) { return ActivityItemID(id); }
    [[nodiscard]] static ActivityItemID note(ObjectID<Note> id) { return ActivityItemID(id); }
    [[nodiscard]] static ActivityItemID task(ObjectID<Task> id) { return ActivityItemID(id); }
    [[nodiscard]] static ActivityItemID timeblock(ObjectID<Timeblock> id) { return ActivityItemID(id); }
    [[nodiscard]] static ActivityItemID urlReference(ObjectID<URLReference> id) { return ActivityItemID(id); }
    ///@}

    [[nodiscard]] std::optional<ObjectID<Email>> email() const { return payload<ObjectID<Email>>(); }
    [[nodiscard]] std::optional<ObjectID<FileAttachment>> fileAttachment() const {
        return payload<ObjectID<FileAttachment>>();
    }
    [[nodiscard]] std::optional<ObjectID<Form>> form() const { return payload<ObjectID<Form>>(); }
    [[nodiscard]] std::optional<ObjectID<Note>> note() const { return payload<ObjectID<Note>>(); }
    [[nodiscard]] std::optional<ObjectID<Task>> task() const { return payload<ObjectID<Task>>(); }
    [[nodiscard]] std::optional<ObjectID<Timeblock>> timeblock() const { return payload<ObjectID<Timeblock>>(); }
    [[nodiscard]] std::optional<ObjectID<URLReference>> urlReference() const {
        return payload<ObjectID<URLReference>>();
    }

    friend bool operator==(const ActivityItemID&, const ActivityItemID&) = default;
    /// By the kind, as declared here, and then by the identifier.
    friend std::strong_ordering operator<=>(const ActivityItemID& a, const ActivityItemID& b) noexcept;

  private:
    friend CodingAccess;
    explicit ActivityItemID(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<ActivityItemID>;

/// An item of activity of any kind. The readers' pointers are null for the other kinds.
class ActivityItem
    : public Choice<ActivityItem, EmailItem, FileItem, FormItem, NoteItem, TaskItem, TimeblockItem, URLReferenceItem> {
  public:
    using Coded = void;
    /// What `id` gives.
    using ID = ActivityItemID;

    ///@{
    /// That item.
    [[nodiscard]] static ActivityItem email(EmailItem item) { return ActivityItem(std::move(item)); }
    [[nodiscard]] static ActivityItem fileAttachment(FileItem item) { return ActivityItem(std::move(item)); }
    [[nodiscard]] static ActivityItem form(FormItem item) { return ActivityItem(std::move(item)); }
    [[nodiscard]] static ActivityItem note(NoteItem item) { return ActivityItem(std::move(item)); }
    [[nodiscard]] static ActivityItem task(TaskItem item) { return ActivityItem(std::move(item)); }
    [[nodiscard]] static ActivityItem timeblock(TimeblockItem item) { return ActivityItem(std::move(item)); }
    [[nodiscard]] static ActivityItem urlReference(URLReferenceItem item) { return ActivityItem(std::move(item)); }
    ///@}

    [[nodiscard]] const EmailItem* email() const noexcept { return payloadIf<EmailItem>(); }
    [[nodiscard]] const FileItem* fileAttachment() const noexcept { return payloadIf<FileItem>(); }
    [[nodiscard]] const FormItem* form() const noexcept { return payloadIf<FormItem>(); }
    [[nodiscard]] const NoteItem* note() const noexcept { return payloadIf<NoteItem>(); }
    [[nodiscard]] const TaskItem* task() const noexcept { return payloadIf<TaskItem>(); }
    [[nodiscard]] const TimeblockItem* timeblock() const noexcept { return payloadIf<TimeblockItem>(); }
    [[nodiscard]] const URLReferenceItem* urlReference() const noexcept { return payloadIf<URLReferenceItem>(); }

    /// That of the record of the item.
    [[nodiscard]] ID id() const;
    /// The date that places it among other activity: an email's message date, the start of an appointment, the
    /// reference date of a task, and when the others were created. Any of them may be absent.
    [[nodiscard]] const std::optional<Date>& date() const noexcept;

    friend bool operator==(const ActivityItem&, const ActivityItem&) = default;

  private:
    friend CodingAccess;
    explicit ActivityItem(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<ActivityItem>;

/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const EmailItem& item) noexcept {
    return item.messageDate();
}
/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const FileItem& item) noexcept {
    return item.createDate();
}
/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const FormItem& item) noexcept {
    return item.createDate();
}
/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const NoteItem& item) noexcept {
    return item.createDate();
}
/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const TaskItem& item) noexcept {
    return item.activityFeedReferenceDate();
}
/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const TimeblockItem& item) noexcept {
    return item.startDate();
}
/// The date that places the item among other activity, as ActivityItem::date. Valid as long as the item.
[[nodiscard]] inline const std::optional<Date>& activityDate(const URLReferenceItem& item) noexcept {
    return item.createDate();
}

}  // namespace kestrel
