#include "serve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/board/stage_change_message.h>
#include <host/serve/access_gate.h>
#include <host/serve/local_moment.h>
#include <host/serve/loopback_server.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "people.h"

namespace kestrel::host::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

// The deals and stages of the small export.
const ObjectID<Opportunity> newDeal = 2;
const ObjectID<Opportunity> engagedDeal = 3;
constexpr int engagingStage = 2;
constexpr int wonStage = 3;

/// The titles of the cards by column: "Engaging: GTX Pro for Isdom".
std::vector<std::string> columnsOf(const json& board) {
    std::vector<std::string> columns;
    for (const json& column : board["columns"]) {
        columns.push_back(column["title"].get<std::string>() + ":");
        for (const json& card : column["cards"])
            columns.back() += " " + card["title"].get<std::string>();
    }
    return columns;
}

class Serve : public testing::Test {
  protected:
    [[nodiscard]] static std::vector<std::string> arguments(const Path& database, const std::string& user) {
        return {"--database", database, "--user", user};
    }
    [[nodiscard]] json board(const std::string& query = "") const {
        const Reply reply = donn.get("/api/board" + query);
        EXPECT_EQ(reply.status, 200) << reply.body;
        return json::parse(reply.body);
    }
    /// The card of a deal, as the board has it.
    [[nodiscard]] json card(const ObjectID<Opportunity>& id) const {
        const json drawn = board();
        for (const json& column : drawn["columns"]) {
            for (const json& one : column["cards"]) {
                if (one["id"] == id.stringValue()) return one;
            }
        }
        throw std::runtime_error("the board has no card of " + id.stringValue());
    }
    [[nodiscard]] Reply move(const ObjectID<Opportunity>& id, int stage, json more = json::object()) const {
        more["card"] = card(id)["drag"];
        more["stage"] = stage;
        return donn.post("/api/stage-change", more.dump());
    }
    template <class Record>
    [[nodiscard]] Record stored(const ObjectID<Record>& id) const {
        ReadingStore store(database.path());
        return RecordTable<Record>(store.database()).find(id).value();
    }

    PeopleDatabase database;
    Served donn{arguments(database.path(), "Donn Cantrell")};
};

TEST_F(Serve, givesNoDataToWhoeverDoesNotKnowTheToken) {
    const std::vector<std::string> data{"/api",
                                        "/api/board",
                                        "/api/user",
                                        "/api/column?stage=1",
                                        "/api/contacts",
                                        "/api/record/Opportunity/2",
                                        "/%61pi/board",
                                        "/api/nowhere",
                                        "/api/board?token=" + donn.token()};
    const std::vector<std::string> files{
        "/", "/contacts", "/record/Opportunity/2", "/assets/app.js", "/assets/none", "//api/board", "/API/board"};
    const Served other(arguments(database.path(), "Moses Frase"));
    EXPECT_NE(other.token(), donn.token());
    std::vector<Served::Headers> strangers{
        {{"Host", donn.authority()}},
        {{"Host", donn.authority()}, {"Cookie", "X-Kestrel-Token=" + donn.token()}},
        {{"Host", donn.authority()}, {"X-Kestrel-Token", donn.token()}, {"X-Kestrel-Token", donn.token()}}};
    for (const std::string& token : {std::string(), std::string(donn.token().size(), '0'), donn.token().substr(1),
                                     donn.token() + "0", other.token()})
        strangers.push_back({{"Host", donn.authority()}, {"X-Kestrel-Token", token}});
    for (const auto& headers : strangers) {
        for (const std::string method : {"GET", "HEAD", "POST", "PUT", "DELETE", "OPTIONS", "PATCH"}) {
            for (const auto& path : data)
                EXPECT_EQ(donn.ask(method + " " + path + " HTTP/1.1", headers).status, 403) << method << " " << path;
            for (const auto& path : files) {
                const Reply reply = donn.ask(method + " " + path + " HTTP/1.1", headers);
                if (method != "GET" && method != "HEAD") {
                    EXPECT_EQ(reply.status, 403) << method << " " << path;
                }
                EXPECT_THAT(reply.body, AllOf(Not(HasSubstr("MG Special")), Not(HasSubstr(donn.token()))));
            }
        }
    }
    // In words for a page that asks, as a page for a person.
    const Reply asked = donn.ask("GET /api/board HTTP/1.1", {{"Host", donn.authority()}});
    EXPECT_EQ(json::parse(asked.body)["title"], "This is not for you.");
    const Reply page = donn.ask("GET /api/board HTTP/1.1",
                                {{"Host", donn.authority()}, {"Accept", "text/html,application/xhtml+xml"}});
    EXPECT_EQ(page.header("content-type"), "text/html; charset=utf-8");
    EXPECT_THAT(page.body, HasSubstr("kestrel serve"));
}

TEST_F(Serve, opensItsPageFromAnyLinkAndSetsNoCookie) {
    EXPECT_EQ(donn.url(), "http://" + donn.authority() + "/?token=" + donn.token());
    EXPECT_EQ(donn.token().size(), 64U);
    // A browser sends cookies of 127.0.0.1 to the servers of all its ports.
    for (const std::string& path : {"/?token=" + donn.token(), std::string("/contacts")}) {
        for (const std::string site : {"none", "same-origin", "same-site", "cross-site"}) {
            const Reply reply =
                donn.ask("GET " + path + " HTTP/1.1",
                         {{"Host", donn.authority()}, {"Sec-Fetch-Site", site}, {"Sec-Fetch-Dest", "document"}});
            EXPECT_EQ(reply.status, 200) << site;
            EXPECT_EQ(reply.header("set-cookie"), "");
            EXPECT_THAT(reply.body, AllOf(HasSubstr("<main id=\"main\""), Not(HasSubstr(donn.token()))));
        }
    }
    EXPECT_EQ(donn.get("/api/board").header("set-cookie"), "");
    for (const std::string destination : {"iframe", "script", "empty", "object"}) {
        for (const std::string path : {"/", "/assets/app.js"}) {
            const Served::Headers headers{
                {"Host", donn.authority()}, {"Sec-Fetch-Site", "same-site"}, {"Sec-Fetch-Dest", destination}};
            EXPECT_EQ(donn.ask("GET " + path + " HTTP/1.1", headers).status, 403) << destination << " " << path;
        }
    }
    Served::Headers linked = donn.ownHeaders();
    linked.insert({{"Sec-Fetch-Site", "cross-site"}, {"Sec-Fetch-Dest", "document"}});
    EXPECT_EQ(donn.ask("GET /api/board HTTP/1.1", linked).status, 403) << "data is no page";
}

