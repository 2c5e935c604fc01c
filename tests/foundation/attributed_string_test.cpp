#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/foundation/attributed_string.h>

#include <random>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

const TextAttributes bold{.isBold = true};
const TextAttributes italic{.isItalic = true};

AttributedString::Run run(std::size_t start, std::size_t length, const TextAttributes& attributes) {
    return {.range = {start, length}, .attributes = attributes};
}

std::vector<AttributedString::Run> runsOf(const AttributedString& text) {
    return {text.runs().begin(), text.runs().end()};
}

TEST(AttributedText, countsCodePointsAndKeepsRunsInOneForm) {
    AttributedString text("Añ日😀z", bold);
    EXPECT_EQ(text.length(), 5U);
    EXPECT_EQ(text.substring({1, 3}), "ñ日😀");
    EXPECT_EQ(text.substring({3, 99}), "😀z");
    EXPECT_EQ(text.substring({9, 1}), "");
    text.append(" and", bold);
    EXPECT_EQ(runsOf(text), std::vector{run(0, 9, bold)}) << "neighbours that look alike are one";
    text.setAttributes({2, 3}, italic);
    EXPECT_EQ(runsOf(text), (std::vector{run(0, 2, bold), run(2, 3, italic), run(5, 4, bold)}));
    text.setAttributes({4, 99}, {});
    EXPECT_EQ(runsOf(text), (std::vector{run(0, 2, bold), run(2, 2, italic)})) << "plain text is in no run";
    text.append(text);
    EXPECT_EQ(text.length(), 18U);
    EXPECT_EQ(text.attributesAt(11), italic);
    EXPECT_EQ(text.attributesAt(13), TextAttributes());
    EXPECT_EQ(text.attributesAt(99), TextAttributes());
    AttributedString whole(std::string(40, 'x'), italic);
    whole.append(whole.text());
    whole.append(whole.substring({70, 99}), bold);
    EXPECT_EQ(whole.text(), std::string(90, 'x'));
    EXPECT_EQ(runsOf(whole), (std::vector{run(0, 40, italic), run(80, 10, bold)}));
    const AttributedString taken = std::move(whole);
    whole = AttributedString();
    AttributedString source("used", bold);
    AttributedString target = std::move(source);
    source.append("x", bold);  // NOLINT(bugprone-use-after-move): empty, and as good as new
    EXPECT_EQ(source, AttributedString("x", bold));
    EXPECT_EQ(target.length(), 4U);
}

TEST(AttributedText, isAlwaysUTF8) {
    EXPECT_EQ(AttributedString("a\x80\xff\xc3").text(), "a\uFFFD\uFFFD\uFFFD") << "bytes outside of code points";
    EXPECT_EQ(AttributedString("\xc0\xaf \xed\xa0\x80 \xf4\x90\x80\x80").length(), 11U);
    AttributedString cut("\xe6\x97", italic);
    cut.append("\xa5", bold);
    EXPECT_EQ(cut.length(), 3U) << "a code point does not come about of pieces";
    EXPECT_EQ(runsOf(cut), (std::vector{run(0, 2, italic), run(2, 1, bold)}));
    EXPECT_TRUE(encodeJSON(cut).has_value());
}

/// Against a text that keeps the attributes of every code point by itself.
TEST(AttributedText, agreesWithAttributesKeptPerCodePoint) {
    std::mt19937 engine(20261121);
    const TextAttributes choices[] = {{}, bold, italic, {.link = "https://example.org"}};
    for (int round = 0; round < 300; ++round) {
        AttributedString text;
        std::vector<TextAttributes> expected;
        for (int step = 0; step < 12; ++step) {
            const TextAttributes& attributes = choices[engine() % 4];
            if (engine() % 3 == 0) {
                text.append("aé日", attributes);
                expected.insert(expected.end(), 3, attributes);
            } else {
                const AttributedString::Range range{engine() % 20, engine() % 10};
                text.setAttributes(range, attributes);
                for (std::size_t i = range.start; i < std::min(range.end(), expected.size()); ++i)
                    expected[i] = attributes;
            }
        }
        ASSERT_EQ(text.length(), expected.size());
        std::size_t behind = 0;
        for (const AttributedString::Run& each : text.runs()) {
            ASSERT_GE(each.range.start, behind);
            ASSERT_GT(each.range.length, 0U);
            ASSERT_FALSE(each.attributes.isPlain());
            behind = each.range.end();
        }
        AttributedString again;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(text.attributesAt(i), expected[i]);
            again.append(text.substring({i, 1}), expected[i]);
        }
        ASSERT_EQ(again, text) << "the same text has one form, however it came about";
        ASSERT_EQ(std::hash<AttributedString>()(again), std::hash<AttributedString>()(text));
        const auto json = encodeJSON(text);
        ASSERT_TRUE(json.has_value());
        ASSERT_EQ(decodeJSON<AttributedString>(*json), text);
    }
}

TEST(AttributedText, refusesRunsThatDoNotFitTheText) {
    const auto decode = [](const std::string& runs) {
        return decodeJSON<AttributedString>(R"({"text":"日本語","runs":[)" + runs + "]}");
    };
    const auto form = [](const std::string& start, const std::string& length) {
        return R"({"start":)" + start + R"(,"length":)" + length +
               R"(,"attributes":{"isBold":true,"isItalic":false,"isStruckThrough":false,"isUnderlined":false}})";
    };
    ASSERT_TRUE(decode(form("0", "3")).has_value());
    for (const std::string& bad :
         {form("0", "0"), form("-1", "2"), form("2", "2"), form("4", "1"), form("1", "9223372036854775807")}) {
        const auto text = decode(form("0", "1") + "," + bad);
        ASSERT_FALSE(text.has_value()) << bad;
        EXPECT_EQ(text.error().kind, DecodingError::Kind::dataCorrupted);
        EXPECT_EQ(text.error().codingPath, (CodingPath{"runs", 1UL})) << text.error().message();
    }
    EXPECT_FALSE(decode(form("1", "2") + "," + form("0", "1")).has_value()) << "out of order";
    // Alike and touching: one run.
    EXPECT_EQ(decode(form("0", "1") + "," + form("1", "2"))->runs().size(), 1U);
}

}  // namespace
