#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/store/record_table.h>
#include <host/store/schema.h>
#include <host/store/store.h>
#include <kestrel/boards/opportunity_state.h>
#include <kestrel/records/extra_fields_namer.h>

#include <algorithm>
#include <set>

namespace kestrel::host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The records of a type, by key.
template <class Record>
std::map<std::int64_t, Record> recordsOf(SQLite::Database& database) {
    std::map<std::int64_t, Record> records;
    for (Record& record : RecordTable<Record>(database).all())
        records.emplace(*record.objectID().value(), std::move(record));
    return records;
}

std::optional<Date> dayOf(const std::string& text) {
    return text.empty() ? std::nullopt : Date::parseISO8601(text);
}

Outcome import(const Path& folder, const Path& database, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"import", folder, "--database", database};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return kestrel(arguments);
}

Outcome importFiles(const Files& files, const Path& database) {
    const TemporaryFolder folder;
    writeExport(folder.path(), files);
    return import(folder.path(), database);
}

TEST(Import, makesAnOpportunityOfEveryDealAsItsRowSays) {
    const ImportedDatabase imported;
    SQLite::Database database(imported.path(), SQLite::OPEN_READONLY);
    const auto users = recordsOf<User>(database);
    const auto teams = recordsOf<Team>(database);
    const auto types = recordsOf<OpportunityType>(database);
    const auto companies = recordsOf<Company>(database);
    const auto pipelines = recordsOf<Pipeline>(database);
    const auto stages = recordsOf<PipelineStage>(database);
    std::map<std::int64_t, std::string> companyOf;
    SQLite::Statement links(database, "SELECT opportunityID, organizationID FROM OpportunityOrganization");
    while (links.executeStep())
        companyOf[links.getColumn(0).getInt64()] = companies.at(links.getColumn(1).getInt64()).name.value();
    std::map<std::string, Opportunity> opportunities;
    for (const auto& [key, record] : recordsOf<Opportunity>(database))
        opportunities.emplace(record.sourceImportID.value(), record);

    struct StageFacts {
        OpportunityState state;
        std::int64_t probability;
    };
    const std::map<std::string, StageFacts> facts{{"Prospecting", {OpportunityState::open, 10}},
                                                  {"Engaging", {OpportunityState::open, 40}},
                                                  {"Won", {OpportunityState::won, 100}},
                                                  {"Lost", {OpportunityState::lost, 0}}};
    const auto deals = plainDeals();
    ASSERT_EQ(deals.size(), 8'800U);
    ASSERT_EQ(opportunities.size(), deals.size());
    for (const PlainDeal& deal : deals) {
        SCOPED_TRACE(deal.id);
        const Opportunity& record = opportunities.at(deal.id);
        const std::int64_t key = *record.objectID().value();
        const StageFacts& expected = facts.at(deal.stage);
        ASSERT_EQ(record.name, deal.title());
        ASSERT_EQ(record.opportunityCode, deal.id);
        ASSERT_EQ(fromRawValue<OpportunityState>(record.opportunityStateType), expected.state);
        ASSERT_EQ(record.lastOpportunityStateType, rawValue(OpportunityState::open));
        ASSERT_EQ(record.probability, expected.probability);
        ASSERT_EQ(record.cachedTotalAmount, deal.value);
        ASSERT_EQ(record.unitPrice, deal.price);
        ASSERT_EQ(record.units, 1);
        ASSERT_EQ(record.createDate, dayOf(deal.engageDate));
        ASSERT_EQ(record.startDate, dayOf(deal.engageDate));
        ASSERT_EQ(record.completeDate, dayOf(deal.closeDate));
        ASSERT_EQ(record.dueDate, dayOf(deal.closeDate));
        ASSERT_EQ(users.at(record.assignedToID.value()).name, deal.agent);
        ASSERT_EQ(types.at(record.opportunityTypeID.value()).name, deal.product);
        ASSERT_EQ(record.category.value().name, deal.series);
        ASSERT_EQ(record.categoryID, record.category->objectID().value());
        ASSERT_EQ(companyOf[key], deal.account);
        ASSERT_EQ(record.permissions.readPermissions, record.permissions.writePermissions);
        std::set<std::pair<std::string, bool>> access;
        for (const auto& team : record.permissions.readPermissions.teamIDs)
            access.emplace(teams.at(*team.value()).name.value(), teams.at(*team.value()).isUserPrivateTeam);
        ASSERT_EQ(access, (std::set<std::pair<std::string, bool>>{{deal.office, false}, {deal.agent, true}}));
        ASSERT_EQ(pipelines.at(record.currentPipelineID.value()).opportunityID, key);
        ASSERT_EQ(stages.at(record.currentPipelineStageID.value()).name, deal.stage);
        ASSERT_EQ(stages.at(record.currentPipelineStageID.value()).pipelineID, record.currentPipelineID);
    }
}

TEST(Import, givesEveryDealTheHistoryOfItsStage) {
    const ImportedDatabase imported;
    SQLite::Database database(imported.path(), SQLite::OPEN_READONLY);
    std::map<std::int64_t, std::vector<PipelineStageHistory>> histories;
    for (const auto& [key, row] : recordsOf<PipelineStageHistory>(database))
        histories[row.opportunityID.value()].push_back(row);
    std::map<std::string, Opportunity> opportunities;
    for (const auto& [key, record] : recordsOf<Opportunity>(database))
        opportunities.emplace(record.sourceImportID.value(), record);

    using Stay = std::tuple<std::string, std::optional<std::string>, std::optional<Date>, std::optional<Date>>;
    for (const PlainDeal& deal : plainDeals()) {
        SCOPED_TRACE(deal.id);
        const auto engaged = dayOf(deal.engageDate);
        const auto closed = dayOf(deal.closeDate);
        std::vector<Stay> expected;
        if (deal.stage == "Prospecting") {
            expected = {{"Prospecting", std::nullopt, std::nullopt, std::nullopt}};
        } else {
            expected = {{"Engaging", "Prospecting", engaged, closed}};
            if (deal.stage != "Engaging") expected.emplace_back(deal.stage, "Engaging", closed, std::nullopt);
        }
        const Opportunity& record = opportunities.at(deal.id);
        const auto& rows = histories.at(*record.objectID().value());
        std::vector<Stay> stays;
        for (const auto& row : rows) {
            stays.emplace_back(row.stageName.value(), row.previousStageName, row.startDate, row.endDate);
            ASSERT_EQ(row.pipelineID, record.currentPipelineID);
            ASSERT_EQ(row.pipelineName, "Sales");
        }
        ASSERT_EQ(stays, expected);
        ASSERT_EQ(rows.back().objectID().value(), record.currentPipelineStageHistoryID);
        ASSERT_EQ(rows.back().pipelineStageID, record.currentPipelineStageID);
    }
}

TEST(Import, makesUsersTeamsAndCompanies) {
    const ImportedDatabase imported;
    SQLite::Database database(imported.path(), SQLite::OPEN_READONLY);
    const auto teams = recordsOf<Team>(database);
    std::map<std::string, User> users;
    for (const auto& [key, user] : recordsOf<User>(database))
        users.emplace(user.name.value(), user);
    std::map<std::string, std::set<std::string>> offices;
    auto rows = plainRows(shippedExport / "sales_teams.csv");
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        offices[(*row)[0]].insert((*row)[2]);
        offices[(*row)[1]].insert((*row)[2]);
    }
    EXPECT_EQ(users.size(), offices.size() + 1);
    for (const auto& [name, expected] : offices) {
        SCOPED_TRACE(name);
        const User& user = users.at(name);
        std::set<std::string> ordinary;
        std::vector<std::string> own;
        for (const auto& id : user.teamIDs) {
            const Team& team = teams.at(*id.value());
            if (team.isUserPrivateTeam) {
                own.push_back(team.name.value());
            } else {
                ordinary.insert(team.name.value());
            }
        }
        EXPECT_EQ(ordinary, expected);
        EXPECT_THAT(own, ElementsAre(name));
        EXPECT_FALSE(user.isAdmin);
    }
    EXPECT_EQ(users.at("Moses Frase").username, "moses.frase");
    EXPECT_EQ(users.at("Mei-Mei Johns").username, "mei-mei.johns");
    EXPECT_TRUE(users.at("Administrator").isAdmin);
    EXPECT_EQ(users.at("Administrator").username, "administrator");
    EXPECT_TRUE(users.at("Administrator").teamIDs.empty());

    const auto industries = recordsOf<IndustryType>(database);
    const auto regions = recordsOf<RegionType>(database);
    const auto companies = recordsOf<Company>(database);
    EXPECT_EQ(companies.size(), 85U);
    const auto bluth =
        std::ranges::find_if(companies, [](const auto& entry) { return entry.second.name == "Bluth Company"; });
    ASSERT_NE(bluth, companies.end());
    const Company& company = bluth->second;
    EXPECT_EQ(company.numberOfEmployees, 3027);
    EXPECT_EQ(industries.at(company.industryTypeID.value()).name, "technology");
    EXPECT_EQ(regions.at(company.regionTypeID.value()).name, "United States");
    EXPECT_TRUE(company.permissions.readPermissions.isEmpty());
    const auto names = recordsOf<ExtraFieldsNames>(database);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names.begin()->second.typeString, "Company");
    EXPECT_THAT(names.begin()->second.namer().namedFields(company),
                ElementsAre(NamedExtraField{"Year Established", "1993"},
                            NamedExtraField{"Annual Revenue (million USD)", "1242.32"},
                            NamedExtraField{"Subsidiary Of", "Acme Corporation"}));
    for (const auto& [key, industry] : industries)
        EXPECT_NE(industry.name, "technolgy");
    EXPECT_TRUE(std::ranges::any_of(regions, [](const auto& entry) { return entry.second.name == "Philippines"; }));
    for (const auto& [key, category] : recordsOf<Category>(database))
        EXPECT_TRUE(category.color) << category.name.value();
}

