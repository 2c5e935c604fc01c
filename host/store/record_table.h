#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <host/failure.h>
#include <host/store/stored_records.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/any_object_id.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::host {

/// A column's text, valid until the statement steps or is reset.
[[nodiscard]] inline std::string_view textOf(const SQLite::Column& column) {
    // In this order: SQLite may convert the value when its text is asked for.
    const char* text = column.getText();
    return {text, static_cast<std::size_t>(column.getBytes())};
}

/// The key in a column; absent for NULL.
[[nodiscard]] inline std::optional<std::int64_t> keyOf(const SQLite::Column& column) {
    if (column.isNull()) return std::nullopt;
    return column.getInt64();
}

/// The record whose keyed form a database holds. What does not decode has been damaged from outside: a Failure names
/// the database, the record and what is wrong.
template <class Record>
[[nodiscard]] Record decodeStored(const SQLite::Database& database, std::int64_t id, std::string_view json) {
    auto record = decodeJSON<Record>(json);
    if (record && record->objectID() == ObjectID<Record>(id)) return *std::move(record);
    throw Failure(database.getFilename() + ": " + ObjectID<Record>(id).stringValue() + ": " +
                  (record ? "the record is of another identifier" : record.error().message()));
}

/// The table of one record type. Statements are prepared when they are first needed and kept; they must be gone before
/// the database is closed.
template <class Record>
class RecordTable {
  public:
    explicit RecordTable(SQLite::Database& database) : database_(&database) {}

    /// Absent also for an identifier that is not saved.
    [[nodiscard]] std::optional<Record> find(const ObjectID<Record>& id) {
        if (!id.isPersistent()) return std::nullopt;
        SQLite::Statement& statement = prepared(find_, "SELECT record FROM " + table() + " WHERE id = ?");
        statement.bind(1, id.value().value());
        if (!statement.executeStep()) return std::nullopt;
        return decodeStored<Record>(*database_, *id.value(), textOf(statement.getColumn(0)));
    }

    /// Every record, in the order of the primary keys.
    [[nodiscard]] std::vector<Record> all() const {
        std::vector<Record> records;
        SQLite::Statement statement(*database_, "SELECT id, record FROM " + table() + " ORDER BY id");
        while (statement.executeStep()) {
            records.push_back(
                decodeStored<Record>(*database_, statement.getColumn(0).getInt64(), textOf(statement.getColumn(1))));
        }
        return records;
    }

    void insert(const Record& record) {
        std::string names;
        std::string marks;
        if (!insert_) {
            for (const auto& column : keyColumns<Record>) {
                names.append(column.name).append(", ");
                marks += "?, ";
            }
        }
        write(prepared(insert_, "INSERT INTO " + table() + "(" + names + "record, id) VALUES(" + marks + "?, ?)"),
              record);
    }

    void update(const Record& record) {
        std::string assignments;
        if (!update_) {
            for (const auto& column : keyColumns<Record>)
                assignments.append(column.name).append(" = ?, ");
        }
        write(prepared(update_, "UPDATE " + table() + " SET " + assignments + "record = ? WHERE id = ?"), record);
    }

    void remove(const ObjectID<Record>& id) {
        SQLite::Statement& statement = prepared(remove_, "DELETE FROM " + table() + " WHERE id = ?");
        statement.bind(1, id.value().value());
        statement.exec();
    }

  private:
    static std::string table() { return '"' + std::string(entityNameOf<Record>) + '"'; }

    /// The statement, ready for new values.
    SQLite::Statement& prepared(std::optional<SQLite::Statement>& statement, const std::string& sql) const {
        if (statement) {
            statement->reset();
        } else {
            statement.emplace(*database_, sql);
        }
        return *statement;
    }

    /// Binds the key columns, the keyed form and the primary key, in this order, and executes.
    void write(SQLite::Statement& statement, const Record& record) {
        json_.clear();
        if (auto encoded = encodeJSON(record, json_); !encoded) {
            throw Failure(record.objectID().stringValue() + ": " + encoded.error().message());
        }
        int index = 0;
        for (const auto& column : keyColumns<Record>) {
            const auto& key = record.*column.member;
            ++index;
            if (key) {
                statement.bind(index, *key);
            } else {
                statement.bind(index);
            }
        }
        statement.bindNoCopy(++index, json_);
        statement.bind(++index, record.objectID().value().value());
        statement.exec();
        // So that no statement points at a text that changes.
        statement.reset();
    }

    SQLite::Database* database_;
    std::optional<SQLite::Statement> find_;
    std::optional<SQLite::Statement> insert_;
    std::optional<SQLite::Statement> update_;
    std::optional<SQLite::Statement> remove_;
    std::string json_;
};

}  // namespace kestrel::host
