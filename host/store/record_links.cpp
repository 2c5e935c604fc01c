#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <kestrel/foundation/enumeration.h>

namespace kestrel::host {
namespace {

void bind(SQLite::Statement& statement, int index, std::string_view text) {
    statement.bind(index, std::string(text));
}

/// Binds the entity's name and the key of a saved record to two columns.
void bind(SQLite::Statement& statement, int index, const AnyObjectID& id) {
    bind(statement, index, id.entityName());
    statement.bind(index + 1, id.primaryKey().value());
}

}  // namespace

bool RecordLinks::add(const AnyObjectID& record, LinkKind kind, const AnyObjectID& target) {
    SQLite::Statement& statement =
        prepared(add_,
                 "INSERT OR IGNORE INTO \"RecordLink\"(entity, id, kind, targetEntity, targetID) "
                 "VALUES(?, ?, ?, ?, ?)");
    bind(statement, 1, record);
    bind(statement, 3, caseName(kind));
    bind(statement, 4, target);
    return statement.exec() > 0;
}

void RecordLinks::remove(const AnyObjectID& record, LinkKind kind) {
    SQLite::Statement& statement =
        prepared(remove_, "DELETE FROM \"RecordLink\" WHERE entity = ? AND id = ? AND kind = ?");
    bind(statement, 1, record);
    bind(statement, 3, caseName(kind));
    statement.exec();
}

std::vector<AnyObjectID> RecordLinks::targets(const AnyObjectID& record, LinkKind kind) {
    SQLite::Statement& statement =
        prepared(targets_,
                 "SELECT targetEntity, targetID FROM \"RecordLink\" WHERE entity = ? AND id = ? AND kind = ? "
                 "ORDER BY targetEntity, targetID");
    bind(statement, 1, record);
    bind(statement, 3, caseName(kind));
    std::vector<AnyObjectID> ids;
    while (statement.executeStep()) {
        const std::string text =
            std::string(textOf(statement.getColumn(0))) + '/' + std::to_string(statement.getColumn(1).getInt64());
        // What is no identifier was written by a version that knows more types.
        if (const auto id = AnyObjectID::parse(text)) ids.push_back(*id);
    }
    return ids;
}

std::vector<std::int64_t> RecordLinks::linkedKeys(std::string_view entity, LinkKind kind, const AnyObjectID& target) {
    SQLite::Statement& statement =
        prepared(linked_,
                 "SELECT id FROM \"RecordLink\" WHERE targetEntity = ? AND targetID = ? AND entity = ? AND kind = ? "
                 "ORDER BY id");
    bind(statement, 1, target);
    bind(statement, 3, entity);
    bind(statement, 4, caseName(kind));
    std::vector<std::int64_t> keys;
    while (statement.executeStep())
        keys.push_back(statement.getColumn(0).getInt64());
    return keys;
}

SQLite::Statement& RecordLinks::prepared(std::optional<SQLite::Statement>& statement, const char* sql) const {
    if (statement) {
        statement->reset();
    } else {
        statement.emplace(*database_, sql);
    }
    return *statement;
}

}  // namespace kestrel::host
