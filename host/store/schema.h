#pragma once

#include <SQLiteCpp/Database.h>

/// How records lie in a database.
///
/// One table a record type, called like its entity: `id` is the primary key, `record` the record's keyed form as JSON,
/// and between them stand copies of those keys of other records that joins and the database's own checks need. What a
/// record says is in its keyed form; a member that the library adds needs no new column. Tables called like two record
/// types link their records; all other links stand in "RecordLink" (host/store/record_links.h). "ImportSource" tells
/// which record came of what an imported file calls its entry, "AddressUse" which e-mail addresses, in lower case,
/// occur in what an imported record was made of, and "EmbeddedKey" the last key that was given to a record that lies
/// within others, such as a phone.
namespace kestrel::host {

/// The version of the schema below, kept in the database's `user_version`.
inline constexpr int schemaVersion = 3;

/// Marks a database as one of ours, in its `application_id`: "KSRL".
inline constexpr int schemaApplicationID = 0x4b53524c;

/// Brings the schema from an earlier version, 0 for an empty database, to the current one. Runs in the caller's
/// transaction.
void migrateSchema(SQLite::Database& database, int fromVersion);

}  // namespace kestrel::host
