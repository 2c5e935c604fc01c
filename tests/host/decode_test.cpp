#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/command/codable_types.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/record_types.h>

#include <algorithm>

namespace kestrel::host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The stack of the main thread that decoding has to do with, in KiB.
constexpr int smallStack = 256;

Outcome decode(const std::vector<std::string>& arguments, std::string input) {
    std::vector<std::string> all{"decode"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return kestrel(all, {.input = std::move(input), .stackLimit = smallStack});
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

struct Document {
    std::string type, text;
    /// What is printed, or the start of the error's line.
    std::string expected;
};

TEST(Decode, writesAgainWhatItHasRead) {
    for (const auto& [type, text, expected] : {
             Document{"ObjectID<Contact>", R"({"primaryKey": 42, "recordName": "Contact"})",
                      R"({"recordName":"Contact","primaryKey":42})"},
             Document{"ObjectID<URLReference>", R"({"recordName":"URLReference","primaryKey":-1})",
                      R"({"recordName":"URLReference","primaryKey":-1})"},
             Document{"[ObjectID<Team>]", R"([{"recordName":"Team","primaryKey":4.2e1}])",
                      R"([{"recordName":"Team","primaryKey":42}])"},
             Document{"LinkTarget", R"({"recordName":"Note","primaryKey":1})",
                      R"({"recordName":"Note","primaryKey":1})"},
             Document{"OccurrenceEditScope", R"({"allFuture":{}})", R"({"allFuture":{}})"},
             Document{"PipelineBoardDateRange", R"({"thisYearToDate":{}})", R"({"thisYearToDate":{}})"},
             Document{"TaskID", R"({"task":{"taskID":{"recordName":"Task","primaryKey":3}},"more":1})",
                      R"({"task":{"taskID":{"recordName":"Task","primaryKey":3}}})"},
             Document{"PermissionSet",
                      R"({"teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":1}]})",
                      R"({"teamIDs":[{"recordName":"Team","primaryKey":1},{"recordName":"Team","primaryKey":2}]})"},
             Document{"RGBAColor", R"({"red":1,"green":0.5,"blue":0,"alpha":1,"red":0})",
                      R"({"red":0,"green":0.5,"blue":0,"alpha":1})"},
             Document{"[Bool]", "[true, false]", "[true,false]"},
             Document{"String", R"("\u00e9\ud83d\ude00")", "\"é😀\""},
             Document{"Int", "-9223372036854775808", "-9223372036854775808"},
             Document{"Double", "5e-324", "5e-324"},
             Document{"Data", R"("AAEC")", R"("AAEC")"},
             Document{"Date", "-0.5", "-0.5"},
         }) {
        SCOPED_TRACE(type);
        const Outcome outcome = decode({type}, text);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.output, expected + "\n");
        EXPECT_EQ(outcome.exitCode, 0);
    }
}

TEST(Decode, writesDatesAsAsked) {
    // Noon of the same day, three hours and a half east of Greenwich.
    for (const auto& [strategy, text, expected] :
         {Document{"deferred", "510003000", "510003000"}, Document{"seconds", "1488310200", "1488310200"},
          Document{"milliseconds", "1488310200000", "1488310200000"},
          Document{"iso8601", R"("2017-03-01T12:00:00+03:30")", R"("2017-03-01T08:30:00Z")"}}) {
        EXPECT_EQ(decode({"Date", "--dates", strategy}, text).output, expected + "\n");
    }
    EXPECT_THAT(decode({"Date"}, R"("2017-03-01T12:00:00Z")").errors, StartsWith("error: typeMismatch at $: "));
    EXPECT_EQ(decode({"Date", "--dates", "iso8601"}, R"("0001-01-01T00:00:00+14:00")").exitCode, 1);
}

TEST(Decode, saysInOneLineWhatIsWrong) {
    for (const auto& [type, text, expected] : {
             Document{
                 "ObjectID<Company>", R"({"recordName":"Contact","primaryKey":42})",
                 "error: dataCorrupted at $.recordName: Mismatched record type found, got: Contact, expected: Company"},
             Document{"[String]", "[\"a\",\n  null]",
                      "error: valueNotFound at $[1]: Expected a string, found null. (line 2, column 3)"},
             Document{"RGBAColor", R"({"red":1,"green":0,"alpha":1})",
                      "error: keyNotFound at $: No value for the key \"blue\". (line 1, column 1)"},
             Document{"Bool", "1", "error: typeMismatch at $: "},
             Document{"Int", "1.5", "error: dataCorrupted at $: "},
             Document{"Int", "9223372036854775808", "error: dataCorrupted at $: "},
             Document{"Double", "1e999", "error: dataCorrupted at $: "},
             Document{"BoardData", "",
                      "error: dataCorrupted at $: Malformed JSON: the document is empty. (line 1, column 1)"},
             Document{
                 "BoardData", std::string(100'000, '['),
                 "error: dataCorrupted at $: Malformed JSON: nesting deeper than 512 levels. (line 1, column 513)"},
             Document{"String", "\"a\x01\"", "error: dataCorrupted at $: "},
             Document{"String", "\"\xff\"", "error: dataCorrupted at $: "},
             Document{"OccurrenceEditScope", R"({"\u001b[31m":{}})", "error: "},
         }) {
        SCOPED_TRACE(type + " " + text.substr(0, 40));
        const Outcome outcome = decode({type}, text);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, StartsWith(expected));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1);
        EXPECT_THAT(outcome.errors, Not(HasSubstr("\x1b")));
        EXPECT_EQ(outcome.exitCode, 1);
    }
}

TEST(Decode, byLineGivesEveryLineAVerdict) {
    using namespace std::string_literals;
    const Outcome outcome = decode({"[RGBAColor]", "--lines"},
                                   "[]\r\n"
                                   "\n"
                                   "[{\"red\":1,\"green\":0,\"blue\":0,\"alpha\":1}]\n"
                                   "[{\"red\":1,\"green\":0,\"blue\":\"0\",\"alpha\":1}]\n"
                                   "[\"\0\"]\n"
                                   "\xff\xfe\n"
                                   "[null]"s);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(
        linesOf(outcome.output),
        ElementsAre(
            R"({"value":[]})",
            R"({"error":{"kind":"dataCorrupted","path":[],"description":"Malformed JSON: the document is empty.","offset":0}})",
            R"({"value":[{"red":1,"green":0,"blue":0,"alpha":1}]})",
            R"({"error":{"kind":"typeMismatch","path":[0,"blue"],"description":"Expected a number, found a string.","offset":27}})",
            R"({"error":{"kind":"dataCorrupted","path":[],"description":"Malformed JSON: a control character in a string.","offset":2}})",
            R"({"error":{"kind":"dataCorrupted","path":[],"description":"Malformed JSON: expected a value.","offset":0}})",
            R"({"error":{"kind":"valueNotFound","path":[0],"description":"Expected an object, found null.","offset":1}})"));
}

TEST(Decode, survivesHostileDocuments) {
    const std::string nul(1, '\0');
    std::vector<std::string> documents{
        std::string(100'000, '['),
        std::string(100'000, '{'),
        R"({"opportunity":)" + std::string(10'000, '['),
        "\"" + std::string(1'000'000, '\\') + "\"",
        "\"\\ud800\"",
        std::string(1'000'000, '9'),
        "1" + std::string(100'000, '0') + "e-100000",
        std::string(1'000'000, ' ') + "x",
        "\xef\xbb\xbf\xef\xbb\xbf{}",
        nul + nul,
        "\xc0\x80\xed\xa0\x80\xf4\x90\x80\x80",
        "{\"\xff\":1}",
        "[" + std::string(2'000'000, ',') + "]",
        "{" + std::string(500, '"') + "}",
    };
    std::string deep = "1";
    for (int i = 0; i < 511; ++i)
        deep.insert(0, "{\"a\":").append("}");
    documents.push_back(deep);
    std::string input;
    for (const std::string& document : documents)
        input += document + "\n";
    for (const auto* type : {"BoardData", "BoardConfig", "LinkTarget", "[Opportunity]", "String", "Double",
                             "PermissionSet", "PipelineBoardCardPasteboardData", "ActivitySourceID"}) {
        SCOPED_TRACE(type);
        const Outcome outcome = decode({type, "--lines"}, input);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.errors, "");
        const auto verdicts = linesOf(outcome.output);
        ASSERT_EQ(verdicts.size(), documents.size());
        for (const std::string& verdict : verdicts) {
            EXPECT_TRUE(checkJSON(verdict)) << verdict.substr(0, 200);
            EXPECT_TRUE(verdict.starts_with("{\"error\":{") || verdict.starts_with("{\"value\":"));
        }
    }
}

TEST(Decode, readsALongArrayOnASmallStack) {
    std::string text = "[";
    while (text.size() < 8'000'000)
        text += R"({"recordName":"Contact","primaryKey":123456},)";
    text.back() = ']';
    const Outcome outcome = decode({"[LinkTarget]"}, text);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(outcome.output == text + "\n");
    EXPECT_TRUE(decode({"[LinkTarget]", "--lines"}, text).output == "{\"value\":" + text + "}\n");
}

TEST(Decode, answersALineBeforeTheNextOneComes) {
    const TemporaryFolder folder;
    // The second line is written only when the verdict on the first is there.
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const Outcome outcome =
        kestrel({"decode", "Int", pipe, "--lines"},
                {.tail = "> " + (folder / "verdicts").native() + " & exec 3> " + pipe +
                         "; echo 1 >&3; i=0; until grep -q . " + (folder / "verdicts").native() +
                         "; do i=$((i+1)); [ $i -gt 500 ] && exit 9; sleep 0.01; done; echo 2 >&3; exec 3>&-; wait"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(readFile(folder / "verdicts"), "{\"value\":1}\n{\"value\":2}\n");
}

TEST(Decode, knowsEveryCodableType) {
    const Outcome list = kestrel({"decode", "--list"});
    const auto names = linesOf(list.output);
    std::vector<std::string> missing;
    recordTypes.forEach([&]<class Record>(const RecordNames<Record>& record) {
        const std::string name = "ObjectID<" + std::string(record.recordName) + ">";
        if (std::ranges::find(names, name) == names.end()) missing.push_back(name);
    });
    for (const auto* name : {"LinkTarget",
                             "ActivitySourceID",
                             "AppointmentID",
                             "TaskID",
                             "PipelineBoardObjectID",
                             "OccurrenceEditScope",
                             "Opportunity",
                             "Company",
                             "Project",
                             "Group",
                             "User",
                             "Team",
                             "BoardConfig",
                             "OpportunityBoardFilter",
                             "ProjectBoardFilter",
                             "PipelineBoardSortDescriptor",
                             "PipelineBoardDateRange",
                             "NextActivity",
                             "BoardData",
                             "RGBAColor",
                             "Permissions",
                             "PermissionSet",
                             "PipelineBoardCardPasteboardData",
                             "String",
                             "Bool",
                             "Int",
                             "Double",
                             "Date",
                             "Data"}) {
        if (std::ranges::find(names, name) == names.end()) missing.emplace_back(name);
    }
    EXPECT_THAT(missing, ElementsAre());
    EXPECT_EQ(std::ranges::count(names, "UUID"), 0);
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        // What a type refuses its array refuses at the first element; the empty array every type has.
        const Recoded refused = recoderOf(name)("[[]]", {});
        ASSERT_FALSE(refused);
        EXPECT_TRUE(refused.error().path.empty());
        EXPECT_EQ(recoderOf("[" + name + "]")("[ ]", {}).value(), "[]");
        const Recoded inArray = recoderOf("[" + name + "]")("[[[]]]", {});
        ASSERT_FALSE(inArray);
        EXPECT_EQ(inArray.error().path.keys().front(), CodingKey(std::size_t{0}));
    }
}

TEST(Decode, refusesTypesAndFilesThereAreNot) {
    for (const auto* type :
         {"Contract", "[Opportunity", "[[Opportunity]]", "ObjectID<Contract>", "UUID", "opportunity"}) {
        const Outcome outcome = decode({type}, "1");
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_THAT(outcome.errors, StartsWith("kestrel: there is no type \"" + std::string(type) +
                                               "\"; there is, alone or as [TYPE]: Bool, Data, Date,"));
    }
    EXPECT_EQ(decode({}, "1").errors, "kestrel: TYPE is required; see `kestrel decode --help`\n");
    EXPECT_EQ(decode({"Int", "--dates", "roman"}, "1").exitCode, 2);
    const Outcome file = decode({"Int", "/nowhere/document.json"}, "1");
    EXPECT_EQ(file.exitCode, 1);
    EXPECT_EQ(file.errors, "kestrel: /nowhere/document.json: cannot be opened: No such file or directory\n");
}

}  // namespace
}  // namespace kestrel::host::test