TEST(Import, reportsWhatItMendedAndMade) {
    const TemporaryFolder folder;
    const Outcome text = import(shippedExport, folder / "a.db");
    EXPECT_THAT(text.output, HasSubstr("Mended 12 rows of accounts.csv: technolgy is technology\n"));
    EXPECT_THAT(text.output, HasSubstr("Mended 1 row of accounts.csv: Philipines is Philippines\n"));
    EXPECT_THAT(text.output, HasSubstr("Mended 1,480 rows of sales_pipeline.csv: GTXPro is GTX Pro\n"));
    EXPECT_EQ(text.errors, "");
    const Outcome json = import(shippedExport, folder / "b.db", {"--json"});
    for (const std::string_view part :
         {R"("Company":{"new":85,"changed":0,"unchanged":0})",
          R"("Opportunity":{"new":8800,"changed":0,"unchanged":0})", R"("User":{"new":42,"changed":0,"unchanged":0})",
          R"("Team":{"new":44,"changed":0,"unchanged":0})",
          R"("PipelineStageHistory":{"new":15511,"changed":0,"unchanged":0})",
          R"("wrong":"GTXPro","right":"GTX Pro","rows":1480)", R"("isUnchanged":false)"})
        EXPECT_THAT(json.output, HasSubstr(part));
    EXPECT_TRUE(checkJSON(json.output));
}

