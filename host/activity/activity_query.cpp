#include <host/activity/activity_query.h>
#include <host/terminal/day_text.h>

#include <algorithm>
#include <compare>
#include <iterator>
#include <limits>
#include <set>
#include <type_traits>
#include <utility>

namespace kestrel::host {
namespace {

/// The records that have activity.
template <class... Records>
struct Sources {
    /// Calls `visit.operator()<Record>()` for every type.
    template <class Visitor>
    static void forEach(Visitor&& visit) {
        (visit.template operator()<Records>(), ...);
    }
};
using ActivitySources = Sources<Contact, Company, Opportunity, Project, Task, Timeblock, Note, Email, Form>;

template <class Record>
ActivitySourceID sourceOf(const ObjectID<Record>& id) {
    if constexpr (std::is_same_v<Record, Contact>) return ActivitySourceID::contact(id);
    if constexpr (std::is_same_v<Record, Company>) return ActivitySourceID::company(id);
    if constexpr (std::is_same_v<Record, Opportunity>) return ActivitySourceID::opportunity(id);
    if constexpr (std::is_same_v<Record, Project>) return ActivitySourceID::project(id);
    if constexpr (std::is_same_v<Record, Task>) return ActivitySourceID::task(id);
    if constexpr (std::is_same_v<Record, Timeblock>) return ActivitySourceID::appointment(id);
    if constexpr (std::is_same_v<Record, Note>) return ActivitySourceID::note(id);
    if constexpr (std::is_same_v<Record, Email>) return ActivitySourceID::email(id);
    if constexpr (std::is_same_v<Record, Form>) return ActivitySourceID::form(id);
}

/// Keeps the newest of the records that are offered, however many there are. Each offer costs the logarithm of the
/// limit.
template <class Record>
class Newest {
  public:
    /// Nothing that is dated at or after `end` is kept.
    Newest(std::size_t limit, Date end) : limit_(limit), end_(end) {}

    void offer(const std::optional<Date>& date, const Record& record) {
        if (date && *date >= end_) return;
        const Key key{.date = date, .id = record.objectID()};
        const bool isFull = kept_.size() == limit_;
        if (isFull && !isNewer(key, kept_.front().key)) return;
        if (isFull) {
            std::ranges::pop_heap(kept_, isNewer, &Entry::key);
            kept_.pop_back();
        }
        kept_.push_back({.key = key, .record = record});
        std::ranges::push_heap(kept_, isNewer, &Entry::key);
    }

    /// The kept ones, the newest first, each made an item.
    template <class MakeItem>
    auto take(MakeItem&& makeItem) {
        std::ranges::sort_heap(kept_, isNewer, &Entry::key);
        std::vector<std::invoke_result_t<MakeItem, Record&&>> items;
        items.reserve(kept_.size());
        for (Entry& entry : kept_)
            items.push_back(makeItem(std::move(entry.record)));
        kept_.clear();
        return items;
    }

  private:
    struct Key {
        std::optional<Date> date;
        ObjectID<Record> id;
    };
    struct Entry {
        Key key;
        Record record;
    };
    static bool isNewer(const Key& a, const Key& b) {
        if (a.date.has_value() != b.date.has_value()) return a.date.has_value();
        if (a.date && *a.date != *b.date) return *a.date > *b.date;
        return a.id > b.id;
    }

    std::size_t limit_;
    Date end_;
    /// A heap with the oldest in front.
    std::vector<Entry> kept_;
};

/// The user as a name, by its parts where they are known.
Name nameOf(const User& user) {
    if (user.firstName || user.lastName) return {.first = user.firstName, .last = user.lastName};
    return {.first = shownName(user)};
}

class Summariser {
  public:
    Summariser(ReadableRecords& records, const ActivitySourceID& source, const CalendarMoment& at, std::size_t limit)
        : records_(&records),
          calendar_(at.calendar),
          now_(at.now),
          end_(at.calendar.startOf(at.calendar.dayOf(at.now) + std::chrono::days(1))),
          limit_(limit == 0 ? std::numeric_limits<std::size_t>::max() : limit),
          summary_(source, at.now, 0) {
        subjects_.push_back(requiredSource(source));
        if (const auto company = source.company()) addPeople(*company);
    }