TEST_F(Serve, answersToItsOwnNameAlone) {
    const auto statusFor = [&](const std::string& path, Served::Headers headers) {
        headers.emplace("X-Kestrel-Token", donn.token());
        return donn.ask("GET " + path + " HTTP/1.1", headers).status;
    };
    for (const std::string path : {"/", "/api/board"}) {
        for (const std::string& host : {std::string("evil.example"), "evil.example:" + std::to_string(donn.port()),
                                        "localhost:" + std::to_string(donn.port()), std::string("127.0.0.1"),
                                        std::string("127.0.0.1:1"), donn.authority() + "0", std::string()})
            EXPECT_EQ(statusFor(path, {{"Host", host}}), 403) << host;
        EXPECT_EQ(statusFor(path, {}), 403);
        EXPECT_EQ(statusFor(path, {{"Host", donn.authority()}, {"Host", "evil.example"}}), 403);
        EXPECT_EQ(statusFor(path, {{"Host", donn.authority()}}), 200);
    }
}

TEST_F(Serve, takesChangesFromItsOwnPageAlone) {
    const std::string before = dumpOf(database.path());
    const std::string body =
        json{{"card", card(newDeal)["drag"]}, {"stage", engagingStage}, {"start", "2017-01-01T00:00"}}.dump();
    const auto statusWith = [&](const std::string& name, const std::optional<std::string>& value) {
        Served::Headers headers = donn.changeHeaders(body.size());
        headers.erase(name);
        if (value) headers.emplace(name, *value);
        return donn.ask("POST /api/stage-change HTTP/1.1", headers, body).status;
    };
    EXPECT_EQ(statusWith("Origin", std::nullopt), 403);
    for (const std::string origin :
         {"null", "http://evil.example", "http://127.0.0.1", "http://127.0.0.1:1", "https://127.0.0.1:1", ""})
        EXPECT_EQ(statusWith("Origin", origin), 403) << origin;
    EXPECT_EQ(statusWith("Origin", "https://" + donn.authority()), 403);
    for (const std::string site : {"cross-site", "same-site", "something new"}) {
        EXPECT_EQ(statusWith("Sec-Fetch-Site", site), 403) << site;
        Served::Headers headers = donn.ownHeaders();
        headers.emplace("Sec-Fetch-Site", site);
        EXPECT_EQ(donn.ask("GET /api/board HTTP/1.1", headers).status, 403) << "a page of another port: " << site;
    }
    // What a form of another page could send without asking.
    for (const std::string type : {"text/plain", "application/x-www-form-urlencoded", "multipart/form-data; boundary=x",
                                   "application/jsonp", ""})
        EXPECT_EQ(statusWith("Content-Type", type), 415) << type;
    EXPECT_EQ(statusWith("Content-Type", std::nullopt), 415);
    EXPECT_EQ(dumpOf(database.path()), before);
    EXPECT_EQ(statusWith("Sec-Fetch-Site", "same-origin"), 200);
    EXPECT_NE(dumpOf(database.path()), before);
}

