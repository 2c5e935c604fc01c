#include "support.h"

#include <gtest/gtest.h>
#include <host/store/schema.h>
#include <kestrel/activity/email.h>

namespace kestrel::host::test {
namespace {

/// What the tables of an earlier version have, of a database of any version.
std::string dumpOfTablesIn(const Path& file, const Path& earlier) {
    SQLite::Database database(earlier, SQLite::OPEN_READONLY);
    SQLite::Statement tables(database, "SELECT name || ' |' FROM sqlite_schema WHERE type = 'table'");
    std::vector<std::string> starts;
    while (tables.executeStep())
        starts.push_back(tables.getColumn(0).getString());
    std::string kept;
    std::istringstream lines(dumpOf(file));
    for (std::string line; std::getline(lines, line);) {
        for (const std::string& start : starts) {
            if (line.starts_with(start)) kept += line + "\n";
        }
    }
    return kept;
}

TEST(Migration, bringsADatabaseOfTheFirstVersionUpToDateAndKeepsItsData) {
    const TemporaryFolder folder;
    const std::string script = readFile(Path(KESTREL_SOURCE_DIR) / "tests" / "host" / "version1.sql");
    for (const auto* name : {"before.db", "crm.db"})
        SQLite::Database(folder / name, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec(script);
    const std::string before = dumpOf(folder / "before.db");
    ASSERT_NE(before.find("GTX Pro for Cancity"), before.npos);
    // Reading does not migrate, and says what does.
    EXPECT_EQ(kestrel({"show", "Opportunity/1", "--database", folder / "crm.db"}).errors,
              "kestrel: " + (folder / "crm.db").native() +
                  ": is not of the current schema; `kestrel import` brings it up to date\n");

    writeText(folder / "hello.eml", "From: ada@example.org\nSubject: Hello\n\nBody\n");
    ASSERT_EQ(kestrel({"import", folder / "hello.eml", "--database", folder / "crm.db"}).exitCode, 0);
    SQLite::Database migrated(folder / "crm.db", SQLite::OPEN_READONLY);
    EXPECT_EQ(migrated.execAndGet("PRAGMA user_version").getInt(), schemaVersion);
    EXPECT_EQ(migrated.execAndGet("SELECT count(*) FROM pragma_foreign_key_check").getInt(), 0);
    EXPECT_EQ(dumpOfTablesIn(folder / "crm.db", folder / "before.db"), before);
    EXPECT_EQ(migrated.execAndGet("SELECT count(*) FROM \"Email\"").getInt(), 1);
    // The schema is the one that a new database has.
    ASSERT_EQ(kestrel({"import", folder / "hello.eml", "--database", folder / "new.db"}).exitCode, 0);
    const auto schemaOf = [](const Path& file) {
        SQLite::Database database(file, SQLite::OPEN_READONLY);
        SQLite::Statement rows(database, "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name");
        std::string schema;
        while (rows.executeStep())
            schema += rows.getColumn(0).getString() + ";\n";
        return schema;
    };
    EXPECT_EQ(schemaOf(folder / "crm.db"), schemaOf(folder / "new.db"));
    // The deals are found again.
    writeExport(folder / "export", smallExport);
    ASSERT_EQ(kestrel({"import", folder / "export", "--database", folder / "crm.db"}).exitCode, 0);
    EXPECT_EQ(dumpOfTablesIn(folder / "crm.db", folder / "before.db"), before);
}

}  // namespace
}  // namespace kestrel::host::test
