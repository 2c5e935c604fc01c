#include "support.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/store/record_table.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/coding/json.h>

#include <algorithm>
#include <functional>

namespace kestrel::host::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> boardArguments(const Path& database, const std::string& user,
                                        const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"board", "--database", database, "--user", user};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

BoardData boardJSON(const Path& database, const std::string& user, std::vector<std::string> more = {}) {
    more.emplace_back("--json");
    const Outcome outcome = kestrel(boardArguments(database, user, more));
    EXPECT_EQ(outcome.errors, "");
    return decodeJSON<BoardData>(outcome.output).value();
}

const std::vector<std::string> stageNames{"Prospecting", "Engaging", "Won", "Lost"};

/// What a board has to show, worked out from the rows of the files alone: the deals that a condition lets through, in
/// columns, ordered by `before` and otherwise as the file has them.
using Condition = std::function<bool(const PlainDeal&)>;
using Before = std::function<bool(const PlainDeal&, const PlainDeal&)>;
std::vector<std::vector<PlainDeal>> plainBoard(const Condition& condition, const Before& before) {
    std::vector<std::vector<PlainDeal>> columns(stageNames.size());
    for (const PlainDeal& deal : plainDeals()) {
        if (!condition(deal)) continue;
        const auto stage = std::ranges::find(stageNames, deal.stage) - stageNames.begin();
        columns[static_cast<std::size_t>(stage)].push_back(deal);
    }
    for (auto& column : columns)
        std::ranges::sort(column, [&](const PlainDeal& a, const PlainDeal& b) {
            return before(a, b) || (!before(b, a) && a.row < b.row);
        });
    return columns;
}

/// Days are compared as their texts are, and a missing one comes last.
bool closesEarlier(const PlainDeal& a, const PlainDeal& b) {
    if (a.closeDate.empty() || b.closeDate.empty()) return !a.closeDate.empty();
    return a.closeDate < b.closeDate;
}
bool isWorthMore(const PlainDeal& a, const PlainDeal& b) {
    return a.value > b.value;
}

void expectBoard(const BoardData& board, const std::vector<std::vector<PlainDeal>>& expected) {
    ASSERT_EQ(board.columns.size(), expected.size());
    std::int64_t count = 0;
    double total = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(stageNames[i]);
        const BoardColumnData& column = board.columns[i];
        double columnTotal = 0;
        std::vector<std::string> expectedCards;
        std::vector<std::string> cards;
        for (const PlainDeal& deal : expected[i]) {
            columnTotal += deal.value;
            expectedCards.push_back(fmt::format("{} | {} | {} | {} | {}", deal.title(), deal.account, deal.value,
                                                deal.agent, deal.product));
        }
        for (const BoardCardData& data : column.cards) {
            const auto card = data.opportunity().value();
            cards.push_back(fmt::format("{} | {} | {} | {} | {}", card.title, card.linkedCompanies, card.value,
                                        card.avatarInfo.value().name, card.type.value()));
        }
        EXPECT_TRUE(cards == expectedCards);
        EXPECT_EQ(column.header.title, stageNames[i]);
        EXPECT_EQ(column.header.count, static_cast<std::int64_t>(expected[i].size()));
        EXPECT_EQ(column.header.total, columnTotal);
        EXPECT_TRUE(column.header.active);
        count += column.header.count;
        total += columnTotal;
    }
    EXPECT_EQ(board.count, count);
    EXPECT_EQ(board.total, total);
}

class Board : public testing::Test {
  protected:
    ImportedDatabase imported;
    Path database = imported.path();
    TemporaryFolder folder;
};

