#include <fmt/format.h>
#include <host/people/calendar_importer.h>
#include <host/people/file_text.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace kestrel::host {
namespace {

/// Whole seconds since 1970: an occurrence of a series as the table of sources calls it.
std::string secondsText(Date date) {
    return fmt::format("{}", std::llround(date.since1970()));
}

/// The record types of a kind of entry that repeats.
struct EventTypes {
    using Record = Timeblock;
    using Exception = TimeblockException;
    static constexpr const char* exceptionsOf =
        "SELECT id FROM \"TimeblockException\" WHERE timeblockID = ? ORDER BY id";
    static Exception exception(std::int64_t key, Date date, std::int64_t series) {
        return {.timeblockExceptionID = key, .dateTime = date, .timeblockID = series};
    }
};
struct ToDoTypes {
    using Record = Task;
    using Exception = TaskException;
    static constexpr const char* exceptionsOf = "SELECT id FROM \"TaskException\" WHERE taskID = ? ORDER BY id";
    static Exception exception(std::int64_t key, Date date, std::int64_t series) {
        return {.taskExceptionID = key, .dateTime = date, .taskID = series};
    }
};

TimeblockStatus eventStatusOf(std::string_view word) {
    if (word == "TENTATIVE") return TimeblockStatus::tentative;
    if (word == "CONFIRMED") return TimeblockStatus::confirmed;
    if (word == "CANCELLED") return TimeblockStatus::cancelled;
    return TimeblockStatus::other;
}

TaskStatus toDoStatusOf(const CalendarEntry& entry) {
    constexpr std::int64_t finished = 100;
    if (entry.status == "CANCELLED") return TaskStatus::cancelled;
    if (entry.status == "COMPLETED") return TaskStatus::done;
    if (entry.status == "IN-PROCESS") return TaskStatus::inProgress;
    if (entry.status == "NEEDS-ACTION") return TaskStatus::open;
    if (entry.completed || entry.percentComplete == finished) return TaskStatus::done;
    return entry.percentComplete > 0 ? TaskStatus::inProgress : TaskStatus::open;
}

std::string locationOf(const CalendarEntry& entry) {
    if (!entry.position) return entry.location;
    const std::string position = fmt::format("{}, {}", entry.position->first, entry.position->second);
    return entry.location.empty() ? position : fmt::format("{} ({})", entry.location, position);
}

/// Sets what the records of tasks and appointments have in common.
template <class Record>
void setCommon(Record& record, const CalendarEntry& entry) {
    record.location = present(locationOf(entry));
    record.startDate = entry.start;
    record.urlString = present(entry.url);
    record.repeatOriginalDate = entry.recurrenceID;
    const Repetition rule = entry.repetition.value_or(Repetition{});
    record.repeatByDays = present(rule.byDays);
    record.repeatByMonthDays = present(rule.byMonthDays);
    record.repeatByMonths = present(rule.byMonths);
    record.repeatByNthDay = rule.nthDay;
    record.repeatCount = rule.count;
    record.repeatEndDate = rule.until;
    record.repeatFrequency = rawValue(rule.frequency);
    record.repeatInterval = rule.interval;
    if (entry.modified) record.modifyDate = entry.modified;
}

void setFrom(Timeblock& record, const CalendarEntry& entry) {
    setCommon(record, entry);
    record.subject = present(entry.summary);
    record.details = present(entry.description);
    record.endDate = entry.end;
    record.isAllDay = entry.isAllDay;
    record.kind = !entry.attendees.empty() ? TimeblockKind::meeting
                  : entry.isAllDay         ? TimeblockKind::event
                                           : TimeblockKind::appointment;
    record.showAsBusy = entry.isBusy;
    record.status = eventStatusOf(entry.status);
    record.timeZoneName = present(entry.timeZoneName);
}

void setFrom(Task& record, const CalendarEntry& entry) {
    setCommon(record, entry);
    record.title = present(entry.summary);
    record.dueDate = entry.end;
    record.completeDate = entry.completed;
    record.status = toDoStatusOf(entry);
    record.priority = entry.priority;
    std::string details = entry.description;
    if (entry.percentComplete > 0 && !record.isClosed())
        details += fmt::format("{}{} % complete", details.empty() ? "" : "\n\n", entry.percentComplete);
    record.details = present(details);
}

MeetingInviteResponseStatus responseOf(std::string_view word) {
    if (word == "ACCEPTED") return MeetingInviteResponseStatus::accepted;
    if (word == "DECLINED") return MeetingInviteResponseStatus::declined;
    if (word == "TENTATIVE") return MeetingInviteResponseStatus::maybe;
    return MeetingInviteResponseStatus::none;
}

class CalendarImporter {
  public:
    CalendarImporter(const std::vector<CalendarEntry>& entries, ImportStore& store)
        : entries_(entries),
          store_(store),
          timeblocks_(store.database()),
          tasks_(store.database()),
          notes_(store.database()),
          invites_(store.database()),
          timeblockExceptions_(store.database()),
          taskExceptions_(store.database()),
          timeblockExceptionsOf_(store.database(), EventTypes::exceptionsOf),
          taskExceptionsOf_(store.database(), ToDoTypes::exceptionsOf) {}