    ActivitySummary summary(std::size_t limit) {
        addEmails();
        addFiles();
        addForms();
        addNotes();
        addTasks();
        addTimeblocks();
        summary_.limit = static_cast<std::int64_t>(limit == 0 ? itemCount() : limit);
        return std::move(summary_);
    }

  private:
    /// The source's identifier; a Failure when the user may not see the record.
    AnyObjectID requiredSource(const ActivitySourceID& source) {
        return source.match([&](const auto& id) -> AnyObjectID {
            (void)records_->required(id);
            return id;
        });
    }
    void addPeople(const ObjectID<Company>& company) {
        std::set<ObjectID<Contact>> people;
        for (const auto& roleID : records_->links().linked<AnyRole>(LinkKind::destination, company)) {
            const auto contact = records_->links().target<Contact>(roleID, LinkKind::source);
            if (contact && records_->find(roleID) && records_->find(*contact)) people.insert(*contact);
        }
        subjects_.insert(subjects_.end(), people.begin(), people.end());
    }

    /// Calls `visit` with every item of a type, and tells how many there are.
    template <class Record, class Visitor>
    std::int64_t forEachItem(Visitor&& visit) {
        std::vector<ObjectID<Record>> ids;
        for (const AnyObjectID& subject : subjects_)
            std::ranges::copy(records_->links().linked<Record>(LinkKind::subject, subject), std::back_inserter(ids));
        std::ranges::sort(ids);
        const auto repeated = std::ranges::unique(ids);
        ids.erase(repeated.begin(), repeated.end());
        std::int64_t count = 0;
        for (const auto& id : ids) {
            const auto record = records_->find(id);
            if (!record) continue;
            ++count;
            visit(*record);
        }
        return count;
    }
    /// The newest items of a type by a date, made items of a summary, and how many there are in all.
    template <class Record, class DateOf, class MakeItem>
    auto newest(DateOf&& dateOf, std::int64_t& total, MakeItem&& makeItem) {
        Newest<Record> newest(limit_, end_);
        total = forEachItem<Record>([&](const Record& record) { newest.offer(dateOf(record), record); });
        return newest.take(makeItem);
    }

    void addEmails() {
        summary_.email.recent =
            newest<Email>([](const Email& email) { return email.messageDate; }, summary_.email.total,
                          [](Email&& email) { return EmailItem{std::move(email)}; });
    }
    void addFiles() {
        FilesSummary& files = summary_.files;
        files.recentAttachments =
            newest<FileAttachment>([](const FileAttachment& file) { return file.createDate; }, files.totalAttachments,
                                   [](FileAttachment&& file) { return FileItem{std::move(file)}; });
        files.recentURLReferences =
            newest<URLReference>([](const URLReference& link) { return link.createDate; }, files.totalURLReferences,
                                 [](URLReference&& link) { return URLReferenceItem{std::move(link)}; });
    }
    void addForms() {
        summary_.forms.recent =
            newest<Form>([](const Form& form) { return form.createDate.get(); }, summary_.forms.total,
                         [this](Form&& form) { return formItem(std::move(form)); });
    }
    void addNotes() {
        summary_.notes.recent =
            newest<Note>([](const Note& note) { return note.createDate.get(); }, summary_.notes.total,
                         [this](Note&& note) {
                             const auto owner = ownerOf(note.objectID());
                             Name name = ownerName(owner);
                             return NoteItem{std::move(note), owner, std::move(name)};
                         });
    }
    void addTimeblocks() {
        summary_.timeblocks.recent = newest<Timeblock>(
            [this](const Timeblock& appointment) { return shownStart(appointment, calendar_); },
            summary_.timeblocks.total, [](Timeblock&& appointment) { return TimeblockItem{std::move(appointment)}; });
    }
    void addTasks() {
        TasksSummary& tasks = summary_.tasks;
        Newest<Task> completed(limit_, end_);
        Newest<Task> overdue(limit_, std::min(now_, end_));
        Newest<Task> withoutDueDates(limit_, end_);
        tasks.allTasksTotal = forEachItem<Task>([&](const Task& task) {
            const bool isMine = ownerOf(task.objectID()) == records_->user().objectID();
            tasks.myTasksTotal += isMine ? 1 : 0;
            if (task.status == TaskStatus::done) completed.offer(task.completeDate, task);
            if (task.isClosed()) return;
            ++tasks.incompleteTasksTotal;
            tasks.myIncompleteTasksTotal += isMine ? 1 : 0;
            tasks.somedayTasksTotal += task.isSomeday ? 1 : 0;
            if (task.dueDate) {
                overdue.offer(task.dueDate, task);
            } else {
                withoutDueDates.offer(task.createDate, task);
            }
        });
        const auto item = [this](Task&& task) {
            const auto owner = ownerOf(task.objectID());
            Name name = ownerName(owner);
            return TaskItem{std::move(task), owner, std::move(name)};
        };
        tasks.recentlyCompleted = completed.take(item);
        tasks.recentlyOverdue = overdue.take(item);
        tasks.recentlyCreatedWithoutDueDates = withoutDueDates.take(item);
    }

