#include <fmt/format.h>
#include <host/people/calendar_importer.h>
#include <host/people/file_text.h>
#include <host/terminal/day_text.h>
#include <host/terminal/text.h>
#include <kestrel/foundation/calendar.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

namespace kestrel::host {
namespace {

/// Stands between the name of a series and the occurrence, where sources are named.
constexpr const char* occurrenceMark = "\n@";

/// A day as the files write it: "20170314".
std::string writtenDay(std::chrono::local_days day) {
    const std::chrono::year_month_day date(day);
    return fmt::format("{:04}{:02}{:02}", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()));
}
/// A time as the files write it, by the clocks of its zone: "20170314T093000". Dates beyond the calendars, and those in
/// a zone that only the file knows, are written as seconds since 1970.
std::string writtenTime(Date date, const std::optional<Calendar>& calendar) {
    if (!calendar || !isReachable(date)) return fmt::format("{}", std::llround(date.since1970()));
    const auto local = localTime(date, *calendar);
    const auto day = std::chrono::floor<std::chrono::days>(local);
    const std::chrono::hh_mm_ss time(local - day);
    return fmt::format("{}T{:02}{:02}{:02}", writtenDay(day), time.hours().count(), time.minutes().count(),
                       time.seconds().count());
}
std::string written(Date date, bool isDay, const std::optional<Calendar>& calendar) {
    return isDay && calendar && isReachable(date) ? writtenDay(calendar->dayOf(date)) : writtenTime(date, calendar);
}

std::optional<Calendar> zoneOf(const CalendarEntry& entry) {
    return entry.timeZoneName.empty() ? std::nullopt : Calendar::inZone(entry.timeZoneName);
}

/// When this version of an entry is from.
std::optional<Date> versionOf(const CalendarEntry& entry) {
    return entry.modified ? entry.modified : entry.stamped;
}

/// The record types of a kind of entry that repeats.
struct EventTypes {
    using Record = Timeblock;
    using Exception = TimeblockException;
    static constexpr EntryKind kind = EntryKind::event;
    static constexpr const char* exceptionsOf =
        "SELECT id FROM \"TimeblockException\" WHERE timeblockID = ? ORDER BY id";
    static Exception exception(std::int64_t key, Date date, std::int64_t series) {
        return {.timeblockExceptionID = key, .dateTime = date, .timeblockID = series};
    }
};
struct ToDoTypes {
    using Record = Task;
    using Exception = TaskException;
    static constexpr EntryKind kind = EntryKind::toDo;
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
        findSeries();
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
            mergeExceptions<EventTypes>(series, timeblocks_, timeblockExceptions_, timeblockExceptionsOf_);
        for (const std::string& series : toDoSeries_)
            mergeExceptions<ToDoTypes>(series, tasks_, taskExceptions_, taskExceptionsOf_);
    }

  private:
    /// Finds the entries that others are occurrences of, the newest of each.
    void findSeries() {
        for (const CalendarEntry& entry : entries_) {
            if (entry.recurrenceID || entry.uid.empty()) continue;
            const CalendarEntry*& series = series_[{entry.kind, entry.uid}];
            const bool isNewer = series == nullptr ||
                                 std::tie(entry.sequence, entry.stamped) >= std::tie(series->sequence, series->stamped);
            if (isNewer) series = &entry;
        }
    }
    /// Null when the series of an occurrence is not among the entries.
    [[nodiscard]] const CalendarEntry* seriesOf(const CalendarEntry& entry) const {
        const auto found = series_.find({entry.kind, entry.uid});
        return found != series_.end() ? found->second : nullptr;
    }
    /// The day or the time of the occurrence that an entry stands for, as its series writes it.
    [[nodiscard]] std::string occurrenceText(const CalendarEntry& entry) const {
        const CalendarEntry* series = seriesOf(entry);
        if (series != nullptr && !series->isAllDay) return writtenTime(*entry.recurrenceID, zoneOf(*series));
        const auto own = zoneOf(entry);
        const bool isDay = series != nullptr || (entry.isAllDay && own && isReachable(*entry.recurrenceID) &&
                                                 own->startOfDay(*entry.recurrenceID) == *entry.recurrenceID);
        return written(*entry.recurrenceID, isDay, own);
    }
    /// The occurrence that an entry stands for. One of a series of whole days starts with its day.
    [[nodiscard]] std::optional<Date> occurrenceOf(const CalendarEntry& entry) const {
        const CalendarEntry* series = entry.recurrenceID ? seriesOf(entry) : nullptr;
        if (series == nullptr || !series->isAllDay || entry.isAllDay) return entry.recurrenceID;
        const auto own = zoneOf(entry);
        const auto zone = zoneOf(*series);
        if (!own || !zone || !isReachable(*entry.recurrenceID)) return entry.recurrenceID;
        return zone->startOf(own->dayOf(*entry.recurrenceID));
    }

