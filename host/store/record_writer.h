#pragma once

#include <fmt/format.h>
#include <host/store/readable_records.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/uuid.h>
#include <cstdint>
#include <string>

namespace kestrel::host {

/// The records of a database that is open for one change, as the user who changes it may see them, and what the user
/// may do with them. The change is the caller's to commit.
class RecordWriter : public ReadableRecords {
  public:
    /// `now` is the moment of the change, which dates what it writes.
    RecordWriter(SQLite::Database& database, const Directory& directory, const User& user, Date now)
        : ReadableRecords(database, directory, user), now_(now) {}

    [[nodiscard]] Date now() const noexcept { return now_; }

    /// The record that the user wants to change. A Failure as from `required`, and a Refusal when the user may not
    /// change it.
    template <class Record>
    [[nodiscard]] Record changeable(const ObjectID<Record>& id) {
        Record record = required(id);
        if constexpr (AuthorizedAccess<Record>) {
            if (!checker().canUpdate(record)) {
                throw Refusal(fmt::format("{} may not change {}; `kestrel access` says why", shownName(user()),
                                          id.stringValue()));
            }
        }
        return record;
    }
    /// The record that the user wants to delete. A Failure as from `required`, and DeletionRefused when the user may
    /// not delete it; for records that are under no access control only a restriction of the user's counts.
    template <class Record>
    [[nodiscard]] Record deletable(const ObjectID<Record>& id) {
        Record record = required(id);
        Permissions permissions;
        if constexpr (AuthorizedAccess<Record>) permissions = record.permissions;
        if (!checker().canDelete(permissions)) {
            throw DeletionRefused(
                fmt::format("{} may not delete {}; `kestrel access` says why", shownName(user()), id.stringValue()));
        }
        return record;
    }
    /// Who may see and change a record is more than what stands in it: a Refusal when the user could not even delete
    /// the record, as it is now.
    template <AuthorizedAccess Record>
    void requireAccessChangeable(const Record& record) {
        if (checker().canDelete(record)) return;
        throw Refusal(fmt::format("{} may not change who sees {}; `kestrel access` says why", shownName(user()),
                                  record.objectID().stringValue()));
    }
    /// Says of a record that the user has deleted it.
    template <class Record>
    void markDeleted(Record& record) const {
        record.deletionDate = now_;
        record.deletionIdentifier = UUID::random().text();
        record.deletionUserID = user().objectID().value();
    }

    /// The identifier for a new record of a type, behind all that there are.
    template <class Record>
    [[nodiscard]] ObjectID<Record> newID() {
        return database()
                   .execAndGet(fmt::format("SELECT coalesce(max(id), 0) FROM \"{}\"", entityNameOf<Record>))
                   .getInt64() +
               1;
    }
    template <class Record>
    void insert(const Record& record) {
        table<Record>().insert(record);
    }
    template <class Record>
    void update(const Record& record) {
        table<Record>().update(record);
    }

  private:
    Date now_;
};

}  // namespace kestrel::host