TEST(Import, againChangesNothing) {
    const ImportedDatabase imported;
    const std::string before = readFile(imported.path());
    const std::string dump = dumpOf(imported.path());
    const Outcome again = import(shippedExport, imported.path());
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_THAT(again.output, HasSubstr("Everything was unchanged"));
    EXPECT_TRUE(readFile(imported.path()) == before);
    EXPECT_TRUE(dumpOf(imported.path()) == dump);
    EXPECT_THAT(import(shippedExport, imported.path(), {"--json"}).output, HasSubstr(R"("isUnchanged":true)"));
}

TEST(Import, ofChangedFilesGivesWhatAFreshImportGives) {
    struct Change {
        std::string what, file, before, after;
    };
    const Change changes[]{
        {"engaged", "sales_pipeline.csv", "A3,Donn Cantrell,GTXPro,Isdom,Engaging,2016-10-25,,",
         "A3,Donn Cantrell,GTXPro,Isdom,Engaging,2016-11-25,,"},
        {"won", "sales_pipeline.csv", "Isdom,Engaging,2016-10-25,,", "Isdom,Won,2016-10-25,2017-01-01,5000"},
        {"back to prospecting", "sales_pipeline.csv", "Isdom,Engaging,2016-10-25,,", "Isdom,Prospecting,,,"},
        {"another company", "sales_pipeline.csv", "GTXPro,Isdom", "GTXPro,Cancity"},
        {"no company", "sales_pipeline.csv", "GTXPro,Isdom", "GTXPro,"},
        {"another agent", "sales_pipeline.csv", "A3,Donn Cantrell", "A3,Moses Frase"},
        {"another price", "products.csv", "4821", "4900.50"},
        {"another region", "accounts.csv", "2448,United States", "2448,Philippines"},
        {"fewer facts", "accounts.csv", "2001,718.62,2448", ",,"},
    };
    const auto dealsOf = [](const Path& file) {
        SQLite::Database database(file, SQLite::OPEN_READONLY);
        std::string text;
        for (const auto& record : RecordTable<Opportunity>(database).all())
            text += debugMirror(record) + '\n';
        for (const auto& record : RecordTable<PipelineStageHistory>(database).all())
            text += debugMirror(record) + '\n';
        return text + database
                          .execAndGet(
                              "SELECT group_concat(opportunityID || '-' || organizationID) "
                              "FROM OpportunityOrganization")
                          .getString();
    };
    const auto companiesOf = [](const Path& file) {
        SQLite::Database database(file, SQLite::OPEN_READONLY);
        const auto regions = recordsOf<RegionType>(database);
        std::string text;
        for (Company record : RecordTable<Company>(database).all()) {
            // By name: the same region has another key when it was met in another order.
            text += regions.at(record.regionTypeID.value()).name.value();
            record.regionTypeID.reset();
            text += debugMirror(record) + '\n';
        }
        return text;
    };
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "old.db").exitCode, 0);
    const std::string oldDeals = dealsOf(folder / "old.db");
    const std::string oldCompanies = companiesOf(folder / "old.db");
    for (const Change& change : changes) {
        SCOPED_TRACE(change.what);
        const Files after = edited(change.file, change.before, change.after);
        const Path fresh = folder / (change.what + " fresh.db");
        const Path updated = folder / (change.what + ".db");
        ASSERT_EQ(importFiles(after, fresh).exitCode, 0);
        ASSERT_EQ(importFiles(smallExport, updated).exitCode, 0);
        const Outcome update = importFiles(after, updated);
        ASSERT_EQ(update.exitCode, 0);
        EXPECT_THAT(update.output, Not(HasSubstr("Everything was unchanged")));
        EXPECT_EQ(dealsOf(updated), dealsOf(fresh));
        EXPECT_EQ(companiesOf(updated), companiesOf(fresh));
        EXPECT_NE(dealsOf(updated) + companiesOf(updated), oldDeals + oldCompanies);
        // And back: what a step adds has to go again.
        ASSERT_EQ(importFiles(smallExport, updated).exitCode, 0);
        EXPECT_EQ(dealsOf(updated), oldDeals);
        EXPECT_EQ(companiesOf(updated), oldCompanies);
    }
}

