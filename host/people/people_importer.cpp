#include <host/crm/crm_export.h>
#include <host/people/calendar_importer.h>
#include <host/people/card_importer.h>
#include <host/people/icalendar_reader.h>
#include <host/people/mail_importer.h>
#include <host/people/mail_reader.h>
#include <host/people/people_importer.h>
#include <host/people/quiet_libraries.h>
#include <host/people/vcard_reader.h>
#include <host/terminal/file.h>

#include <algorithm>
#include <utility>

namespace kestrel::host {

PersonalData readPersonalFiles(const std::vector<PersonalFile>& files, const PeopleProgress& progress) {
    const QuietLibraries quiet;
    PersonalData data;
    VCardReader cards(data.problems);
    ICalendarReader calendars(data.problems);
    MailReader mail(data.problems);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const PersonalFile& file = files[i];
        data.problems.beginFile(file.path.native());
        switch (file.kind) {
            case PersonalFileKind::cards: cards.read(file.path.native(), readFile(file.path)); break;
            case PersonalFileKind::calendar: calendars.read(file.path.native(), readFile(file.path)); break;
            case PersonalFileKind::message: mail.read(file.path.native(), readFile(file.path)); break;
        }
        if (progress) progress(i + 1, files.size());
    }
    data.cards = std::move(cards.cards());
    data.entries = std::move(calendars.entries());
    data.messages = std::move(mail.messages());
    data.found[static_cast<std::size_t>(EntryKind::card)] = cards.found();
    data.found[static_cast<std::size_t>(EntryKind::message)] = mail.found();
    for (const EntryKind kind : {EntryKind::event, EntryKind::toDo, EntryKind::journal})
        data.found[static_cast<std::size_t>(kind)] = calendars.found(kind);
    return data;
}

namespace {

/// Somebody has to be able to look at what came in: a database without users gets its administrator.
void addAdministrator(SQLite::Database& database) {
    RecordStore<User> users(database);
    if (database.execAndGet("SELECT count(*) FROM \"User\"").getInt64() > 0) return;
    users.write(User{.userID = users.newKey(),
                     .isAdmin = true,
                     .jobTitle = std::string(administratorName),
                     .lastName = std::string(administratorName),
                     .name = std::string(administratorName),
                     .username = "administrator"},
                std::nullopt);
}

}  // namespace

PeopleReport importPeople(PersonalData& data, SQLite::Database& database, const PeopleProgress& progress) {
    addAdministrator(database);
    const std::size_t total = data.cards.size() + data.entries.size() + data.messages.size();
    std::size_t done = 0;
    ImportStore store(database, data.problems, [&] {
        if (progress) progress(++done, total);
    });
    importCards(data.cards, store);
    importCalendarEntries(data.entries, store);
    importMessages(data.messages, store);
    PeopleReport report;
    report.linksAdded = store.addresses().link(store.links());
    store.finish();
    for (std::size_t kind = 0; kind < entryKindCount; ++kind) {
        EntryCounts& counts = report.counts[kind] = store.counts(static_cast<EntryKind>(kind));
        counts.found = data.found[kind];
        counts.refused = data.problems.refused(static_cast<EntryKind>(kind));
    }
    return report;
}

}  // namespace kestrel::host
