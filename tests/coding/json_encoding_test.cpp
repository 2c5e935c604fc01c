#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/records/company.h>

#include <bit>
#include <limits>
#include <numeric>
#include <random>
#include <string>

namespace {

using namespace kestrel;

TEST(EncodedDoubles, readBackBitForBit) {
    std::mt19937_64 engine(7);
    std::vector<double> values{0.0,    -0.0,          0.001,  -0.001, 0.0005,    1e12,  1e13 + 0.001, 8.9e12,
                               9.1e12, 123456789.125, 5e-324, 1e308,  0.1 + 0.2, 99.99, 100.0 / 3};
    for (int i = 0; i < 20'000; ++i) {
        const double anything = std::bit_cast<double>(engine());
        if (std::isfinite(anything)) values.push_back(anything);
        values.push_back(static_cast<double>(static_cast<std::int64_t>(engine()) >> 20) / 1000);
    }
    for (const double value : values) {
        const auto text = encodeJSON(value);
        ASSERT_TRUE(text);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(*decodeJSON<double>(*text)), std::bit_cast<std::uint64_t>(value))
            << *text;
        EXPECT_TRUE(checkJSON(*text)) << *text;
    }
    EXPECT_EQ(encodeJSON(42.0), "42");
    EXPECT_EQ(encodeJSON(10005534.5), "10005534.5");
    EXPECT_EQ(encodeJSON(-0.25), "-0.25");
}

TEST(EncodedIntegers, areWrittenAsTheStandardLibraryWritesThem) {
    std::mt19937_64 engine(11);
    std::vector<std::int64_t> values{0, std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max()};
    for (std::int64_t power = 1; power < std::numeric_limits<std::int64_t>::max() / 10; power *= 10)
        values.insert(values.end(), {power - 1, power, power + 1, -power, 9 * power, 99 * (power / 10)});
    for (int i = 0; i < 20'000; ++i)
        values.push_back(static_cast<std::int64_t>(engine()) >> (engine() % 64));
    for (const std::int64_t value : values)
        ASSERT_EQ(encodeJSON(value), std::to_string(value));
    EXPECT_EQ(encodeJSON(values).value().size(),
              std::accumulate(values.begin(), values.end(), std::size_t{1}, [](std::size_t sum, std::int64_t value) {
                  return sum + std::to_string(value).size() + 1;
              }));
}

TEST(EncodedTexts, areCopiedWhateverTheirLengthAndWhereverAnEscapeStands) {
    for (std::size_t length = 0; length < 70; ++length) {
        for (std::size_t at = 0; at <= length; ++at) {
            for (const char special : {'\\', '\n', '\x01', '\x1f', '\xc3', '~'}) {
                std::string text(length, 'x');
                text.insert(at, special == '\xc3' ? std::string("\xc3\xa9") : std::string(2, special));
                // Behind something else and in front of it, as a string and as a part of one.
                std::string expected = "[\"a\",\"";
                for (const char c : text) {
                    switch (c) {
                        case '\\': expected += "\\\\"; break;
                        case '\n': expected += "\\n"; break;
                        case '\x01': expected += "\\u0001"; break;
                        case '\x1f': expected += "\\u001f"; break;
                        default: expected += c;
                    }
                }
                ASSERT_EQ(encodeJSON(std::vector<std::string>{"a", text, "b"}), expected + "\",\"b\"]");
                std::string part;
                const std::string longer = "\"" + text + "\"";
                ASSERT_TRUE(encodeJSON(std::string_view(longer).substr(1, text.size()), part));
                ASSERT_EQ(part, expected.substr(5) + "\"");
            }
        }
    }
}

TEST(EncodedTexts, escapeWhatJSONDemands) {
    std::string every;
    for (int i = 0; i < 0x80; ++i)
        every += static_cast<char>(i);
    every += "\xc3\xa9\xf0\x9f\x98\x80";
    for (std::size_t shift = 0; shift < 17; ++shift) {
        const std::string text = std::string(shift, '-') + every;
        const auto encoded = encodeJSON(text);
        ASSERT_TRUE(encoded);
        EXPECT_EQ(decodeJSON<std::string>(*encoded), text);
    }
    EXPECT_EQ(encodeJSON("hello"), "\"hello\"") << "a literal is a text, not a pointer that is true";
    EXPECT_EQ(debugMirror(true), "true");
    EXPECT_EQ(encodeJSON(std::string("\"\\\n\x1f/")), R"("\"\\\n\u001f/")");
}

TEST(AnEncodingThatFails, leavesNothingBehind) {
    const Company good{.organizationID = 1, .name = "Kan-code"};
    Company badText = good;
    badText.extra3 = std::string(1000, 'x') + "\xed\xa0\x80";
    Company badDate = good;
    badDate.createDate = Date(std::numeric_limits<double>::infinity());

    std::string out = "[before]";
    const auto text = encodeJSON(std::vector{good, badText}, out);
    ASSERT_FALSE(text);
    EXPECT_EQ(out, "[before]");
    EXPECT_EQ(text.error().codingPath, (CodingPath{std::size_t{1}, "extra3"}));
    EXPECT_EQ(text.error().kind, EncodingError::Kind::invalidValue);
    EXPECT_EQ(text.error().description, "The text is not valid UTF-8 from byte 1000 on.");
    const auto date = encodeJSON(badDate);
    ASSERT_FALSE(date);
    EXPECT_EQ(date.error().codingPath, CodingPath{"createDate"});
    EXPECT_EQ(std::get<double>(date.error().value), std::numeric_limits<double>::infinity());
    EXPECT_FALSE(encodeJSON(std::numeric_limits<double>::quiet_NaN()));

    ASSERT_TRUE(encodeJSON(good, out));
    EXPECT_TRUE(out.starts_with("[before]{\"organizationID\""));
}

}  // namespace