    std::optional<ObjectID<User>> ownerOf(const AnyObjectID& id) {
        return records_->links().target<User>(id, LinkKind::owner);
    }
    Name ownerName(const std::optional<ObjectID<User>>& owner) {
        const auto user = owner ? records_->findAny(*owner) : std::nullopt;
        return user ? nameOf(*user) : Name();
    }

    FormItem formItem(Form&& form) {
        std::optional<CustomRecordSetDefinition> definition;
        if (const auto id = records_->links().target<CustomRecordSetDefinition>(form.objectID(), LinkKind::definition))
            definition = records_->find(*id);
        std::vector<CustomRecord> values;
        SQLite::Statement statement(records_->database(),
                                    R"(SELECT id, record FROM "CustomRecord" WHERE customRecordSetID = ? ORDER BY id)");
        statement.bind(1, form.objectID().value().value());
        while (statement.executeStep()) {
            auto value = decodeStored<CustomRecord>(records_->database(), statement.getColumn(0).getInt64(),
                                                    textOf(statement.getColumn(1)));
            if (records_->isReadable(value)) values.push_back(std::move(value));
        }
        std::ranges::sort(values, {},
                          [](const CustomRecord& value) { return std::pair(value.order, value.objectID()); });
        std::vector<FormFieldItem> fields;
        for (CustomRecord& value : values) {
            std::optional<CustomRecordDefinition> field;
            if (value.customRecordDefinitionID)
                field = records_->find(ObjectID<CustomRecordDefinition>(*value.customRecordDefinitionID));
            fields.push_back({std::move(value), std::move(field)});
        }
        return {std::move(form), std::move(definition), std::move(fields)};
    }

    [[nodiscard]] std::size_t itemCount() const {
        return summary_.email.recent.size() + summary_.files.recentAttachments.size() +
               summary_.files.recentURLReferences.size() + summary_.forms.recent.size() + summary_.notes.recent.size() +
               summary_.tasks.recentlyCompleted.size() + summary_.tasks.recentlyOverdue.size() +
               summary_.tasks.recentlyCreatedWithoutDueDates.size() + summary_.timeblocks.recent.size();
    }

    ReadableRecords* records_;
    Calendar calendar_;
    Date now_;
    /// The first moment after the day of `now_`.
    Date end_;
    std::size_t limit_;
    ActivitySummary summary_;
    /// The records whose activity counts.
    std::vector<AnyObjectID> subjects_;
};

}  // namespace

std::optional<ActivitySourceID> activitySourceOf(const AnyObjectID& id) {
    std::optional<ActivitySourceID> source;
    ActivitySources::forEach([&]<class Record>() {
        if (const auto typed = id.as<Record>()) source = sourceOf(*typed);
    });
    return source;
}

std::vector<std::string> activitySourceEntities() {
    std::vector<std::string> entities;
    ActivitySources::forEach([&]<class Record>() { entities.emplace_back(entityNameOf<Record>); });
    return entities;
}

ActivitySummary activityOf(ReadableRecords& records, const ActivitySourceID& source, const CalendarMoment& at,
                           std::size_t limit) {
    return Summariser(records, source, at, limit).summary(limit);
}

}  // namespace kestrel::host
