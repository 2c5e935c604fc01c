#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/store/record_table.h>
#include <kestrel/coding/json.h>

namespace kestrel::host::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

Outcome access(const Path& database, const std::string& record, const std::string& user, bool isJSON = false) {
    std::vector<std::string> arguments{"access", record, "--database", database, "--user", user};
    if (isJSON) arguments.emplace_back("--json");
    return kestrel(arguments);
}

class Access : public testing::Test {
  protected:
    Access() {
        writeExport(folder / "export", smallExport);
        if (kestrel({"import", folder / "export", "--database", database}).exitCode != 0)
            throw std::runtime_error("the export is not imported");
    }
    /// Changes a record of the database.
    template <class Record, class Change>
    void change(std::int64_t key, Change&& change) {
        SQLite::Database writable(database, SQLite::OPEN_READWRITE);
        RecordTable<Record> table(writable);
        Record record = table.find(key).value();
        change(record);
        table.update(record);
    }

    TemporaryFolder folder;
    Path database = folder / "crm.db";
};

TEST_F(Access, isDecidedByTheTeamsOfUserAndRecord) {
    struct Case {
        std::string user, answer, readReason;
    };
    for (const auto& [user, answer, readReason] :
         {Case{"Administrator", "yes",
               "Administrator is in no team, and such users may read it whatever teams it names"},
          Case{"Moses Frase", "yes", "the teams Central and Moses Frase may read it, and Moses Frase is in Central"},
          Case{"Dustin Brinkmann", "yes",
               "the teams Central and Moses Frase may read it, and Dustin Brinkmann is in Central"},
          Case{"Donn Cantrell", "no",
               "only the teams Central and Moses Frase may read it, and Donn Cantrell is in the teams East and Donn "
               "Cantrell"}}) {
        SCOPED_TRACE(user);
        const Outcome outcome = access(database, "Opportunity/1", user);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.output, StartsWith("record      Opportunity/1\nuser        " + user +
                                               "\nvisibility  Central\nread        " +
                                               (answer == "yes" ? "yes  " : "no   ") + readReason + "\n"));
        EXPECT_THAT(outcome.output, HasSubstr("\nupdate      " + answer));
        EXPECT_THAT(outcome.output, HasSubstr("\ndelete      " + answer));
    }
}

TEST_F(Access, asksReadersAndWritersApart) {
    change<Opportunity>(1, [](Opportunity& deal) {
        deal.permissions.readPermissions = {};
        deal.permissions.writePermissions = {ObjectID<Team>(2)};
    });
    change<User>(4, [](User& user) { user.isRestrictedToDeleteObjects = true; });
    const auto restricted = kestrel({"show", "User/4", "--database", database}).output;
    ASSERT_THAT(restricted, HasSubstr("Moses Frase"));
    const std::string json = access(database, "Opportunity/1", "moses.frase", true).output;
    EXPECT_THAT(json, HasSubstr(R"("visibility":"Custom")"));
    EXPECT_THAT(json, HasSubstr(R"("read":{"isAllowed":true,"rule":"recordUnrestricted","teams":[],)"));
    EXPECT_THAT(json, HasSubstr(R"("update":{"isAllowed":false,"rule":"noSharedTeam","teams":["East"],)"));
    EXPECT_THAT(json, HasSubstr(R"("delete":{"isAllowed":false,"rule":"restrictedMayNotDelete",)"));
    EXPECT_TRUE(checkJSON(json));
    EXPECT_THAT(access(database, "Opportunity/1", "donn.cantrell", true).output,
                HasSubstr(R"("update":{"isAllowed":true,"rule":"sharedTeam","teams":["East"],"sharedTeam":"East",)"));
}

TEST_F(Access, toCompaniesIsEverybodys) {
    const Outcome outcome = access(database, "Organization/1", "donn.cantrell");
    EXPECT_THAT(outcome.output, HasSubstr("visibility  Public\n"));
    EXPECT_THAT(outcome.output, HasSubstr("delete      yes  no team is named that may delete it, so everybody may\n"));
}

TEST_F(Access, decidesWhatABoardCounts) {
    // The third deal names a company that its own agent may read and Moses may not.
    change<Opportunity>(3, [](Opportunity& deal) { deal.permissions = {}; });
    change<Company>(2, [](Company& company) { company.permissions.readPermissions = {ObjectID<Team>(2)}; });
    const auto board = [&](const std::string& user) {
        return kestrel({"board", "--database", database, "--user", user}).output;
    };
    EXPECT_THAT(board("moses.frase"), HasSubstr("2 opportunities"));
    EXPECT_THAT(board("moses.frase"), HasSubstr("GTX Pro for Isdom  -        "));
    EXPECT_THAT(board("donn.cantrell"), HasSubstr("GTX Pro for Isdom  Isdom    "));
    EXPECT_THAT(board("administrator"), HasSubstr("3 opportunities"));
}

TEST_F(Access, andShowTellWhatTheyCannotFind) {
    struct Case {
        std::string record;
        int exitCode;
        std::string message;
    };
    for (const auto& [record, exitCode, message] :
         {Case{"Opportunity/99", 1, "there is no Opportunity/99\n"}, Case{"Contact/1", 1, "there is no Contact/1\n"},
          Case{"Phone/1", 1, "databases keep no records of Phone\n"},
          Case{"Company/1", 2,
               R"("Company/1" names no record; a Company is "Organization/1" there; write ENTITY/NUMBER, with one of )"
               "Label, Relationship, Role,"},
          Case{"Opportunity/1x", 2, R"("Opportunity/1x" names no record)"}, Case{"7", 2, R"("7" names no record)"},
          Case{"Opportunity/99999999999999999999", 2, R"("Opportunity/99999999999999999999" names no record)"}}) {
        SCOPED_TRACE(record);
        for (const Outcome& outcome :
             {access(database, record, "administrator"), kestrel({"show", record, "--database", database})}) {
            EXPECT_EQ(outcome.exitCode, exitCode);
            EXPECT_THAT(outcome.errors, StartsWith("kestrel: " + message));
            EXPECT_EQ(outcome.output, "");
        }
    }
    EXPECT_EQ(access(database, "User/1", "administrator").errors, "kestrel: User/1 is under no access control\n");
}

TEST_F(Access, orNotShowWritesTheRecordItself) {
    const Outcome json = kestrel({"show", "Opportunity/1", "--database", database, "--json"});
    SQLite::Database readable(database, SQLite::OPEN_READONLY);
    const Opportunity deal = RecordTable<Opportunity>(readable).find(1).value();
    EXPECT_EQ(decodeJSON<Opportunity>(json.output).value(), deal);
    EXPECT_EQ(kestrel({"show", "Opportunity/1", "--database", database}).output, debugMirror(deal) + "\n");
}

}  // namespace
}  // namespace kestrel::host::test
