#pragma once

#include <SQLiteCpp/Database.h>
#include <host/people/calendar_entry.h>
#include <host/people/contact_card.h>
#include <host/people/import_problems.h>
#include <host/people/import_store.h>
#include <host/people/mail_message.h>
#include <host/people/personal_files.h>
#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace kestrel::host {

/// What files of cards, calendars and mail hold, and what was wrong with them.
struct PersonalData {
    std::vector<ContactCard> cards{};
    std::vector<CalendarEntry> entries{};
    std::vector<MailMessage> messages{};
    /// By EntryKind: how many began, usable or not.
    std::array<std::size_t, entryKindCount> found{};
    ImportProblems problems{};
};

/// What an import did, by EntryKind, and how many records it linked with contacts by their addresses.
struct PeopleReport {
    std::array<EntryCounts, entryKindCount> counts{};
    std::size_t linksAdded{};
};

/// Told how much is done, of how much.
using PeopleProgress = std::function<void(std::size_t done, std::size_t total)>;

/// Reads the files. A Failure names one that cannot be opened.
[[nodiscard]] PersonalData readPersonalFiles(const std::vector<PersonalFile>& files,
                                             const PeopleProgress& progress = {});

/// Brings a database up to date with what files hold, in the caller's transaction: cards first, then the calendars,
/// then the mail; at last everything, also of earlier imports, is linked with the contacts of its addresses. What
/// cannot be taken as it stands is added to the problems. Tells the progress by the entry.
PeopleReport importPeople(PersonalData& data, SQLite::Database& database, const PeopleProgress& progress = {});

}  // namespace kestrel::host