TEST_F(Board, ofTheAdministratorHasEveryDeal) {
    const BoardData board = boardJSON(database, "ADMINISTRATOR");
    expectBoard(board, plainBoard([](const auto&) { return true; }, closesEarlier));
    std::vector<std::int64_t> counts;
    for (const auto& column : board.columns)
        counts.push_back(column.header.count);
    EXPECT_EQ(counts, (std::vector<std::int64_t>{500, 1'589, 4'238, 2'473}));
    EXPECT_EQ(board.columns[2].header.total, 10'005'534);
    const Outcome text = kestrel(boardArguments(database, "administrator"));
    EXPECT_THAT(text.output, StartsWith("Sales as Administrator sees it: 8,800 opportunities, total 10,005,534\n"
                                        "Sort: Forecasted Close, Ascending\n\n"
                                        "Prospecting: 500 opportunities, total 0\n"));
    for (const auto* part :
         {"\nEngaging: 1,589 opportunities, total 0\n", "\n  … and 1,579 more\n",
          "\nWon: 4,238 opportunities, total 10,005,534\n", "\nLost: 2,473 opportunities, total 0\n"})
        EXPECT_THAT(text.output, HasSubstr(part));
}

TEST_F(Board, ofAnAgentHasTheDealsOfTheRegion) {
    const BoardData board = boardJSON(
        database, "Moses Frase",
        {"--filter", "closes=this-quarter", "--filter", "type=gtx pro", "--sort", "totalValue", "--at", "2017-08-15"});
    const auto condition = [](const PlainDeal& deal) {
        return deal.office == "Central" && deal.product == "GTX Pro" && deal.closeDate >= "2017-07-01" &&
               deal.closeDate < "2017-10-01";
    };
    const auto expected = plainBoard(condition, isWorthMore);
    ASSERT_GT(expected[2].size(), 50U);
    expectBoard(board, expected);
}

TEST_F(Board, filtersByEveryKey) {
    struct Case {
        std::vector<std::string> filters;
        Condition condition;
    };
    const auto closes = [](std::string from, std::string to) {
        return [from, to](const PlainDeal& deal) { return deal.closeDate >= from && deal.closeDate < to; };
    };
    const Case cases[]{
        {{"closes=today"}, closes("2017-08-16", "2017-08-17")},
        {{"closes=yesterday"}, closes("2017-08-15", "2017-08-16")},
        {{"closes=this-week"}, closes("2017-08-14", "2017-08-21")},
        {{"closes=last-month"}, closes("2017-07-01", "2017-08-01")},
        {{"closes=next-quarter"}, closes("2017-10-01", "2018-01-01")},
        {{"closes=this-year-to-date"}, closes("2017-01-01", "2017-08-17")},
        {{"closes=last-year"}, closes("2016-01-01", "2017-01-01")},
        {{"closes=none"}, [](const PlainDeal& deal) { return deal.closeDate.empty(); }},
        {{"created=none"}, [](const PlainDeal& deal) { return deal.engageDate.empty(); }},
        {{"created=last-year"}, [](const PlainDeal& deal) { return deal.engageDate.starts_with("2016"); }},
        {{"user=Moses Frase"}, [](const PlainDeal& deal) { return deal.agent == "Moses Frase"; }},
        {{"user=moses.frase", "category=gtx"},
         [](const PlainDeal& deal) { return deal.agent == "Moses Frase" && deal.series == "GTX"; }},
        {{"category=MG"}, [](const PlainDeal& deal) { return deal.series == "MG"; }},
        {{"type=GTX Pro", "closes=this-month"},
         [](const PlainDeal& deal) { return deal.product == "GTX Pro" && deal.closeDate.starts_with("2017-08"); }},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(fmt::format("{}", fmt::join(one.filters, " ")));
        std::vector<std::string> arguments{"--at", "2017-08-16T15:00:00+02:00"};
        for (const auto& filter : one.filters)
            arguments.insert(arguments.end(), {"--filter", filter});
        const auto expected = plainBoard(one.condition, closesEarlier);
        expectBoard(boardJSON(database, "administrator", arguments), expected);
    }
}

TEST_F(Board, takesTheMomentInTheUsersCalendar) {
    // The evening of the sixteenth in London is the seventeenth in Auckland. In New York the seventeenth starts at four
    // in London, so that midnight there, to which the deals are dated, is that of the eighteenth.
    for (const auto& [zone, at, day] : {std::tuple{"UTC", "2017-08-16T20:00:00Z", "2017-08-16"},
                                        std::tuple{"Pacific/Auckland", "2017-08-16T20:00:00Z", "2017-08-17"},
                                        std::tuple{"America/New_York", "2017-08-17", "2017-08-18"}}) {
        const Outcome outcome =
            kestrel(boardArguments(database, "administrator", {"--filter", "closes=today", "--at", at, "--json"}),
                    {.environment{{"TZ", zone}}});
        const auto count = std::ranges::count(plainDeals(), day, &PlainDeal::closeDate);
        EXPECT_EQ(decodeJSON<BoardData>(outcome.output).value().count, count) << zone << at;
    }
}

TEST_F(Board, keepsToTheLimit) {
    const BoardData board = boardJSON(database, "administrator", {"--limit", "3"});
    EXPECT_EQ(board.columns[2].cards.size(), 3U);
    EXPECT_EQ(board.columns[2].header.count, 4'238);
    EXPECT_EQ(board.count, 8'800);
    const auto linesOf = [&](const char* limit) {
        return std::ranges::count(kestrel(boardArguments(database, "administrator", {"--limit", limit})).output, '\n');
    };
    // Two lines above; a blank line, a title, a header and the cards of each column, and what is more.
    EXPECT_EQ(linesOf("1"), 2 + 4 * (3 + 1 + 1));
    EXPECT_EQ(linesOf("0"), 2 + 4 * 3 + 8'800);
}

TEST_F(Board, showsNextToEachDealItsDaysInTheStage) {
    const Outcome outcome = kestrel(boardArguments(
        database, "moses.frase", {"--at", "2017-12-31", "--filter", "user=Moses Frase", "--limit", "1"}));
    EXPECT_THAT(outcome.output, HasSubstr("Filter: Moses Frase\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("  TITLE                       COMPANY  VALUE  PROBABILITY  DAYS IN STAGE  NEXT ACTIVITY\n"
                          "  GTX Plus Basic for Cancity  Cancity  1,054         100%            305  -\n"));
    // Before it got there, nobody can say how long it has been there.
    EXPECT_THAT(kestrel(boardArguments(database, "moses.frase",
                                       {"--at", "2017-02-28", "--filter", "user=Moses Frase", "--limit", "1"}))
                    .output,
                HasSubstr("  GTX Plus Basic for Cancity  Cancity  1,054         100%              -  -\n"));
}

TEST_F(Board, leavesOutDeletedDealsAndFindsKeywords) {
    {
        SQLite::Database writable(database, SQLite::OPEN_READWRITE);
        RecordTable<Opportunity> opportunities(writable);
        for (const std::int64_t key : {1, 2}) {
            Opportunity deal = opportunities.find(key).value();
            deal.deletionDate = Date();
            opportunities.update(deal);
        }
        RecordTable<Keyword>(writable).insert(Keyword{.keywordID = 7, .name = "Fair"});
        writable.exec("INSERT INTO OpportunityKeyword(opportunityID, keywordID) VALUES(2, 7), (3, 7), (5, 7)");
    }
    EXPECT_EQ(boardJSON(database, "administrator").count, 8'798);
    EXPECT_EQ(boardJSON(database, "administrator", {"--filter", "keyword=fair"}).count, 2);
}

TEST_F(Board, comesBackAsItWasLeft) {
    const Path config = folder / "board.json";
    const auto count = [&](std::vector<std::string> more) {
        more.insert(more.end(), {"--config", config, "--at", "2017-08-16"});
        return boardJSON(database, "administrator", more).count;
    };
    const auto deals = plainDeals();
    const auto ofAgent = std::ranges::count(deals, "Moses Frase", &PlainDeal::agent);
    const auto ofAgentAndProduct = std::ranges::count_if(
        deals, [](const auto& deal) { return deal.agent == "Moses Frase" && deal.product == "MG Special"; });

    EXPECT_EQ(count({"--filter", "user=Moses Frase", "--sort", "name:reverse"}), ofAgent);
    const auto saved = decodeJSON<BoardConfig>(readFile(config)).value().opportunity().value();
    EXPECT_EQ(saved.sortDescriptor,
              PipelineBoardSortDescriptor(PipelineBoardSortKey::name, PipelineBoardSortOrder::reverse));
    EXPECT_TRUE(saved.filter.value().userID);
    EXPECT_EQ(count({}), ofAgent);
    EXPECT_EQ(count({"--filter", "type=MG Special"}), ofAgentAndProduct);
    EXPECT_EQ(count({"--sort", "created"}), ofAgentAndProduct);
    EXPECT_EQ(count({"--filter", "none", "--filter", "user=Moses Frase"}), ofAgent);
    EXPECT_EQ(count({"--filter", "none"}), 8'800);
    EXPECT_EQ(readFile(config), "{\"opportunity\":{\"_1\":{\"key\":\"created\",\"order\":\"reverse\"}}}\n");
    const auto entries = std::filesystem::directory_iterator(folder.path());
    EXPECT_EQ(std::ranges::distance(begin(entries), end(entries)), 1);
}

TEST_F(Board, refusesBrokenConfigurations) {
    struct Case {
        std::string text, message;
    };
    const Path config = folder / "board.json";
    for (const auto& [text, message] :
         {Case{R"({"opportunity":{"_1":{"key":"height","order":"forward"}}})",
               R"(: dataCorrupted at $.opportunity._1.key: No case has the raw value "height". (line 1, column 29))"},
          Case{"{", ": dataCorrupted at $: Malformed JSON"}, Case{"", ": dataCorrupted at $: Malformed JSON"},
          Case{R"({"project":{"_1":{"key":"due","order":"forward"}}})", ": is of a board of projects"}}) {
        writeText(config, text);
        const Outcome outcome = kestrel(boardArguments(database, "administrator", {"--config", config}));
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.errors, StartsWith("kestrel: " + config.native() + message));
        EXPECT_EQ(readFile(config), text);
    }
    writeText(config,
              R"({"opportunity":{"_0":{"pipelineDefinitionID":{"recordName":"PipelineDefinition","primaryKey":9}},
                         "_1":{"key":"due","order":"forward"}}})");
    EXPECT_THAT(kestrel(boardArguments(database, "administrator", {"--config", config})).errors,
                HasSubstr("PipelineDefinition/9, which the database does not have"));
}

TEST_F(Board, refusesWhatThereIsNot) {
    struct Case {
        std::string user;
        std::vector<std::string> arguments;
        int exitCode;
        std::string message;
    };
    const Case cases[]{
        {"Mosse Frase", {}, 1, R"(there is no user "Mosse Frase"; did you mean "Moses Frase")"},
        {"Snelling", {}, 1, R"(did you mean "Anna Snelling")"},
        {"zzzzzzzz", {}, 1, "there is no user \"zzzzzzzz\"\n"},
        {"", {}, 2, "--user is required, as nobody is signed in"},
        {"a\x1b[31m", {}, 1, R"(there is no user "a\u{1b}[31m")"},
        {"administrator",
         {"--filter", "size=9"},
         2,
         R"(there is no filter key "size"; there is: created, closes, user, category, type, keyword)"},
        {"administrator", {"--filter", "user"}, 2, "the filter user needs a value"},
        {"administrator",
         {"--filter", "type=GTX Pro", "--filter", "type=GTX Pro"},
         2,
         "the filter type is given twice"},
        {"administrator", {"--filter", "category=X"}, 2, R"(there is no category "X"; there is: GTX, MG, GTK)"},
        {"administrator", {"--filter", "keyword=X"}, 2, R"(there is no keyword "X"; there is none)"},
        {"administrator", {"--filter", "user=X"}, 2, R"(there is no user "X"; there is: Administrator, Anna Snelling)"},
        {"administrator",
         {"--filter", "closes=soon"},
         2,
         R"(there is no date range "soon"; there is: today, this-week)"},
        {"administrator", {"--filter", "closes=this week"}, 2, "there is no date range"},
        {"administrator", {"--sort", "size"}, 2, R"(there is no sort key "size"; there is: forecasted, due, created)"},
        {"administrator", {"--sort", "name:up"}, 2, R"(there is no sort order "up"; there is: forward, reverse)"},
        {"administrator", {"--at", "2017-02-30"}, 2, R"("2017-02-30" is no moment)"},
        {"administrator", {"--at", "9999-12-31"}, 2, R"("9999-12-31" is no moment)"},
        {"administrator", {"--limit", "-1"}, 2, R"("-1" is no number of cards)"},
        {"administrator", {"--limit", "99999999999999999999"}, 2, "is no number of cards"},
    };
    // A home where nobody is signed in.
    const TemporaryFolder home;
    const Conditions conditions{
        .environment = {{"XDG_DATA_HOME", home / "data"}, {"XDG_CONFIG_HOME", home / "config"}}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.message);
        const Outcome outcome = kestrel(boardArguments(database, one.user, one.arguments), conditions);
        EXPECT_EQ(outcome.exitCode, one.exitCode);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, AllOf(StartsWith("kestrel: "), HasSubstr(one.message)));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1);
    }
}

TEST(PipedBoard, hasNoEscapeCodesAndNoControlCharactersOfItsData) {
    const TemporaryFolder folder;
    Files files = smallExport;
    for (const auto* file : {"accounts.csv", "sales_pipeline.csv"}) {
        std::string& text = files[file];
        for (auto at = text.find("Cancity"); at != text.npos; at = text.find("Cancity", at + 7))
            text.replace(at, 7,
                         "Can\x1b]0;t\x07\xc2\x9b"
                         "31m");
    }
    writeExport(folder / "export", files);
    const Outcome import = kestrel({"import", folder / "export", "--database", folder / "crm.db"});
    ASSERT_EQ(import.errors, "");
    const std::string allOutput =
        import.output + kestrel(boardArguments(folder / "crm.db", "administrator")).output +
        kestrel({"show", "Organization/1", "--database", folder / "crm.db"}).output +
        kestrel({"access", "Opportunity/1", "--database", folder / "crm.db", "--user", "moses.frase"}).output;
    EXPECT_THAT(allOutput, HasSubstr(R"(GTX Pro for Can\u{1b}]0;t\u{7}\u{9b}31m)"));
    for (const char c : allOutput)
        ASSERT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20);
    EXPECT_THAT(allOutput, Not(HasSubstr("\xc2\x9b")));
}

}  // namespace
}  // namespace kestrel::host::test