TEST(Import, keepsWhatTheFilesDoNotSay) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "crm.db").exitCode, 0);
    {
        SQLite::Database database(folder / "crm.db", SQLite::OPEN_READWRITE);
        RecordTable<Opportunity> opportunities(database);
        Opportunity deal = opportunities.find(1).value();
        deal.details = "Waits for the new budget.";
        opportunities.update(deal);
        RecordTable<Category> categories(database);
        Category category = categories.find(1).value();
        category.color = RGBAColor{1, 0, 1, 1};
        categories.update(category);
    }
    Files files = edited("sales_pipeline.csv", "A1,Moses Frase,GTX Pro,Cancity,Won,2016-10-20,2017-03-01,1054\n", "");
    ASSERT_EQ(importFiles(files, folder / "crm.db").exitCode, 0);
    SQLite::Database database(folder / "crm.db", SQLite::OPEN_READONLY);
    const auto deals = recordsOf<Opportunity>(database);
    EXPECT_EQ(deals.size(), 3U);
    EXPECT_EQ(deals.at(1).details, "Waits for the new budget.");
    EXPECT_EQ(deals.at(1).sourceImportID, "A1");
    EXPECT_EQ(recordsOf<Category>(database).at(1).color, (RGBAColor{1, 0, 1, 1}));
    // The deals of the category carry its colour, those of the file at least.
    EXPECT_EQ(deals.at(3).category.value().color, (RGBAColor{1, 0, 1, 1}));
}

struct BrokenFile {
    std::string what, file, before, after, message;
};

