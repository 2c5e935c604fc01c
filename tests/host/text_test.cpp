#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/terminal/text.h>
#include <kestrel/coding/json.h>

#include <string>
#include <vector>

namespace kestrel::host {
namespace {

using testing::ElementsAre;

TEST(Text, isMeasuredInCells) {
    struct Case {
        std::string text;
        std::size_t width;
    };
    for (const auto& [text, width] :
         {Case{"", 0}, Case{"GTX Pro", 7}, Case{"Müller", 6}, Case{"東京", 4}, Case{"e\u0301", 1}, Case{"a\xff\xfe", 3},
          Case{"─…▌", 3}, Case{"\U0001f600", 2}}) {
        EXPECT_EQ(displayWidth(text), width) << text;
    }
}

TEST(Text, isCutToTheCellsThereAre) {
    struct Case {
        std::string text;
        std::size_t width;
        std::string fitted;
    };
    for (const auto& [text, width, expected] :
         {Case{"Cancity", 7, "Cancity"}, Case{"Cancity", 6, "Canci…"}, Case{"Cancity", 1, "…"}, Case{"Cancity", 0, ""},
          Case{"", 0, ""}, Case{"東京", 4, "東京"}, Case{"東京都", 4, "東…"}, Case{"東京都", 5, "東京…"},
          Case{"ae\u0301iou", 3, "ae\u0301…"}}) {
        EXPECT_EQ(fitted(text, width), expected);
        EXPECT_LE(displayWidth(fitted(text, width)), width);
    }
    EXPECT_EQ(padded("東京", 6), "東京  ");
    EXPECT_EQ(padded("42", 4, Alignment::right), "  42");
    EXPECT_EQ(padded("Cancity", 4), "Cancity");
}

TEST(Text, losesItsPowerOverTheTerminal) {
    using namespace std::string_literals;
    EXPECT_EQ(printable("a\tb\r\nc"), "a\\tb\\r\\nc");
    EXPECT_EQ(printable("\x1b[31m\x7f\xc2\x9b"
                        "0m\0"s),
              "\\u{1b}[31m\\u{7f}\\u{9b}0m\\u{0}");
    EXPECT_EQ(printable("\u202ecba\u2028"), "\\u{202e}cba\\u{2028}");
    EXPECT_EQ(printable("a\xff"
                        "b\xe6\x9d"),
              "a\ufffdb\ufffd\ufffd");
    EXPECT_EQ(printable("Müller 東京 \\n"), "Müller 東京 \\n");
    const std::string json = "[\"\x7f\xc2\x9b\u202e東\", \"\\u001b\"]\n";
    const std::string safe = printableJSON(json);
    EXPECT_EQ(safe, "[\"\\u007f\\u009b\\u202e東\", \"\\u001b\"]\n");
    EXPECT_EQ(decodeJSON<std::vector<std::string>>(safe), decodeJSON<std::vector<std::string>>(json));
}

TEST(Numbers, areGroupedByThousands) {
    struct Case {
        double number;
        std::string text;
    };
    for (const auto& [number, text] :
         {Case{0, "0"}, Case{-0.0, "0"}, Case{999, "999"}, Case{1000, "1,000"}, Case{10'005'534, "10,005,534"},
          Case{-1234567.5, "-1,234,567.50"}, Case{0.1 + 0.2, "0.30"}, Case{1234.005, "1,234.01"}, Case{-0.001, "0"},
          Case{999'999.999, "1,000,000"}, Case{1e15, "1e+15"}, Case{-1e300, "-1e+300"}}) {
        EXPECT_EQ(amount(number), text) << number;
    }
    EXPECT_EQ(grouped(INT64_MIN), "-9,223,372,036,854,775,808");
    EXPECT_EQ(grouped(INT64_MAX), "9,223,372,036,854,775,807");
}

TEST(Names, areFoundByWhatIsLikeThem) {
    const std::vector<std::string> names{"Moses Frase", "Anna Snelling", "moses.frase", "Donn Cantrell",
                                         "Élise Ångström"};
    EXPECT_THAT(nearNames("mosse frase", names), ElementsAre("Moses Frase", "moses.frase"));
    EXPECT_THAT(nearNames("SNELLING", names), ElementsAre("Anna Snelling"));
    EXPECT_THAT(nearNames("élise angström", names), ElementsAre("Élise Ångström"));
    EXPECT_THAT(nearNames("Wilhelmina", names), ElementsAre());
    EXPECT_THAT(nearNames("", names), ElementsAre());
    EXPECT_THAT(nearNames(std::string(100'000, 'x'), names), ElementsAre());
    EXPECT_EQ(foldedCase("ÉLISE Ångström 東京"), "élise ångström 東京");
    EXPECT_EQ(inKebabCase("thisYearToDate"), "this-year-to-date");
}

}  // namespace
}  // namespace kestrel::host