    void run() {
        choose(EntryKind::event, "event");
        choose(EntryKind::toDo, "to-do");
        choose(EntryKind::journal, "journal entry");
        for (const auto& [index, source] : chosen_) {
            const CalendarEntry& entry = entries_[index];
            switch (entry.kind) {
                case EntryKind::event: mergeEvent(entry, source); break;
                case EntryKind::toDo: mergeToDo(entry, source); break;
                default: mergeJournal(entry, source); break;
            }
        }
        for (const std::string& series : eventSeries_)
            mergeExceptions<EventTypes>(series, timeblockExceptions_, timeblockExceptionsOf_, EntryKind::event);
        for (const std::string& series : toDoSeries_)
            mergeExceptions<ToDoTypes>(series, taskExceptions_, taskExceptionsOf_, EntryKind::toDo);
    }

  private:
    /// Finds out what the entries of a kind are called, and which of them count.
    void choose(EntryKind kind, std::string_view noun) {
        std::vector<std::size_t> places;
        std::vector<EntryIdentity> identities;
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const CalendarEntry& entry = entries_[i];
            if (entry.kind != kind) continue;
            places.push_back(i);
            const std::string occurrence = entry.recurrenceID ? occurrenceMark + secondsText(*entry.recurrenceID) : "";
            const auto when = entry.start ? entry.start : entry.end;
            identities.push_back(
                {.place = entry.place,
                 .uid = entry.uid.empty() ? "" : entry.uid + occurrence,
                 .substitute = foldedCase(entry.summary) + "\n" + (when ? secondsText(*when) : "") + occurrence,
                 .digest = entry.digest});
        }
        const auto isNewer = [&](std::size_t later, std::size_t earlier) {
            const CalendarEntry& a = entries_[places[earlier]];
            const CalendarEntry& b = entries_[places[later]];
            return std::tie(b.sequence, b.stamped) >= std::tie(a.sequence, a.stamped);
        };
        const auto choices = chosenEntries(identities, isNewer, noun, store_.problems());
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (choices[i].isSuperseded) {
                ++store_.counts(kind).superseded;
            } else {
                chosen_.emplace_back(places[i], choices[i].source);
            }
        }
    }

    static std::vector<std::string> addressesOf(const CalendarEntry& entry) {
        std::vector<std::string> addresses{entry.organizer};
        for (const CalendarEntry::Attendee& attendee : entry.attendees)
            addresses.push_back(attendee.address);
        return addresses;
    }

    /// Remembers whose exceptions are to be worked out: those of the series that an entry is, or belongs to.
    void noteSeries(const CalendarEntry& entry, const std::string& source, std::set<std::string>& series) {
        const bool isOccurrence = entry.recurrenceID.has_value();
        const std::string name = isOccurrence ? source.substr(0, source.rfind(occurrenceMark)) : source;
        series.insert(name);
        if (!isOccurrence) exceptionsOfSeries_[{entry.kind, name}] = entry.exceptions;
    }

    void mergeEvent(const CalendarEntry& entry, const std::string& source) {
        const std::int64_t key = store_.keyOf(source, timeblocks_);
        const std::optional<Timeblock> before = timeblocks_.find(key);
        Timeblock record = before ? *before : Timeblock{.timeblockID = key, .createDate = entry.created};
        setFrom(record, entry);
        store_.addKeywords(record.keywords, entry.categories);
        const auto written = timeblocks_.write(record, before);
        const bool hasNewInvites = mergeInvites(key, entry, !before.has_value());
        using Written = RecordStore<Timeblock>::Written;
        store_.count(EntryKind::event, written == Written::unchanged && hasNewInvites ? Written::changed : written);
        store_.addresses().set(record.objectID(), addressesOf(entry));
        noteSeries(entry, source, eventSeries_);
    }

    void mergeToDo(const CalendarEntry& entry, const std::string& source) {
        const std::int64_t key = store_.keyOf(source, tasks_);
        const std::optional<Task> before = tasks_.find(key);
        Task record = before ? *before : Task{.taskID = key, .createDate = entry.created};
        setFrom(record, entry);
        store_.addKeywords(record.keywords, entry.categories);
        store_.count(EntryKind::toDo, tasks_.write(record, before));
        store_.addresses().set(record.objectID(), addressesOf(entry));
        noteSeries(entry, source, toDoSeries_);
    }

    void mergeJournal(const CalendarEntry& entry, const std::string& source) {
        const std::int64_t key = store_.keyOf(source, notes_);
        const std::optional<Note> before = notes_.find(key);
        Note record = before ? *before
                             : Note{.noteID = key,
                                    .createDate = entry.created ? entry.created
                                                  : entry.start ? entry.start
                                                                : entry.stamped,
                                    .modifyDate = entry.modified};
        record.title = present(entry.summary);
        if (!entry.description.empty()) record.body = TextBody::plainText(entry.description);
        store_.addKeywords(record.keywords, entry.categories);
        store_.count(EntryKind::journal, notes_.write(record, before));
        store_.addresses().set(record.objectID(), addressesOf(entry));
    }

    /// Makes the attendees of an event its invitations. Whether one was added, changed or removed.
    bool mergeInvites(std::int64_t timeblock, const CalendarEntry& entry, bool isNew) {
        std::vector<MeetingInvite> before;
        const auto linked =
            isNew ? std::vector<ObjectID<MeetingInvite>>()
                  : store_.links().linked<MeetingInvite>(LinkKind::timeblock, ObjectID<Timeblock>(timeblock));
        for (const ObjectID<MeetingInvite>& id : linked) {
            if (auto invite = invites_.find(*id.value())) before.push_back(*std::move(invite));
        }
        bool isChanged = false;
        for (const CalendarEntry::Attendee& attendee : entry.attendees) {
            const auto found = std::ranges::find_if(before, [&](const MeetingInvite& invite) {
                return isSameWord(invite.emailAddress.value_or(""), attendee.address) &&
                       (!attendee.address.empty() || invite.commonName == attendee.name);
            });
            std::optional<MeetingInvite> known;
            if (found != before.end()) {
                known = *found;
                before.erase(found);
            }
            MeetingInvite invite = known ? *known : MeetingInvite{.meetingInviteID = invites_.newKey()};
            invite.emailAddress = present(attendee.address);
            invite.commonName = present(attendee.name);
            const bool isResource = attendee.type == "RESOURCE" || attendee.type == "ROOM";
            if (isResource) {
                invite.inviteType = MeetingInviteType::resource;
            } else if (!known) {
                invite.inviteType = MeetingInviteType::external;
            }
            const bool isOptional = attendee.role == "OPT-PARTICIPANT" || attendee.role == "NON-PARTICIPANT";
            invite.participationRole =
                isOptional ? MeetingInviteParticipationRole::optional : MeetingInviteParticipationRole::required;
            invite.responseStatus = responseOf(attendee.participation);
            isChanged |= invites_.write(invite, known) != RecordStore<MeetingInvite>::Written::unchanged;
            if (!known) store_.links().add(invite.objectID(), LinkKind::timeblock, ObjectID<Timeblock>(timeblock));
            store_.addresses().set(invite.objectID(), {attendee.address});
        }
        for (const MeetingInvite& gone : before) {
            isChanged = true;
            store_.addresses().set(gone.objectID(), {});
            store_.links().remove(gone.objectID(), LinkKind::timeblock);
            store_.links().remove(gone.objectID(), LinkKind::contact);
            invites_.remove(gone.objectID());
        }
        return isChanged;
    }

    /// Makes the exceptions of a series those that it names itself, and the occurrences that are records of their own.
    template <class Types>
    void mergeExceptions(const std::string& series, RecordStore<typename Types::Exception>& exceptions,
                         SQLite::Statement& exceptionsOf, EntryKind kind) {
        using Record = typename Types::Record;
        const auto key = store_.sources().find(entityNameOf<Record>, series);
        if (!key) return;
        std::map<Date, ObjectID<typename Types::Exception>> before;
        exceptionsOf.reset();
        exceptionsOf.bind(1, *key);
        while (exceptionsOf.executeStep()) {
            const auto exception = exceptions.find(exceptionsOf.getColumn(0).getInt64());
            if (exception && exception->dateTime) before.emplace(*exception->dateTime, exception->objectID());
        }
        std::set<Date> wanted;
        if (const auto named = exceptionsOfSeries_.find({kind, series}); named != exceptionsOfSeries_.end()) {
            wanted.insert(named->second.begin(), named->second.end());
        } else {
            for (const auto& [date, id] : before)
                wanted.insert(date);
        }
        for (const auto& [seconds, id] : store_.sources().startingWith(entityNameOf<Record>, series + occurrenceMark)) {
            std::int64_t since1970 = 0;
            std::from_chars(seconds.data(), seconds.data() + seconds.size(), since1970);
            wanted.insert(Date::since1970(static_cast<double>(since1970)));
        }
        for (const Date& date : wanted) {
            if (before.erase(date) == 0)
                exceptions.write(Types::exception(exceptions.newKey(), date, *key), std::nullopt);
        }
        for (const auto& [date, id] : before)
            exceptions.remove(id);
    }

    /// Stands between an identifier and the occurrence.
    static constexpr const char* occurrenceMark = "\n@";

    const std::vector<CalendarEntry>& entries_;
    ImportStore& store_;
    RecordStore<Timeblock> timeblocks_;
    RecordStore<Task> tasks_;
    RecordStore<Note> notes_;
    RecordStore<MeetingInvite> invites_;
    RecordStore<TimeblockException> timeblockExceptions_;
    RecordStore<TaskException> taskExceptions_;
    SQLite::Statement timeblockExceptionsOf_;
    SQLite::Statement taskExceptionsOf_;
    /// The places of the entries that count, and what they are called.
    std::vector<std::pair<std::size_t, std::string>> chosen_;
    /// What series are called whose exceptions may have changed.
    std::set<std::string> eventSeries_;
    std::set<std::string> toDoSeries_;
    std::map<std::pair<EntryKind, std::string>, std::vector<Date>> exceptionsOfSeries_;
};

}  // namespace

void importCalendarEntries(const std::vector<CalendarEntry>& entries, ImportStore& store) {
    CalendarImporter(entries, store).run();
}

}  // namespace kestrel::host