    /// The key of the record that an entry is to be merged into. An occurrence that is not known as it is written now
    /// is the one at the same moment that the import does not name otherwise.
    template <class Record>
    std::int64_t keyOf(const CalendarEntry& entry, const std::string& source, RecordStore<Record>& records) {
        const auto occurrence = occurrenceOf(entry);
        if (occurrence && !store_.sources().find(entityNameOf<Record>, source)) {
            const std::string series = seriesName(source);
            const auto [known, isNew] = occurrences_.try_emplace({entry.kind, series});
            if (isNew) {
                const std::string start = series + occurrenceMark;
                for (const auto& [text, id] : store_.sources().startingWith(entityNameOf<Record>, start)) {
                    if (chosenSources_.contains({entry.kind, start + text})) continue;
                    const auto record = records.find(id);
                    if (record && record->repeatOriginalDate) known->second.emplace(*record->repeatOriginalDate, id);
                }
            }
            const auto same = known->second.find(*occurrence);
            if (same != known->second.end()) store_.sources().add(entityNameOf<Record>, source, same->second);
        }
        return store_.keyOf(source, records);
    }
    static std::string seriesName(const std::string& source) { return source.substr(0, source.rfind(occurrenceMark)); }

    /// Whether what is stored is newer than an entry, which then does not count.
    bool isOutdated(const CalendarEntry& entry, const std::optional<Date>& storedVersion) {
        const auto version = versionOf(entry);
        if (!version || !storedVersion || *version >= *storedVersion) return false;
        store_.problems().warn(entry.place, "is older than what is stored; left out");
        ++store_.counts(entry.kind).superseded;
        return true;
    }
    /// Dates a record that says nothing of it by the version of the entry, unless the two say the same.
    template <class Record>
    static void setVersion(Record& record, const std::optional<Record>& before, const CalendarEntry& entry) {
        if (!entry.modified && entry.stamped && (!before || record != *before)) record.modifyDate = entry.stamped;
    }

    /// Counts an entry, and keeps in mind which series may still turn out to have changed.
    template <class Written>
    void count(const CalendarEntry& entry, const std::string& source, Written written, bool hasOtherChanges) {
        if (written == Written::unchanged && hasOtherChanges) written = Written::changed;
        store_.count(entry.kind, written);
        if (written == Written::unchanged && !entry.recurrenceID) unchangedSeries_.emplace(entry.kind, source);
    }

