#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>
#include <host/failure.h>
#include <host/store/directory.h>
#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <kestrel/access/permission_checker.h>
#include <optional>
#include <string>
#include <utility>

namespace kestrel::host {

/// The records of a database as one user may see them: what is deleted or not to be read by the user is not there. The
/// statements are kept; they must be gone before the database is closed.
class ReadableRecords {
  public:
    ReadableRecords(SQLite::Database& database, const Directory& directory, const User& user)
        : database_(&database),
          user_(user),
          checker_(directory.checkerFor(user)),
          links_(database),
          tables_(database) {}

    [[nodiscard]] SQLite::Database& database() noexcept { return *database_; }
    [[nodiscard]] const User& user() const noexcept { return user_; }
    [[nodiscard]] const PermissionChecker& checker() const noexcept { return checker_; }
    [[nodiscard]] RecordLinks& links() noexcept { return links_; }

    /// Whether the record lives and the user may read it. A record that is under no access control may be read.
    template <class Record>
    [[nodiscard]] bool isReadable(const Record& record) const {
        if constexpr (requires { record.deletionDate; }) {
            const std::optional<Date>& deletionDate = record.deletionDate;
            if (deletionDate) return false;
        }
        if constexpr (AuthorizedAccess<Record>) {
            return checker_.canRead(record);
        } else {
            return true;
        }
    }

    template <class Record>
    [[nodiscard]] std::optional<Record> find(const ObjectID<Record>& id) {
        auto record = table<Record>().find(id);
        if (record && !isReadable(*record)) record.reset();
        return record;
    }

    /// The record that the user asked for. A Failure when it is not there, or is not to be seen, which says why: first
    /// whether it may be read at all.
    template <class Record>
    [[nodiscard]] Record required(const ObjectID<Record>& id) {
        if (!id.isPersistent()) throw RecordUnsaved(id.stringValue());
        auto record = table<Record>().find(id);
        if (!record) throw RecordMissing(id.stringValue());
        if constexpr (AuthorizedAccess<Record>) {
            if (!checker_.canRead(*record)) {
                throw Refusal(
                    fmt::format("{} may not read {}; `kestrel access` says why", shownName(user_), id.stringValue()));
            }
        }
        if (!isReadable(*record)) throw Refusal(id.stringValue() + " has been deleted");
        return *std::move(record);
    }

    /// A record whatever its state, for what is shown of it anyhow: a user's name.
    template <class Record>
    [[nodiscard]] std::optional<Record> findAny(const ObjectID<Record>& id) {
        return table<Record>().find(id);
    }

    /// Calls `visit` with every record of a type, in the order of the keys, one at a time.
    template <class Record, class Visitor>
    void forEach(Visitor&& visit) {
        SQLite::Statement statement(*database_,
                                    fmt::format("SELECT id, record FROM \"{}\" ORDER BY id", entityNameOf<Record>));
        while (statement.executeStep()) {
            auto record =
                decodeStored<Record>(*database_, statement.getColumn(0).getInt64(), textOf(statement.getColumn(1)));
            if (isReadable(record)) visit(std::move(record));
        }
    }

  protected:
    template <class Record>
    [[nodiscard]] RecordTable<Record>& table() noexcept {
        return tables_;
    }

  private:
    /// A table of every stored type.
    template <class List>
    struct Tables;
    template <class... Records>
    struct Tables<RecordList<Records...>> : RecordTable<Records>... {
        explicit Tables(SQLite::Database& database) : RecordTable<Records>(database)... {}
    };

    SQLite::Database* database_;
    User user_;
    PermissionChecker checker_;
    RecordLinks links_;
    Tables<StoredRecords> tables_;
};

}  // namespace kestrel::host