const std::vector<BrokenFile> brokenFiles{
    {"too few fields", "sales_pipeline.csv", ",Prospecting,,,", ",Prospecting,,",
     "row 3: has 7 fields where the header has 8"},
    {"too many fields", "accounts.csv", "United States,", "United States,,",
     "row 2: has 8 fields where the header has 7"},
    {"another header", "products.csv", "product,series", "series,product",
     "row 1: expected the header product,series,sales_price"},
    {"no header", "sales_teams.csv", "sales_agent,manager,regional_office\n", "",
     "row 1: expected the header sales_agent,manager,regional_office"},
    {"empty file", "products.csv", smallExport.at("products.csv"), "", "row 1: expected the header"},
    {"no such day", "sales_pipeline.csv", "2016-10-25", "2016-02-30",
     R"(row 4: engage_date "2016-02-30" is not a date)"},
    {"a date and time", "sales_pipeline.csv", "2017-03-01", "2017-03-01T10:00:00Z",
     R"(row 2: close_date "2017-03-01T10:00:00Z" is not a date)"},
    {"no number", "sales_pipeline.csv", "1054", "1054 USD", R"(row 2: close_value "1054 USD" is not a number)"},
    {"not a number", "sales_pipeline.csv", "1054", "nan", R"(row 2: close_value "nan" is not a number)"},
    {"exponent", "products.csv", "4821", "4e3", R"(row 2: sales_price "4e3" is not a number)"},
    {"no price", "products.csv", ",55", ",", R"(row 3: sales_price "" is not a number)"},
    {"half an employee", "accounts.csv", "2448", "2448.5", R"(row 2: employees "2448.5" is not a whole number)"},
    {"employees beyond 64 bits", "accounts.csv", "2448", "99999999999999999999", "row 2: employees"},
    {"unknown product", "sales_pipeline.csv", "MG Special", "MG Spezial",
     R"(row 3: product "MG Spezial" is not in products.csv)"},
    {"unknown agent", "sales_pipeline.csv", "A2,Donn", "A2,Don",
     R"(row 3: sales_agent "Don Cantrell" is not in sales_teams.csv)"},
    {"a manager as agent", "sales_pipeline.csv", "A2,Donn Cantrell", "A2,Rocco Neubert",
     R"(row 3: sales_agent "Rocco Neubert" is not in)"},
    {"unknown account", "sales_pipeline.csv", "Isdom", "Wisdom", R"(row 4: account "Wisdom" is not in accounts.csv)"},
    {"unknown stage", "sales_pipeline.csv", "Won", "won",
     R"(row 2: deal_stage "won" is not Prospecting, Engaging, Won or Lost)"},
    {"deal twice", "sales_pipeline.csv", "A3", "A1", R"(row 4: opportunity_id "A1" is already in row 2)"},
    {"no deal identifier", "sales_pipeline.csv", "A3,", ",", "row 4: opportunity_id is empty"},
    {"account twice", "accounts.csv", "Isdom", "Cancity", R"(row 3: account "Cancity" is already in row 2)"},
    {"agent twice", "sales_teams.csv", "Donn Cantrell", "Moses Frase",
     R"(row 3: sales_agent "Moses Frase" is already in row 2)"},
    {"one name to sign in", "sales_teams.csv", "Donn Cantrell", "MOSES FRASE",
     "row 3: \"MOSES FRASE\" would sign in as"},
    {"the administrator's name", "sales_teams.csv", "Donn Cantrell", "Administrator",
     "row 3: \"Administrator\" would sign in as"},
    {"not UTF-8", "accounts.csv", "Isdom", "Isd\xf6m", "row 3: is not valid UTF-8 from byte 4 of the line on"},
    {"open quote", "sales_pipeline.csv", "Cancity", "\"Cancity", "row 2: a quote is never closed"},
    {"quote in a field", "sales_pipeline.csv", "Cancity", "Can\"city", "row 2: a quote stands inside a field"},
    {"text behind a quote", "accounts.csv", "Isdom", "\"Isdom\" AG", "row 3: a quote stands inside a field"},
    {"rows counted with empty lines", "sales_pipeline.csv", "A2,Donn", "\n \r\nA2,Don",
     R"(row 5: sales_agent "Don Cantrell")"},
    {"rows counted with quoted lines", "accounts.csv", "retail,2001,718.62,2448", "\"re\ntail\",2001,718.62,x\n\"y",
     "row 4: a quote is never closed"},
    {"row where a quoted field starts", "accounts.csv", "retail,2001,718.62,2448", "\"re\n\ntail\",2001,718.62,x",
     R"(row 2: employees "x")"},
};