TEST_F(Serve, saysWithEveryAnswerThatNothingForeignIsLoadedAndNothingKept) {
    const std::string large(100'000, ' ');
    const std::vector<Reply> replies{
        donn.get("/"),
        donn.get("/assets/app.js"),
        donn.get("/api/board"),
        donn.get("/nowhere"),
        donn.get("/api/record/Opportunity/1"),
        donn.post("/api/stage-change", "{"),
        donn.post("/api/stage-change", large),
        donn.ask("GET / HTTP/1.1", {{"Host", donn.authority()}}),
        donn.ask("GET /?token=" + donn.token() + " HTTP/1.1", {{"Host", donn.authority()}}),
        donn.ask("BREW /coffee HTTP/1.1", donn.ownHeaders()),
        donn.get("/" + std::string(9'000, 'a'))};
    for (const Reply& reply : replies) {
        EXPECT_NE(reply.status, 0);
        EXPECT_EQ(reply.header("content-security-policy"),
                  "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; "
                  "form-action 'none'; base-uri 'none'; frame-ancestors 'none'")
            << reply.status;
        EXPECT_EQ(reply.header("x-content-type-options"), "nosniff") << reply.status;
        EXPECT_EQ(reply.header("referrer-policy"), "no-referrer") << reply.status;
        EXPECT_EQ(reply.header("cache-control"), "no-store") << reply.status;
        EXPECT_EQ(reply.headers.count("access-control-allow-origin"), 0U) << reply.status;
    }
    // What the policy forbids, the page does not have.
    const std::string page = donn.get("/").body;
    for (const std::string inlined : {"style=", "<style", "onclick", "javascript:"})
        EXPECT_THAT(page, Not(HasSubstr(inlined)));
    EXPECT_EQ(donn.get("/assets/app.js").header("content-type"), "text/javascript; charset=utf-8");
    EXPECT_EQ(donn.get("/assets/style.css").header("content-type"), "text/css; charset=utf-8");
}

TEST_F(Serve, refusesWhatIsNoChangeWithWordsAndChangesNothing) {
    const std::string before = dumpOf(database.path());
    const std::string drag = card(newDeal)["drag"];
    const auto about = [&](const json& dropped, const json& stage) {
        return json{{"card", dropped}, {"stage", stage}, {"start", "2017-01-01T00:00"}}.dump();
    };
    std::string deep = "{\"card\":";
    deep.append(5'000, '[');
    const std::vector<std::string> bodies{"",
                                          "{",
                                          "null",
                                          "[]",
                                          "\"\"",
                                          "{}",
                                          "{\"card\":1}",
                                          deep,
                                          std::string("{\"card\":\"\0\"}", 13),
                                          "{\"card\":\"\xff\"}",
                                          about("", engagingStage),
                                          about("{}", engagingStage),
                                          about("{\"id\":{\"contact\":{\"_0\":1}}}", engagingStage),
                                          about("{\"id\":{\"opportunity\":{\"_0\":\"x\"}}}", engagingStage),
                                          about(drag + drag, engagingStage),
                                          about(drag, nullptr),
                                          about(drag, "2"),
                                          about(drag, 1e30)};
    for (const std::string path : {"/api/stage-change", "/api/stage-change/options"}) {
        for (const std::string& body : bodies) {
            const Reply reply = donn.post(path, body);
            EXPECT_EQ(reply.status, 400) << body;
            EXPECT_EQ(json::parse(reply.body)["title"], "What was dropped cannot be read.") << body;
        }
    }
    // A card that nobody has, and stages that it cannot go to.
    std::string nobody = drag;
    nobody.replace(nobody.find("\"primaryKey\":2"), 14, "\"primaryKey\":9");
    for (const int stage : {0, -1, 99})
        EXPECT_EQ(donn.post("/api/stage-change", about(drag, stage)).status, 409) << stage;
    EXPECT_THAT(donn.post("/api/stage-change", about(nobody, engagingStage)).body, HasSubstr("not there any more"));
    EXPECT_EQ(dumpOf(database.path()), before);
}

TEST_F(Serve, readsNoBodyThatIsTooLargeOrHasNoLength) {
    const std::string before = dumpOf(database.path());
    const Reply large = donn.post("/api/stage-change", std::string(65 * 1024, '{'));
    EXPECT_EQ(large.status, 413);
    EXPECT_EQ(json::parse(large.body)["message"], "It may have 64 KiB.");
    Served::Headers headers = donn.changeHeaders(0);
    headers.erase("Content-Length");
    EXPECT_EQ(donn.ask("POST /api/stage-change HTTP/1.1", headers, "{}").status, 411);
    headers.emplace("Transfer-Encoding", "chunked");
    EXPECT_EQ(donn.ask("POST /api/stage-change HTTP/1.1", headers, "2\r\n{}\r\n0\r\n\r\n").status, 411);
    headers.emplace("Content-Length", "2");
    EXPECT_EQ(donn.ask("POST /api/stage-change HTTP/1.1", headers, "2\r\n{}\r\n0\r\n\r\n").status, 411);
    // A length that is announced and never comes: nobody waits for one who is refused.
    EXPECT_EQ(
        donn.ask("POST /api/stage-change HTTP/1.1", {{"Host", donn.authority()}, {"Content-Length", "9999999999"}})
            .status,
        403);
    EXPECT_EQ(dumpOf(database.path()), before);
}

TEST_F(Serve, knowsItsAddressesAndTheirMethods) {
    for (const std::string path : {"/nowhere", "/api", "/api/", "/api/boards", "/assets/", "/assets/../access_gate.cpp",
                                   "/assets/%2e%2e/application.cpp", "/etc/passwd", "/assets/%00", "/index.html"}) {
        const Reply reply = donn.get(path);
        EXPECT_EQ(reply.status, 404) << path;
        EXPECT_EQ(json::parse(reply.body)["title"], "There is nothing here.");
    }
    EXPECT_EQ(donn.get("/assets/" + std::string(5'000, 'a')).status, 414);
    EXPECT_EQ(donn.get("/" + std::string(50'000, 'a')).status, 414);
    for (const std::string method : {"PUT", "DELETE", "PATCH", "OPTIONS"}) {
        const Reply reply = donn.ask(method + " /api/board HTTP/1.1", donn.changeHeaders(0));
        EXPECT_EQ(reply.status, 405) << method;
        EXPECT_EQ(reply.header("allow"), "GET, HEAD, POST");
    }
    EXPECT_EQ(donn.post("/api/board", "{}").header("allow"), "GET, HEAD");
    EXPECT_EQ(donn.post("/", "{}").status, 405);
    EXPECT_EQ(donn.get("/api/stage-change").header("allow"), "POST");
    const Reply head = donn.ask("HEAD /api/board HTTP/1.1", donn.ownHeaders());
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.body, "");
    for (const std::string path : {"/", "/contacts", "/record/Opportunity/2", "/record/nothing"})
        EXPECT_THAT(donn.get(path).body, HasSubstr("<main id=\"main\"")) << path;
}

TEST_F(Serve, drawsTheBoardAsTheUserMaySeeIt) {
    const json all = board();
    EXPECT_THAT(columnsOf(all), ElementsAre("Prospecting: MG Special", "Engaging: GTX Pro for Isdom", "Won:", "Lost:"))
        << "the won deal is for the team Central";
    EXPECT_EQ(all["count"], 2);
    EXPECT_EQ(all["pipelines"], json::parse(R"([{"kind":"opportunities","id":1,"name":"Sales","isActive":true}])"));
    EXPECT_EQ(all["isFiltered"], false);
    EXPECT_EQ(all["filterText"], "");
    EXPECT_EQ(all["dragType"], "application/octet-stream");
    const json engaged = card(engagedDeal);
    EXPECT_EQ(engaged["companies"], "Isdom");
    EXPECT_EQ(engaged["assignee"], "Donn Cantrell");
    EXPECT_EQ(json::parse(engaged["drag"].get<std::string>()), json::parse(R"({
        "id": {"opportunity": {"_0": {"recordName": "Opportunity", "primaryKey": 3}}},
        "pipelineId": {"recordName": "PipelineDefinition", "primaryKey": 1},
        "stageId": {"recordName": "PipelineStageDefinition", "primaryKey": 2}})"));
    // Moses sees the other one, on the same database.
    const Served moses(arguments(database.path(), "Moses Frase"));
    EXPECT_THAT(columnsOf(json::parse(moses.get("/api/board").body)),
                ElementsAre("Prospecting:", "Engaging:", "Won: GTX Pro for Cancity", "Lost:"));
    EXPECT_EQ(json::parse(moses.get("/api/user").body)["name"], "Moses Frase");
    // What he may not read does not open, in words, and tells nothing of itself.
    const Reply foreign = moses.get("/api/record/Opportunity/2");
    EXPECT_EQ(foreign.status, 409);
    EXPECT_THAT(json::parse(foreign.body)["message"].get<std::string>(),
                HasSubstr("Moses Frase may not read Opportunity/2"));
    EXPECT_THAT(foreign.body, Not(HasSubstr("MG Special")));
}

TEST_F(Serve, narrowsAndSortsByTheQuery) {
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(newDeal, [](Opportunity& deal) { deal.createDate = Date::now(); });
        writer.change(engagedDeal, [](Opportunity& deal) { deal.assignedToID = mosesFrase.value(); });
    });
    const json byUser = board("?user=4");
    EXPECT_EQ(byUser["filterText"], "Moses Frase");
    EXPECT_EQ(byUser["isFiltered"], true);
    EXPECT_THAT(columnsOf(byUser), ElementsAre("Prospecting:", "Engaging: GTX Pro for Isdom", "Won:", "Lost:"));
    const json both = board("?user=4&created=today");
    EXPECT_EQ(both["filterText"], "Moses Frase, Today");
    EXPECT_EQ(both["count"], 0);
    EXPECT_THAT(columnsOf(board("?created=today")), Contains("Prospecting: MG Special"));
    EXPECT_EQ(board("?closes=none")["filterText"], "None");
    EXPECT_EQ(board("?sort=totalValue")["sort"]["order"], "reverse") << "the key's own order";
    EXPECT_EQ(board("?sort=totalValue&order=forward")["sortText"], "Total Value, Ascending");
    std::set<std::string> keys;
    const json drawn = board();
    for (const json& picker : drawn["pickers"])
        keys.insert(picker["key"]);
    EXPECT_EQ(keys, (std::set<std::string>{"user", "category", "type", "closes", "created", "keyword"}));
    for (const std::string query : {"?user=x", "?user=-1", "?user=1e3", "?created=soon", "?sort=luck", "?order=up",
                                    "?kind=contacts", "?category=99999999999999999999", "?pipeline=%27%20OR%201"})
        EXPECT_EQ(donn.get("/api/board" + query).status, 400) << query;
    EXPECT_EQ(donn.get("/api/board?pipeline=99").status, 404);
    const Reply projects = donn.get("/api/board?kind=projects");
    EXPECT_EQ(projects.status, 409);
    EXPECT_EQ(json::parse(projects.body)["message"], "There is no active pipeline of projects to show.");
}

TEST_F(Serve, givesTheCardsOfLargeColumnsInParts) {
    database.write([](PeopleDatabase::Writer& writer) {
        for (std::int64_t key = 100; key < 170; ++key) {
            writer.add(Pipeline{.pipelineID = key, .opportunityID = {}, .pipelineDefinitionID = 1});
            writer.add(PipelineStage{.pipelineStageID = key, .pipelineID = key, .pipelineStageDefinitionID = 1});
            writer.add(Opportunity{.opportunityID = key,
                                   .currentPipelineID = key,
                                   .currentPipelineStageID = key,
                                   .name = "Deal " + std::to_string(key)});
        }
    });
    const json first = board("?sort=name")["columns"][0];
    EXPECT_EQ(first["count"], 71);
    ASSERT_EQ(first["cards"].size(), 50U);
    EXPECT_EQ(first["cards"][49]["title"], "Deal 149");
    const json rest = json::parse(donn.get("/api/column?sort=name&stage=1&from=50").body);
    ASSERT_EQ(rest["cards"].size(), 21U);
    EXPECT_EQ(rest["cards"][0]["title"], "Deal 150");
    EXPECT_EQ(rest["cards"][20]["title"], "MG Special");
    EXPECT_THAT(json::parse(donn.get("/api/column?stage=1&from=9000").body)["cards"], IsEmpty());
    EXPECT_EQ(donn.get("/api/column?stage=77").status, 404);
    EXPECT_EQ(donn.get("/api/column").status, 400);
}

TEST_F(Serve, movesADroppedCardAndWritesItIntoTheHistory) {
    const Opportunity before = stored(newDeal);
    const json options = json::parse(
        donn.post("/api/stage-change/options", json{{"card", card(newDeal)["drag"]}, {"stage", engagingStage}}.dump())
            .body);
    EXPECT_EQ(options["stageName"], "Engaging");
    EXPECT_EQ(options["isRepeatingStage"], false);
    EXPECT_EQ(options["end"], "");
    EXPECT_EQ(options["note"], "");
    EXPECT_EQ(options["timeZone"], "UTC");
    EXPECT_EQ(options["requirements"], (json{{"start", true}, {"end", false}, {"note", false}}));
    const auto shown = momentOfLocalText(options["start"].get<std::string>(), Calendar::utc());
    ASSERT_TRUE(shown);
    EXPECT_LE(*shown, Date::now());
    EXPECT_EQ(dumpOf(database.path()).find("Engaged"), std::string::npos);
    EXPECT_EQ(stored(newDeal), before) << "to be asked changes nothing";

    const Reply moved =
        move(newDeal, engagingStage, {{"start", "2017-03-14T09:30"}, {"end", ""}, {"note", "Called \"back\""}});
    EXPECT_EQ(moved.status, 200) << moved.body;
    EXPECT_EQ(json::parse(moved.body)["stageName"], "Engaging");
    const Opportunity after = stored(newDeal);
    const auto row = stored(ObjectID<PipelineStageHistory>(*after.currentPipelineStageHistoryID));
    EXPECT_EQ(row.opportunityID, newDeal.value());
    EXPECT_EQ(row.startDate, moment("2017-03-14T09:30:00Z"));
    EXPECT_EQ(row.endDate, std::nullopt);
    EXPECT_EQ(row.note, "Called \"back\"");
    EXPECT_EQ(row.stageName, "Engaging");
    EXPECT_EQ(row.previousStageName, "Prospecting");
    EXPECT_EQ(row.createdByUsername, "Donn Cantrell");
    EXPECT_EQ(after.currentPipelineStageID, row.pipelineStageID);
    EXPECT_NE(after.currentPipelineStageID, before.currentPipelineStageID);
    EXPECT_THAT(columnsOf(board("?sort=name")), Contains("Engaging: GTX Pro for Isdom MG Special"));
    // The page of the deal tells of it.
    const std::string page = donn.get("/api/record/Opportunity/2").body;
    EXPECT_THAT(page, AllOf(HasSubstr("14 March 2017, 09:30"), HasSubstr("Called \\\"back\\\"")));

    const json again = json::parse(
        donn.post("/api/stage-change/options", json{{"card", card(newDeal)["drag"]}, {"stage", engagingStage}}.dump())
            .body);
    EXPECT_EQ(again["isRepeatingStage"], true);
    EXPECT_EQ(move(newDeal, wonStage, {{"start", "2017-03-15T00:00"}, {"end", "2017-03-16T00:00"}}).status, 200);
    const auto closed = stored(ObjectID<PipelineStageHistory>(*stored(newDeal).currentPipelineStageHistoryID));
    EXPECT_EQ(closed.endDate, moment("2017-03-16T00:00:00Z"));
    EXPECT_EQ(closed.note, std::nullopt);
    EXPECT_EQ(stored(row.objectID()).endDate, moment("2017-03-15T00:00:00Z"));
}

TEST_F(Serve, asksForWhatIsMissing) {
    const std::string before = dumpOf(database.path());
    const auto titleWith = [&](const json& inputs) {
        const Reply reply = move(newDeal, engagingStage, inputs);
        EXPECT_EQ(reply.status, 422) << inputs;
        return json::parse(reply.body)["title"].get<std::string>();
    };
    EXPECT_EQ(titleWith(json::object()), "The start is missing.");
    EXPECT_EQ(titleWith({{"start", " "}}), "The start is missing.");
    EXPECT_EQ(titleWith({{"start", "yesterday"}}), "The start is no date.");
    EXPECT_EQ(titleWith({{"start", "2017-02-30T00:00"}}), "The start is no date.");
    EXPECT_EQ(titleWith({{"start", "2017-03-14"}}), "The start is no date.");
    EXPECT_EQ(titleWith({{"start", "2017-03-14T09:30"}, {"end", "9999-01-01T00:00"}}), "The end is no date.");
    EXPECT_EQ(titleWith({{"start", "2017-03-14T09:30"}, {"end", "2017-03-14T09:29"}}), "The end is before the start.");
    EXPECT_EQ(dumpOf(database.path()), before);
}

TEST_F(Serve, refusesToMoveWhatTheUserMayNotWrite) {
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(newDeal, [](Opportunity& deal) { deal.permissions.writePermissions = {teamCentral}; });
    });
    const std::string drag = card(newDeal)["drag"];
    const std::string before = dumpOf(database.path());
    const Reply reply = move(newDeal, engagingStage, {{"start", "2017-03-14T09:30"}});
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(json::parse(reply.body)["title"], "You may not change this card.");
    EXPECT_EQ(dumpOf(database.path()), before);
    // A card that somebody has made up, of a deal that the user may not even see.
    std::string forged = drag;
    forged.replace(forged.find("\"primaryKey\":2"), 14, "\"primaryKey\":1");
    const Reply unseen = donn.post(
        "/api/stage-change", json{{"card", forged}, {"stage", engagingStage}, {"start", "2017-03-14T09:30"}}.dump());
    EXPECT_EQ(unseen.status, 409);
    EXPECT_EQ(json::parse(unseen.body)["title"], "The card is not there any more.");
    EXPECT_EQ(dumpOf(database.path()), before);
    // Retired since the board was drawn.
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(newDeal, [](Opportunity& deal) { deal.permissions.writePermissions = {teamEast}; });
        writer.change(ObjectID<PipelineDefinition>(1), [](PipelineDefinition& definition) { definition.active = 0; });
    });
    const Reply retired = donn.post(
        "/api/stage-change", json{{"card", drag}, {"stage", engagingStage}, {"start", "2017-03-14T09:30"}}.dump());
    EXPECT_EQ(json::parse(retired.body)["title"], "The pipeline is retired.");
}

TEST_F(Serve, tellsADatabaseThatCannotBeWrittenFromARefusal) {
    const std::string before = dumpOf(database.path());
    SQLite::Database(database.path(), SQLite::OPEN_READWRITE)
        .exec(
            "CREATE TRIGGER full BEFORE INSERT ON PipelineStageHistory BEGIN SELECT RAISE(ABORT, 'disk is full'); END");
    const Reply reply = move(newDeal, engagingStage, {{"start", "2017-03-14T09:30"}});
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(json::parse(reply.body)["title"], "The card could not be moved.");
    EXPECT_THAT(json::parse(reply.body)["message"].get<std::string>(),
                AllOf(HasSubstr("disk is full"), HasSubstr("Try again.")));
    SQLite::Database(database.path(), SQLite::OPEN_READWRITE).exec("DROP TRIGGER full");
    EXPECT_EQ(dumpOf(database.path()), before);
    // What was told of one change is not told of the next.
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(newDeal, [](Opportunity& deal) { deal.permissions.writePermissions = {teamCentral}; });
    });
    EXPECT_EQ(json::parse(move(newDeal, engagingStage, {{"start", "2017-03-14T09:30"}}).body)["title"],
              "You may not change this card.");
}

TEST(StageChangeMessages, sayEachRefusalInItsOwnWords) {
    std::set<std::string> titles;
    for (const auto error : allCases<ChangeStageError>) {
        const UserErrorMessage message = userErrorMessage(error);
        EXPECT_NE(message, UserErrorMessage::unexpectedError()) << caseName(error);
        EXPECT_TRUE(message.message.get()) << caseName(error);
        titles.insert(message.title);
    }
    EXPECT_EQ(titles.size(), allCases<ChangeStageError>.size());
}

TEST_F(Serve, carriesAnyTextOfARecordAsText) {
    const std::string hostile =
        "</script><img src=x onerror=\"alert(1)\">\u202Eevil\u2066 \\ \" \u2028 \x01 ${7*7} {{x}} "
        "\u0645\u0631\u062D\u0628\u0627";
    const ObjectID<Contact> person = 50;
    database.write([&](PeopleDatabase::Writer& writer) {
        writer.change(newDeal, [&](Opportunity& deal) { deal.name = hostile; });
        writer.add(Contact{.contactID = person, .firstName = hostile, .nickname = hostile});
    });
    const Reply reply = donn.get("/api/board");
    EXPECT_EQ(reply.header("content-type"), "application/json; charset=utf-8");
    EXPECT_EQ(card(newDeal)["title"], hostile);
    const Reply page = donn.get("/api/record/Opportunity/2");
    EXPECT_EQ(json::parse(page.body)["title"], hostile);
    const json contact = json::parse(donn.get("/api/record/Contact/50").body);
    EXPECT_EQ(contact["sections"][0]["rows"][0][1]["text"], hostile);
    EXPECT_THAT(donn.get("/").body, Not(HasSubstr("onerror"))) << "the page itself has nothing of any record";
    // What is asked for comes back as text, too.
    const Reply missing = donn.get("/api/record/%3Cimg%20src=x%3E");
    EXPECT_EQ(missing.status, 400);
    EXPECT_EQ(missing.header("content-type"), "application/json; charset=utf-8");
    const Reply forbidden = donn.ask("GET /%3Cscript%3E HTTP/1.1", {{"Host", "<script>"}, {"Accept", "text/html"}});
    EXPECT_THAT(forbidden.body, Not(HasSubstr("<script")));
}

TEST_F(Serve, opensContactsAndCompaniesWithTheirActivity) {
    const ObjectID<Contact> ada = 50;
    database.write([&](PeopleDatabase::Writer& writer) {
        writer.add(Contact{.contactID = ada, .firstName = "Ada", .lastName = "Lovelace"})
            .role({.roleID = 1, .name = "Analyst"}, ada, ObjectID<Company>(2))
            .item(Note{.noteID = 1, .createDate = moment("2017-01-02T10:00:00Z"), .title = "First call"}, ada);
    });
    const json page = json::parse(donn.get("/api/record/Contact/50").body);
    EXPECT_EQ(page["title"], "Ada Lovelace");
    EXPECT_EQ(page["kind"], "Contact");
    EXPECT_THAT(page["sections"].dump(), HasSubstr("\"record\":\"Organization/2\",\"text\":\"Isdom\""));
    EXPECT_EQ(page["activity"]["totals"][2], (json{{"label", "Notes"}, {"count", "1"}}));
    EXPECT_EQ(page["activity"]["days"][0]["heading"], "Monday, 2 January 2017");
    EXPECT_EQ(page["activity"]["days"][0]["entries"][0]["title"], "First call");
    const json company = json::parse(donn.get("/api/record/Organization/2").body);
    EXPECT_THAT(company["sections"].dump(), HasSubstr("\"record\":\"Contact/50\",\"text\":\"Ada Lovelace\""));
    const json deal = json::parse(donn.get("/api/record/Opportunity/3").body);
    EXPECT_THAT(deal["sections"].dump(), HasSubstr("\"record\":\"Organization/2\""));
    const json found = json::parse(donn.get("/api/contacts?search=love%6Cace").body);
    EXPECT_EQ(found["total"], 1);
    EXPECT_EQ(found["contacts"][0]["id"], "Contact/50");
    EXPECT_EQ(json::parse(donn.get("/api/contacts?search=nobody").body)["total"], 0);
    EXPECT_EQ(donn.get("/api/record/Contact/51").status, 404);
    EXPECT_EQ(donn.get("/api/record/User/1").status, 400);
    EXPECT_EQ(donn.get("/api/record/Opportunity/x").status, 400);
}

TEST_F(Serve, letsNoSlowClientKeepOthersWaiting) {
    std::vector<std::unique_ptr<Connection>> slow;
    for (int i = 0; i < 4; ++i) {
        slow.push_back(std::make_unique<Connection>(donn.port()));
        slow.back()->send(i % 2 == 0 ? "GET / HT" : "");
    }
    EXPECT_EQ(donn.get("/api/board").status, 200);
    EXPECT_EQ(slow[0]->reply().status, 0) << "given up, without an answer";
}

/// A server with small limits, which answers every path but "/no".
class LimitedLoopback {
  public:
    explicit LimitedLoopback(const LoopbackServer::Limits& limits) : server_(0, limits) {
        serving_ = std::thread([this] {
            hasEnded_ = server_.serve(
                [](const HTTPRequest& request) -> std::optional<HTTPResponse> {
                    if (request.path != "/no") return std::nullopt;
                    return HTTPResponse::error(HTTPStatus::forbidden, {"No.", "Why."});
                },
                [](const HTTPRequest& request) {
                    return request.path == "/large" ? HTTPResponse::json(std::string(20'000'000, ' '))
                                                    : HTTPResponse::json("0123456789");
                });
        });
    }
    ~LimitedLoopback() { stop(); }
    LimitedLoopback(const LimitedLoopback&) = delete;
    LimitedLoopback& operator=(const LimitedLoopback&) = delete;

    void stop() {
        if (!serving_.joinable()) return;
        server_.stop();
        serving_.join();
        EXPECT_TRUE(hasEnded_);
    }
    [[nodiscard]] std::unique_ptr<Connection> connected(std::string_view text = "") const {
        auto connection = std::make_unique<Connection>(server_.port());
        connection->send(text);
        return connection;
    }
    [[nodiscard]] Reply ask(std::string_view text) const { return connected(text)->reply(); }

  private:
    LoopbackServer server_;
    bool hasEnded_ = false;
    std::thread serving_;
};

class Elapsed {
  public:
    [[nodiscard]] std::chrono::duration<double> time() const { return std::chrono::steady_clock::now() - start_; }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

constexpr std::chrono::seconds soon{2};

TEST_F(Serve, answersWithTheWholeBodyWhateverRangesAreAskedFor) {
    const std::vector<std::string> ranges{"bytes=0-0",
                                          "bytes=0-0,2-3",
                                          "bytes=-5",
                                          "bytes=5-",
                                          "bytes=99999999-",
                                          "bytes=99999999-199999999",
                                          "bytes=0-9223372036854775806",
                                          "bytes=-9223372036854775806",
                                          "bytes=99999999999999999999999-",
                                          "bytes=9-3",
                                          "bytes=",
                                          "lines=1-2"};
    const auto asked = [&](const std::string& path, Served::Headers headers) {
        return donn.ask("GET " + path + " HTTP/1.1", headers);
    };
    for (const std::string path : {"/", "/assets/app.js", "/api/user", "/nowhere"}) {
        for (const auto& who : {donn.ownHeaders(), Served::Headers{{"Host", donn.authority()}},
                                Served::Headers{{"Host", "evil.example"}}}) {
            const Reply whole = asked(path, who);
            for (const auto& range : ranges) {
                for (const std::string name : {"Range", "rAnGe", "x\nRange"}) {
                    Served::Headers headers = who;
                    headers.emplace(name, range);
                    const Reply reply = asked(path, headers);
                    EXPECT_EQ(reply.status, whole.status) << path << " " << range;
                    EXPECT_EQ(reply.body, whole.body) << path << " " << range;
                    EXPECT_EQ(reply.headers, whole.headers) << path << " " << range;
                }
            }
        }
    }
}

TEST(LoopbackServers, sendBodiesAsTheyAre) {
    const LimitedLoopback server({});
    const Reply reply = server.ask("GET / HTTP/1.1\r\nAccept-Encoding: gzip, br\r\nRange: bytes=1-2\r\n\r\n");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, "0123456789");
    EXPECT_EQ(reply.header("content-encoding"), "");
    EXPECT_EQ(server.ask("GET /no HTTP/1.1\r\nRange: bytes=1-2\r\n\r\n").status, 403);
    EXPECT_EQ(server.ask("HEAD / HTTP/1.1\r\n\r\n").header("accept-ranges"), "none");
}

TEST(LoopbackServers, giveUpAClientThatSendsALittleAtATime) {
    const LimitedLoopback server({.request = std::chrono::milliseconds(400)});
    const auto head = server.connected("GET / HTTP/1.1\r\n");
    const auto body = server.connected("POST / HTTP/1.1\r\nContent-Length: 60000\r\n\r\n");
    const Elapsed elapsed;
    while (!head->isClosed() || !body->isClosed()) {
        ASSERT_LT(elapsed.time(), soon);
        head->send("a: b\r\n");
        body->send("a");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

TEST(LoopbackServers, readNoHeadWithoutAnEnd) {
    const LimitedLoopback server({});
    std::string head = "GET / HTTP/1.1\r\n";
    for (int i = 0; i < 100'000; ++i)
        head += "a: b\r\n";
    const Elapsed elapsed;
    EXPECT_EQ(server.ask(head).status, 400);
    EXPECT_EQ(server.ask("GET /" + std::string(1'000'000, 'a')).status, 414);
    EXPECT_LT(elapsed.time(), soon);
}

TEST(LoopbackServers, keepNobodyWaitingForManySlowClients) {
    const LimitedLoopback server({.connections = 4, .crowded = std::chrono::milliseconds(50)});
    std::vector<std::unique_ptr<Connection>> slow;
    for (int i = 0; i < 24; ++i)
        slow.push_back(server.connected(i % 3 == 0   ? ""
                                        : i % 3 == 1 ? "GET / HTTP/1.1\r\n"
                                                     : "GET /large HTTP/1.1\r\n\r\n"));
    const Elapsed elapsed;
    EXPECT_EQ(server.ask("GET / HTTP/1.1\r\n\r\n").body, "0123456789");
    EXPECT_LT(elapsed.time(), soon);
    EXPECT_TRUE(slow[0]->isClosed()) << "the oldest makes room";
}

TEST(LoopbackServers, endWhateverTheirClientsDo) {
    for (const std::size_t connections : {std::size_t{32}, std::size_t{2}}) {
        LimitedLoopback server({.connections = connections});
        std::vector<std::unique_ptr<Connection>> clients;
        for (int i = 0; i < 3; ++i) {
            clients.push_back(server.connected());
            clients.push_back(server.connected("GET / HTTP/1.1\r\n"));
            clients.push_back(server.connected("POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\n"));
            clients.push_back(server.connected("GET /large HTTP/1.1\r\n\r\n"));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const Elapsed elapsed;
        server.stop();
        EXPECT_LT(elapsed.time(), soon) << connections;
    }
}

TEST_F(Serve, servesOneAfterTheOtherWhateverIsAskedAtOnce) {
    std::vector<std::unique_ptr<Connection>> connections;
    for (int i = 0; i < 24; ++i) {
        connections.push_back(std::make_unique<Connection>(donn.port()));
        connections.back()->send("GET /api/board HTTP/1.1\r\nHost: " + donn.authority() +
                                 "\r\nX-Kestrel-Token: " + donn.token() + "\r\n\r\n");
    }
    for (const auto& connection : connections) {
        const Reply reply = connection->reply();
        ASSERT_EQ(reply.status, 200);
        EXPECT_EQ(json::parse(reply.body)["count"], 2);
    }
}

TEST_F(Serve, endsWhenItIsTold) {
    EXPECT_EQ(donn.get("/api/board").status, 200);
    EXPECT_EQ(donn.end(SIGTERM), 0);
    EXPECT_THROW(Connection{donn.port()}, std::runtime_error);
    Served moses(arguments(database.path(), "Moses Frase"));
    EXPECT_EQ(moses.end(SIGINT), 0) << "also before anything was asked";
}

TEST_F(Serve, endsSoonWhateverItsClientsDo) {
    EXPECT_EQ(donn.get("/api/board").status, 200);
    const Connection idle(donn.port());
    const Connection slow(donn.port());
    slow.send("GET /api/board HTTP/1.1\r\n");
    const Elapsed elapsed;
    EXPECT_EQ(donn.end(SIGTERM), 0);
    EXPECT_LT(elapsed.time(), soon);
}

TEST_F(Serve, endsAtOnceByASecondSignal) {
    const std::string drag = card(newDeal)["drag"];
    const std::string body = json{{"card", drag}, {"stage", engagingStage}, {"start", "2017-03-14T09:30"}}.dump();
    // Somebody keeps the database, so that a change waits for it.
    SQLite::Database other(database.path(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");
    const Connection waiting(donn.port());
    std::string request = "POST /api/stage-change HTTP/1.1\r\n";
    for (const auto& [name, value] : donn.changeHeaders(body.size()))
        request.append(name).append(": ").append(value).append("\r\n");
    waiting.send(request + "\r\n" + body);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const Elapsed elapsed;
    donn.send(SIGTERM);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(donn.end(SIGINT), 128 + SIGINT);
    EXPECT_LT(elapsed.time(), soon);
}

TEST_F(Serve, saysAtOnceWhyItCannotServe) {
    const Outcome unknown = database.run({"serve"}, "Nobody");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.errors, HasSubstr("Nobody"));
    EXPECT_EQ(unknown.output, "");
    EXPECT_EQ(kestrel({"serve", "--database", "/nowhere/crm.db", "--user", "administrator"}).exitCode, 1);
    const Outcome taken = database.run({"serve", "--port", std::to_string(donn.port())});
    EXPECT_EQ(taken.exitCode, 1);
    EXPECT_THAT(taken.errors, HasSubstr("cannot be used"));
    EXPECT_EQ(database.run({"serve", "--port", "70000"}).exitCode, 2);
    EXPECT_EQ(database.run({"serve", "--port", "-1"}).exitCode, 2);
    EXPECT_THAT(kestrel({"serve", "--help"}).output, AllOf(HasSubstr("--port"), HasSubstr("arrow keys")));
}

TEST_F(Serve, goesOnOnlyWhileTheSessionLasts) {
    const TemporaryFolder home;
    const std::map<std::string, std::string> environment{{"XDG_DATA_HOME", home / "data"},
                                                         {"XDG_CONFIG_HOME", home / "config"}};
    const auto run = [&](const std::vector<std::string>& command, const std::string& input = "") {
        const Outcome outcome = kestrel(command, {.input = input, .environment = environment});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    };
    run({"account", "add", "moses@example.com"}, "secret\n");
    run({"account", "add-company", "Acme", "--database", database.path()});
    run({"account", "join", "moses@example.com", "Acme", "--user", "Moses Frase"});
    run({"login", "moses@example.com"}, "secret\n");
    const Served moses({}, environment);
    EXPECT_THAT(columnsOf(json::parse(moses.get("/api/board").body)), Contains("Won: GTX Pro for Cancity"));
    run({"logout"});
    const Reply ended = moses.get("/api/board");
    EXPECT_EQ(ended.status, 401);
    EXPECT_EQ(json::parse(ended.body)["title"], "Your session has ended.");
    EXPECT_EQ(moses.post("/api/stage-change", "{}").status, 401);
    EXPECT_EQ(moses.get("/").status, 200) << "the page itself, which says so";
}

TEST(LocalMoments, areThoseThatTheClocksShow) {
    const Calendar berlin = Calendar::inZone("Europe/Berlin").value();
    EXPECT_EQ(momentOfLocalText("2017-03-14T09:30", berlin), moment("2017-03-14T08:30:00Z"));
    EXPECT_EQ(momentOfLocalText("2017-07-14T09:30:15", berlin), moment("2017-07-14T07:30:15Z"));
    EXPECT_EQ(localMomentText(moment("2017-07-14T07:30:15Z"), berlin), "2017-07-14T09:30");
    // Clocks that are turned back show it twice, those that are turned on never.
    EXPECT_EQ(momentOfLocalText("2017-10-29T02:30", berlin), moment("2017-10-29T00:30:00Z"));
    EXPECT_EQ(momentOfLocalText("2017-03-26T02:30", berlin), moment("2017-03-26T01:00:00Z"));
    EXPECT_EQ(momentOfLocalText("2017-03-14T09:30", Calendar::utc()), moment("2017-03-14T09:30:00Z"));
    for (const std::string text : {"", "2017-03-14", "2017-03-14T09:30Z", "2017-03-14T9:30", "14.03.2017 09:30",
                                   "2017-02-29T00:00", "2017-03-14T24:01", "0000-01-01T00:00", "9999-01-01T00:00"})
        EXPECT_EQ(momentOfLocalText(text, berlin), std::nullopt) << text;
    EXPECT_EQ(localMomentText(Date::distantFuture(), berlin), "");
}

TEST(AccessGates, knowTheirStandardPortWithoutItsNumber) {
    const AccessGate gate(80);
    EXPECT_TRUE(gate.url().starts_with("http://127.0.0.1/?token="));
    const auto token = gate.url().substr(gate.url().find('=') + 1);
    HTTPRequest request{
        .method = "GET", .path = "/api/board", .headers = {{"host", "127.0.0.1"}, {"x-kestrel-token", token}}};
    EXPECT_FALSE(gate.answer(request));
    request.headers = {{"host", "127.0.0.1:80"}, {"x-kestrel-token", token}};
    EXPECT_TRUE(gate.answer(request));
}

}  // namespace
}  // namespace kestrel::host::test