    /// Finds out what the entries of a kind are called, and which of them count.
    void choose(EntryKind kind, std::string_view noun) {
        std::vector<std::size_t> places;
        std::vector<EntryIdentity> identities;
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const CalendarEntry& entry = entries_[i];
            if (entry.kind != kind) continue;
            places.push_back(i);
            const std::string occurrence = entry.recurrenceID ? occurrenceMark + occurrenceText(entry) : "";
            const auto start = entry.start ? entry.start : entry.end;
            const std::string when = start ? written(*start, entry.isAllDay, zoneOf(entry)) : "";
            identities.push_back({.place = entry.place,
                                  .uid = entry.uid.empty() ? "" : entry.uid + occurrence,
                                  .substitute = fmt::format("{}\n{}{}", foldedCase(entry.summary), when, occurrence),
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
                chosenSources_.emplace(kind, choices[i].source);
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
    template <class Record>
    void noteSeries(const CalendarEntry& entry, const std::string& source, const std::optional<Record>& before,
                    std::set<std::string>& series) {
        const bool isOccurrence = entry.recurrenceID.has_value();
        const std::string name = isOccurrence ? seriesName(source) : source;
        series.insert(name);
        if (isOccurrence && before && before->repeatOriginalDate)
            formerOccurrences_[{entry.kind, name}].insert(*before->repeatOriginalDate);
        if (!isOccurrence) exceptionsOfSeries_[{entry.kind, name}] = entry.exceptions;
    }

    void mergeEvent(const CalendarEntry& entry, const std::string& source) {
        const std::int64_t key = keyOf(entry, source, timeblocks_);
        const std::optional<Timeblock> before = timeblocks_.find(key);
        if (before && isOutdated(entry, before->modifyDate)) return;
        Timeblock record = before ? *before : Timeblock{.timeblockID = key, .createDate = entry.created};
        setFrom(record, entry);
        store_.addKeywords(record.keywords, entry.categories);
        record.repeatOriginalDate = occurrenceOf(entry);
        setVersion(record, before, entry);
        const auto written = timeblocks_.write(record, before);
        const bool hasNewInvites = mergeInvites(key, entry, !before.has_value());
        const bool hasNewAddresses = store_.addresses().set(record.objectID(), addressesOf(entry));
        count(entry, source, written, hasNewInvites || hasNewAddresses);
        noteSeries(entry, source, before, eventSeries_);
    }

    void mergeToDo(const CalendarEntry& entry, const std::string& source) {
        const std::int64_t key = keyOf(entry, source, tasks_);
        const std::optional<Task> before = tasks_.find(key);
        if (before && isOutdated(entry, before->modifyDate)) return;
        Task record = before ? *before : Task{.taskID = key, .createDate = entry.created};
        setFrom(record, entry);
        store_.addKeywords(record.keywords, entry.categories);
        record.repeatOriginalDate = occurrenceOf(entry);
        setVersion(record, before, entry);
        const auto written = tasks_.write(record, before);
        count(entry, source, written, store_.addresses().set(record.objectID(), addressesOf(entry)));
        noteSeries(entry, source, before, toDoSeries_);
    }

    void mergeJournal(const CalendarEntry& entry, const std::string& source) {
        const std::int64_t key = store_.keyOf(source, notes_);
        const std::optional<Note> before = notes_.find(key);
        if (before && isOutdated(entry, before->modifyDate.get())) return;
        Note record = before ? *before
                             : Note{.noteID = key,
                                    .createDate = entry.created ? entry.created
                                                  : entry.start ? entry.start
                                                                : entry.stamped,
                                    .modifyDate = entry.modified};
        record.title = present(entry.summary);
        if (!entry.description.empty()) record.body = TextBody::plainText(entry.description);
        store_.addKeywords(record.keywords, entry.categories);
        const auto written = notes_.write(record, before);
        count(entry, source, written, store_.addresses().set(record.objectID(), addressesOf(entry)));
    }

    /// Makes the attendees of an event its invitations. Whether one was added, changed or removed.
    bool mergeInvites(std::int64_t timeblock, const CalendarEntry& entry, bool isNew) {
        // By their addresses, those without one by their names.
        using Invited = std::pair<std::string, std::string>;
        const auto invited = [](const std::string& address, const std::string& name) {
            return address.empty() ? Invited("", name) : Invited(inLowerCase(address), "");
        };
        std::multimap<Invited, MeetingInvite> before;
        const auto linked =
            isNew ? std::vector<ObjectID<MeetingInvite>>()
                  : store_.links().linked<MeetingInvite>(LinkKind::timeblock, ObjectID<Timeblock>(timeblock));
        for (const ObjectID<MeetingInvite>& id : linked) {
            if (const auto invite = invites_.find(*id.value()))
                before.emplace(invited(invite->emailAddress.value_or(""), invite->commonName.value_or("")), *invite);
        }
        bool isChanged = false;
        for (const CalendarEntry::Attendee& attendee : entry.attendees) {
            const auto [found, others] = before.equal_range(invited(attendee.address, attendee.name));
            std::optional<MeetingInvite> known;
            if (found != others) {
                known = found->second;
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
        for (const auto& [who, gone] : before) {
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
    void mergeExceptions(const std::string& series, RecordStore<typename Types::Record>& records,
                         RecordStore<typename Types::Exception>& exceptions, SQLite::Statement& exceptionsOf) {
        constexpr EntryKind kind = Types::kind;
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
            const std::set<Date>& former = formerOccurrences_[{kind, series}];
            for (const auto& [date, id] : before) {
                if (!former.contains(date)) wanted.insert(date);
            }
        }
        for (const auto& [text, id] : store_.sources().startingWith(entityNameOf<Record>, series + occurrenceMark)) {
            const auto occurrence = records.find(id);
            if (occurrence && occurrence->repeatOriginalDate) wanted.insert(*occurrence->repeatOriginalDate);
        }
        bool isChanged = false;
        for (const Date& date : wanted) {
            if (before.erase(date) > 0) continue;
            isChanged = true;
            exceptions.write(Types::exception(exceptions.newKey(), date, *key), std::nullopt);
        }
        for (const auto& [date, id] : before) {
            isChanged = true;
            exceptions.remove(id);
        }
        if (isChanged && unchangedSeries_.contains({kind, series})) {
            --store_.counts(kind).unchanged;
            ++store_.counts(kind).changed;
        }
    }

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
    /// What entries of a kind are called.
    using Name = std::pair<EntryKind, std::string>;
    std::map<Name, std::vector<Date>> exceptionsOfSeries_;
    /// Where the occurrences that have been merged were until now.
    std::map<Name, std::set<Date>> formerOccurrences_;
    /// Series of which nothing but their exceptions can have changed.
    std::set<Name> unchangedSeries_;
    /// The sources of the entries that count.
    std::set<Name> chosenSources_;
    /// Records of a series that no entry names, by the occurrence that they stand for.
    std::map<Name, std::map<Date, std::int64_t>> occurrences_;
    /// By their identifiers: the entries that others are occurrences of.
    std::map<Name, const CalendarEntry*> series_;
};

}  // namespace

void importCalendarEntries(const std::vector<CalendarEntry>& entries, ImportStore& store) {
    CalendarImporter(entries, store).run();
}

void noteOccurrence(SQLite::Database& database, const ObjectID<Task>& series, Date occurrence,
                    const ObjectID<Task>& task) {
    const std::string entity(Task::entityName);
    SQLite::Statement named(database, "SELECT source FROM \"ImportSource\" WHERE entity = ? AND id = ?");
    named.bind(1, entity);
    named.bind(2, series.value().value());
    if (!named.executeStep()) return;
    // Whatever the file calls the occurrence, it is found by its moment.
    const std::string source = named.getColumn(0).getString() + occurrenceMark + writtenTime(occurrence, std::nullopt);
    ImportSources(database).add(entity, source, task.value().value());
    SQLite::Statement addresses(database,
                                "INSERT INTO \"AddressUse\"(entity, id, address) "
                                "SELECT entity, ?, address FROM \"AddressUse\" WHERE entity = ? AND id = ?");
    addresses.bind(1, task.value().value());
    addresses.bind(2, entity);
    addresses.bind(3, series.value().value());
    addresses.exec();
}

}  // namespace kestrel::host