TEST(BrokenImport, namesFileRowAndReasonAndChangesNothing) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "there.db").exitCode, 0);
    const std::string before = readFile(folder / "there.db");
    for (const BrokenFile& broken : brokenFiles) {
        SCOPED_TRACE(broken.what);
        writeExport(folder / "export", edited(broken.file, broken.before, broken.after));
        for (const auto* name : {"there.db", "new.db"}) {
            const Outcome outcome = import(folder / "export", folder / name);
            EXPECT_EQ(outcome.exitCode, 1);
            EXPECT_EQ(outcome.output, "");
            EXPECT_THAT(outcome.errors,
                        StartsWith("kestrel: " + (folder / "export" / broken.file).native() + ": " + broken.message));
            EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1);
        }
        EXPECT_EQ(readFile(folder / "there.db"), before);
    }
    for (const auto& [name, text] : smallExport) {
        writeExport(folder / "export", smallExport);
        std::filesystem::remove(folder / "export" / name);
        const Outcome outcome = import(folder / "export", folder / "new.db");
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.errors, "kestrel: " + (folder / "export" / name).native() +
                                      ": cannot be opened: No such file or directory\n");
    }
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        left.insert(entry.path().filename());
    EXPECT_EQ(left, (std::set<std::string>{"export", "there.db"}));
}

TEST(Import, takesWhatOtherProgramsWrite) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "plain.db").exitCode, 0);
    const std::string plain = dumpOf(folder / "plain.db");
    Files files = smallExport;
    for (auto& [name, text] : files) {
        std::string changed = "\xef\xbb\xbf";
        for (const char c : text)
            changed += c == '\n' ? std::string("\r\n\r\n") : std::string(1, c);
        changed.resize(changed.size() - 4);
        text = changed;
    }
    files["sales_pipeline.csv"].replace(files["sales_pipeline.csv"].find("Cancity"), 7, " \"Cancity\" ");
    ASSERT_EQ(importFiles(files, folder / "other.db").exitCode, 0);
    EXPECT_EQ(dumpOf(folder / "other.db"), plain);
    const Files quoted = edited("accounts.csv", "Isdom,medical", "\"Isdom, \"\"the\"\"\r\nwise\",medical");
    Files withDeal = quoted;
    withDeal["sales_pipeline.csv"].replace(withDeal["sales_pipeline.csv"].find("Isdom"), 5,
                                           "\"Isdom, \"\"the\"\"\nwise\"");
    ASSERT_EQ(importFiles(withDeal, folder / "quoted.db").exitCode, 0);
    SQLite::Database database(folder / "quoted.db", SQLite::OPEN_READONLY);
    EXPECT_EQ(recordsOf<Company>(database).at(2).name, "Isdom, \"the\"\nwise");
}

TEST(Store, refusesWhatIsNotItsOwn) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "newer.db").exitCode, 0);
    SQLite::Database(folder / "newer.db", SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 99");
    SQLite::Database(folder / "other.db", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE recipe(name TEXT); PRAGMA user_version = 1");
    SQLite::Database(folder / "unmarked.db", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE recipe(name TEXT)");
    writeText(folder / "text.db", "Dear diary, this is certainly no database at all, however long it gets.");
    std::filesystem::create_directory(folder / "folder.db");
    struct Case {
        std::string file, message;
    };
    for (const auto& [file, message] :
         {Case{"newer.db", "was written by a newer version of kestrel: its schema is version 99, this one knows " +
                               std::to_string(schemaVersion)},
          Case{"other.db", "is a database of another program"}, Case{"unmarked.db", "is a database of another program"},
          Case{"text.db", "is no database"}}) {
        SCOPED_TRACE(file);
        const std::string before = readFile(folder / file);
        const std::string line = "kestrel: " + (folder / file).native() + ": " + message + "\n";
        EXPECT_EQ(importFiles(smallExport, folder / file).errors, line);
        EXPECT_EQ(kestrel({"board", "--database", folder / file, "--user", "administrator"}).errors, line);
        EXPECT_EQ(readFile(folder / file), before);
    }
    EXPECT_EQ(kestrel({"show", "User/1", "--database", folder / "folder.db"}).errors,
              "kestrel: " + (folder / "folder.db").native() + ": is a folder, no database\n");
    EXPECT_EQ(
        kestrel({"show", "User/1", "--database", folder / "none.db"}).errors,
        "kestrel: " + (folder / "none.db").native() + ": there is no such database; `kestrel import` makes one\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "none.db"));
}

TEST(Store, keepsWriteAheadLogAndForeignKeys) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "crm.db").exitCode, 0);
    SQLite::Database database(folder / "crm.db", SQLite::OPEN_READWRITE);
    EXPECT_EQ(database.execAndGet("PRAGMA journal_mode").getString(), "wal");
    EXPECT_EQ(database.execAndGet("PRAGMA user_version").getInt(), schemaVersion);
    EXPECT_EQ(database.execAndGet("SELECT count(*) FROM pragma_foreign_key_check").getInt(), 0);
    database.exec("PRAGMA foreign_keys = ON");
    EXPECT_THROW(database.exec(R"(DELETE FROM "User" WHERE id = 2)"), SQLite::Exception);
    EXPECT_THROW(database.exec(R"(UPDATE "Opportunity" SET currentPipelineStageID = 999)"), SQLite::Exception);
}

