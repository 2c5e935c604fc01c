#pragma once

#include <SQLiteCpp/Database.h>
#include <host/failure.h>
#include <host/store/record_table.h>
#include <kestrel/identity/any_object_id.h>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel::host {

/// The identifier that a text such as "Opportunity/42" means. WrongUsage, with the entities that there are, when it
/// means none.
[[nodiscard]] AnyObjectID identifierOf(std::string_view text);

/// Calls `visit` with the record of an identifier. A Failure when the database has no such record, WrongType when it
/// keeps none of its type.
template <class Visitor>
void visitRecord(SQLite::Database& database, const AnyObjectID& id, Visitor&& visit) {
    bool isStoredType = false;
    StoredRecords::forEach([&]<class Record>() {
        const auto typed = id.as<Record>();
        if (!typed) return;
        isStoredType = true;
        if (!typed->isPersistent()) throw RecordUnsaved(id.stringValue());
        const auto record = RecordTable<Record>(database).find(*typed);
        if (!record) throw RecordMissing(id.stringValue());
        visit(*record);
    });
    if (!isStoredType) throw WrongType("databases keep no records of " + std::string(id.entityName()));
}

}  // namespace kestrel::host