TEST(Store, takesBackWhatIsNotCommitted) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "there.db").exitCode, 0);
    const std::string before = readFile(folder / "there.db");
    for (const auto* name : {"there.db", "new.db"}) {
        WritingStore store(folder / name);
        RecordTable<Team>(store.database()).insert(Team{.teamID = 99});
    }
    // A key of nothing is refused at once, or when it is left open to the end.
    EXPECT_THROW(
        {
            WritingStore store(folder / "new.db");
            RecordTable<Opportunity>(store.database()).insert(Opportunity{.opportunityID = 1, .assignedToID = 99});
        },
        SQLite::Exception);
    EXPECT_THROW(
        {
            WritingStore store(folder / "new.db");
            RecordTable<Pipeline>(store.database()).insert(Pipeline{.pipelineID = 1, .opportunityID = 99});
            store.commit();
        },
        SQLite::Exception);
    EXPECT_TRUE(readFile(folder / "there.db") == before);
    for (const auto* name : {"new.db", "new.db-wal", "new.db-shm"})
        EXPECT_FALSE(std::filesystem::exists(folder / name)) << name;
}

TEST(Store, leavesAloneWhatSomebodyElseMakesMeanwhile) {
    for (const bool commits : {false, true}) {
        SCOPED_TRACE(commits);
        const TemporaryFolder folder;
        std::string made;
        {
            WritingStore store(folder / "new.db");
            RecordTable<Team>(store.database()).insert(Team{.teamID = 99});
            EXPECT_FALSE(std::filesystem::exists(folder / "new.db")) << "nobody sees what is not finished";
            ASSERT_EQ(importFiles(smallExport, folder / "new.db").exitCode, 0);
            made = dumpOf(folder / "new.db");
            if (commits) {
                EXPECT_THROW(store.commit(), Failure);
            }
        }
        ASSERT_NE(made.find("GTX Pro for Cancity"), made.npos);
        EXPECT_EQ(dumpOf(folder / "new.db"), made);
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            EXPECT_THAT(entry.path().filename(), StartsWith("new.db"));
    }
}

TEST(Store, makesNoDatabaseBesideTheLogOfAnotherOrWithoutAName) {
    const TemporaryFolder folder;
    for (const auto* log : {"new.db-wal", "new.db-journal"}) {
        writeText(folder / log, "What an earlier database has left.");
        EXPECT_EQ(importFiles(smallExport, folder / "new.db").errors,
                  "kestrel: " + (folder / log).native() + ": is left of a database that is gone; remove it first\n");
        EXPECT_FALSE(std::filesystem::exists(folder / "new.db"));
        // Whoever has only read leaves an empty one.
        writeText(folder / log, "");
    }
    EXPECT_EQ(importFiles(smallExport, folder / "new.db").exitCode, 0);
    EXPECT_EQ(importFiles(smallExport, "").errors, "kestrel: \"\" is no name of a file\n");
}

TEST(Store, tellsWhichRecordIsDamaged) {
    const TemporaryFolder folder;
    ASSERT_EQ(importFiles(smallExport, folder / "crm.db").exitCode, 0);
    SQLite::Database(folder / "crm.db", SQLite::OPEN_READWRITE)
        .exec(R"(UPDATE "Opportunity" SET record = replace(record, '"units":1', '"units":"one"') WHERE id = 2)");
    const Outcome board = kestrel({"board", "--database", folder / "crm.db", "--user", "administrator"});
    EXPECT_EQ(board.exitCode, 1);
    EXPECT_THAT(board.errors,
                HasSubstr("crm.db: Opportunity/2: typeMismatch at $.units: Expected a number, found a string."));
}

}  // namespace
}  // namespace kestrel::host::test
