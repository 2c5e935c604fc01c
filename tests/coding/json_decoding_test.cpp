#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/object_id.h>

#include <pthread.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <thread>

namespace {

using namespace kestrel;
using enum DecodingError::Kind;

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

/// The value, or what went wrong in a form that a failing test prints.
template <class T>
std::string verdict(std::string_view document, const CodingOptions& options = {}) {
    const auto decoded = decodeJSON<T>(document, options);
    return decoded ? "value" : std::string(caseName(decoded.error().kind));
}

TEST(Integers, areExactAndOnlyIntegers) {
    const std::pair<const char*, std::int64_t> values[] = {
        {"0", 0},
        {"-0", 0},
        {"-9223372036854775808", smallest},
        {"9223372036854775807", largest},
        {"9007199254740993", 9007199254740993},
        {"42.0", 42},
        {"4.2e1", 42},
        {"4200e-2", 42},
        {"0.000000000000000000042E21", 42},
        {"420000000000000000000000e-22", 42},
        {"-9.223372036854775808e18", smallest},
        {"922337203685477580.7e1", largest},
        {"0e999999999999999999999", 0},
        {"-0.0e-5", 0},
        {"1000000000000000000", 1'000'000'000'000'000'000},
        {" \n7\t ", 7},
    };
    for (const auto& [text, value] : values)
        EXPECT_EQ(decodeJSON<std::int64_t>(text), value) << text;
    EXPECT_EQ(decodeJSON<std::int64_t>("1" + std::string(5000, '0') + "e-5000"), 1);
    EXPECT_EQ(decodeJSON<std::int64_t>("0." + std::string(5000, '0') + "1e5001"), 1);

    for (const char* text : {"1.5", "9223372036854775808", "-9223372036854775809", "1e19", "1e-1", "0.1",
                             "123456789012345678901234", "1e999999999999999999999", "4.2e0", "-1e400"}) {
        const auto decoded = decodeJSON<std::int64_t>(text);
        ASSERT_FALSE(decoded) << text;
        EXPECT_EQ(decoded.error().kind, dataCorrupted) << text;
        EXPECT_FALSE(decoded.error().description.starts_with("Malformed")) << text;
    }
    for (const char* text : {"true", "\"1\"", "[]", "{}"})
        EXPECT_EQ(verdict<std::int64_t>(text), "typeMismatch") << text;
    EXPECT_EQ(verdict<std::int64_t>("null"), "valueNotFound");
    for (const char* text : {"1", "0", "\"true\"", "null "})
        EXPECT_NE(verdict<bool>(text), "value") << text;
}

/// However many digits there are, whatever ends them, and wherever the document ends.
TEST(Digits, areReadTogether) {
    const std::string all = "1234567890123456789";
    for (std::size_t count = 1; count <= all.size(); ++count) {
        const std::string digits = all.substr(0, count);
        const std::int64_t integer = std::stoll(digits);
        for (std::size_t room = 0; room < 12; ++room) {
            const std::string behind(room, ' ');
            for (const char* sign : {"", "-"}) {
                const std::int64_t value = *sign == '-' ? -integer : integer;
                EXPECT_EQ(decodeJSON<std::int64_t>(sign + digits + behind), value);
                EXPECT_EQ(decodeJSON<std::vector<std::int64_t>>("[" + (sign + digits) + "," + behind + "0]"),
                          (std::vector<std::int64_t>{value, 0}));
                for (const char* rest : {"", ".5", ".25000001", ".0", "e2", "E-3"}) {
                    const std::string number = sign + digits + rest;
                    EXPECT_EQ(decodeJSON<double>(number + behind), std::strtod(number.c_str(), nullptr)) << number;
                }
            }
            for (const std::string& bad :
                 {"0" + digits, digits + ".", digits + "e", digits + "a", digits + "-", "+" + digits}) {
                EXPECT_EQ(verdict<std::int64_t>(bad + behind), "dataCorrupted") << bad;
                EXPECT_EQ(verdict<double>(bad + behind), "dataCorrupted") << bad;
            }
        }
    }
}

TEST(Doubles, areTheNearestOnes) {
    for (const char* text :
         {"0.1", "-0.0", "1e22", "1e23", "9007199254740993", "123456789012345678", "2.2250738585072011e-308",
          "4.9e-324", "1.7976931348623157e308", "0.30000000000000004", "7450580596923828125e-27", "-1e-7",
          "100000000000000000000000000", "1.00000000000000011102230246251565404236316680908203125"}) {
        const auto decoded = decodeJSON<double>(text);
        ASSERT_TRUE(decoded) << text;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(*decoded), std::bit_cast<std::uint64_t>(std::strtod(text, nullptr)))
            << text;
    }
    EXPECT_EQ(decodeJSON<double>("1e-400"), 0.0) << "too small to tell from zero";
    EXPECT_TRUE(std::signbit(*decodeJSON<double>("-1e-400")));
    EXPECT_EQ(verdict<double>("1e309"), "dataCorrupted");
    EXPECT_EQ(verdict<double>("-1" + std::string(400, '0')), "dataCorrupted");
    EXPECT_EQ(verdict<double>("false"), "typeMismatch");
}

TEST(Strings, areUnescapedUTF8) {
    EXPECT_EQ(decodeJSON<std::string>(R"("a\"\\\/\b\f\n\r\t\u0041\u00e9\u20ac\ud83d\ude00\u0000z")"),
              std::string("a\"\\/\b\f\n\r\tA\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\0z", 21));
    // Specials at every place of a block of sixteen, and in the tail behind it.
    for (std::size_t length = 0; length < 80; ++length) {
        // Of letters, and of those with accents.
        std::string plain(length / 2, 'x');
        for (std::size_t i = 0; length % 2 != 0 && i < plain.size(); i += 2)
            plain.replace(i, 1, "\xc3\xa9");
        EXPECT_EQ(decodeJSON<std::string>('"' + plain + '"'), plain);
        EXPECT_EQ(decodeJSON<std::string>('"' + plain + "\\n" + plain + '"'), plain + "\n" + plain);
        EXPECT_EQ(decodeJSON<std::string>('"' + plain + "\xc3\xa9" + plain + '"'), plain + "\xc3\xa9" + plain);
        for (const char* bad : {"\xff", "\xc3", "\xed\xa0\x80", "\xc0\xaf", "\xf4\x90\x80\x80", "\x01", "\\ud800",
                                "\\udc00x", "\\x", "\\u12g4", "\\ud800\\u0041"}) {
            const auto decoded = decodeJSON<std::string>('"' + plain + bad + plain + '"');
            ASSERT_FALSE(decoded) << length << bad;
            EXPECT_EQ(decoded.error().kind, dataCorrupted);
            EXPECT_EQ(decoded.error().position.offset, plain.size() + 1) << decoded.error().message();
        }
        EXPECT_EQ(verdict<std::string>('"' + plain), "dataCorrupted");
        EXPECT_EQ(verdict<std::string>('"' + plain + "\\"), "dataCorrupted");
    }
}

TEST(Documents, endWhereTheirValueEndsAndMayStartWithAMark) {
    EXPECT_EQ(decodeJSON<bool>("\xef\xbb\xbf true "), true);
    for (const char* text : {"", " ", "\xef\xbb\xbf", "true false", "true,", "tru", "truely", "[true", "nul",
                             "\xef\xbb", "\xef\xbb\xbf\xef\xbb\xbf 1", "01", "1.", "-", "+1", ".5", "1e", "\f1"}) {
        EXPECT_EQ(verdict<bool>(text), "dataCorrupted") << text;
        EXPECT_EQ(verdict<double>(text), "dataCorrupted") << text;
    }
    // The reader stays within the text: a copy that ends exactly where the document is cut shows it to a sanitizer.
    const std::string whole =
        R"([{"recordName":"Team","primaryKey":12.5e1},"long enough for a block \u00e9 of sixteen",true,null])";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(checkJSON({cut.data(), cut.size()})) << length;
    }
    EXPECT_TRUE(checkJSON(whole));
}

TEST(Nesting, isRefusedBeyondTheLimit) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_TRUE(checkJSON(nested(512)));
    const auto refused = checkJSON(nested(513));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().position.offset, 512U);
    EXPECT_FALSE(checkJSON(std::string(10'000'000, '[')));
    std::string objects;
    for (int i = 0; i < 1'000'000; ++i)
        objects += R"({"a":)";
    EXPECT_FALSE(checkJSON(objects));
    // An unknown member is skipped under the same rule, counted from the outermost level.
    const auto within = [&](std::size_t depth) {
        return R"({"red":0,"green":0,"blue":0,"alpha":1,"x":)" + nested(depth) + "}";
    };
    EXPECT_EQ(verdict<RGBAColor>(within(511)), "value");
    EXPECT_EQ(verdict<RGBAColor>(within(512)), "dataCorrupted");
}

/// Runs `work` on a thread with that much stack; a program that needs more does not come back.
void runWithStack(std::size_t bytes, void (*work)()) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        reinterpret_cast<void (*)()>(argument)();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, reinterpret_cast<void*>(work)), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

TEST(Nesting, needsNoStackOfItsOwn) {
    runWithStack(256 * 1024, [] {
        const std::string deep(20'000'000, '[');
        EXPECT_FALSE(checkJSON(deep));
        EXPECT_FALSE(decodeJSON<std::vector<RGBAColor>>(deep));
        EXPECT_FALSE(decodeJSON<RGBAColor>("{\"x\":" + deep));
        std::string objects = "{\"red\":{}";
        for (int i = 0; i < 1'000'000; ++i)
            objects += R"(,"x":{"red")";
        EXPECT_FALSE(decodeJSON<RGBAColor>(objects));
    });
}

TEST(Coding, isSafeOnManyThreads) {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 500; ++i) {
                const RGBAColor color{.red = t + 0.5, .green = static_cast<double>(i)};
                EXPECT_EQ(decodeJSON<RGBAColor>(*encodeJSON(color)), color);
                EXPECT_FALSE(decodeJSON<RGBAColor>("{\"red\":[]}"));
            }
        });
    }
}

TEST(Errors, sayWhereAndWhy) {
    const auto malformed = decodeJSON<std::vector<std::int64_t>>("[1,\n  2,\r\n\t\xc3\xa9 ]");
    ASSERT_FALSE(malformed);
    EXPECT_EQ(malformed.error().kind, dataCorrupted);
    EXPECT_TRUE(malformed.error().codingPath.empty());
    EXPECT_EQ(malformed.error().position, (TextPosition{.offset = 11, .line = 3, .column = 2}));

    const auto inside = decodeJSON<std::vector<RGBAColor>>(
        "[{\"red\":0,\"green\":0,\"blue\":0,\"alpha\":1},\n {\"red\":0,\"green\":\"x\"}]");
    ASSERT_FALSE(inside);
    EXPECT_EQ(inside.error().kind, typeMismatch);
    EXPECT_EQ(inside.error().codingPath, (CodingPath{std::size_t{1}, "green"}));
    EXPECT_EQ(inside.error().position.line, 2U);
    EXPECT_EQ(inside.error().message(),
              "typeMismatch at $[1].green: Expected a number, found a string. (line 2, column 19)");

    // What the document says reaches people in one line, and not at any length.
    const auto hostile = decodeJSON<ObjectID<Contact>>(R"({"recordName":"a\nb\u001b[31m)" + std::string(5000, 'x') +
                                                       R"(","primaryKey":1})");
    ASSERT_FALSE(hostile);
    EXPECT_TRUE(hostile.error().description.ends_with("x, expected: Contact"));
    EXPECT_NE(hostile.error().message().find("a\\u000ab\\u001b[31mxxx"), std::string::npos)
        << hostile.error().message();
    EXPECT_LT(hostile.error().message().size(), 600U);
    EXPECT_EQ(decodeJSON<bool>("\xef\xbb\xbf 1").error().position, (TextPosition{.offset = 4, .line = 1, .column = 2}));

    // Malformed text behind a mistaken value is what counts, wherever it stands.
    EXPECT_TRUE(decodeJSON<RGBAColor>(R"({"red":"x","green":[}})").error().description.starts_with("Malformed"));
    // Of several mistaken members the first in the order of declaration is reported, in whichever order they stand.
    EXPECT_EQ(decodeJSON<RGBAColor>(R"({"alpha":"x","green":null,"blue":{}})").error().description,
              "No value for the key \"red\".");
    EXPECT_EQ(decodeJSON<RGBAColor>(R"({"alpha":"x","green":null,"red":1})").error().codingPath, CodingPath{"green"});
    EXPECT_EQ((CodingPath{"a", "b c", std::size_t{3}, "1\n\""}).text(), "$.a[\"b c\"][3][\"1\\u000a\\\"\"]");
}

TEST(Keys, countByTheirLastValueAndByTheirText) {
    // An earlier value is not even looked at, whatever its kind; an escaped key is the same key.
    const auto color =
        decodeJSON<RGBAColor>(R"({"red":"x","green":1,"blue":2,"alph\u0061":3,"red":[],"r\u0065d":0.5})");
    ASSERT_TRUE(color) << color.error().message();
    EXPECT_EQ(*color, (RGBAColor{.red = 0.5, .green = 1, .blue = 2, .alpha = 3}));
    EXPECT_EQ(verdict<RGBAColor>(R"({"red":0,"green":1,"blue":2,"alpha":3,"alpha":null})"), "valueNotFound");
    for (const char* near : {"re", "reds", "Red", "red ", ""}) {
        EXPECT_EQ(verdict<RGBAColor>(R"({"green":1,"blue":2,"alpha":3,")" + std::string(near) + R"(":1})"),
                  "keyNotFound")
            << near;
    }
}

TEST(Dates, followTheStrategy) {
    const Date date(0.5 + 536457600);
    const std::pair<DateStrategy, const char*> forms[] = {
        {DateStrategy::deferred, "536457600.5"},
        {DateStrategy::secondsSince1970, "1514764800.5"},
        {DateStrategy::millisecondsSince1970, "1514764800500"},
        {DateStrategy::iso8601, "\"2018-01-01T00:00:00.5Z\""},
    };
    for (const auto& [strategy, text] : forms) {
        const CodingOptions options{.dateStrategy = strategy};
        EXPECT_EQ(encodeJSON(date, options), text);
        EXPECT_EQ(decodeJSON<Date>(text, options), date);
    }
    const CodingOptions iso{.dateStrategy = DateStrategy::iso8601};
    EXPECT_EQ(decodeJSON<Date>("\"2018-01-01T01:30:00.500+01:30\"", iso), date);
    for (const char* text : {"\"2018-02-30T00:00:00Z\"", "\"2018-01-01T24:00:00Z\"", "\"2018-01-01T00:00:00\"", "\"x\"",
                             "\"\"", "\"2018-01-01T00:00:00Zz\"", "\"2018-1-1\""}) {
        EXPECT_EQ(verdict<Date>(text, iso), "dataCorrupted") << text;
    }
    EXPECT_EQ(verdict<Date>("536457600", iso), "typeMismatch");
    EXPECT_EQ(verdict<Date>("\"2018-01-01T00:00:00Z\""), "typeMismatch");
    EXPECT_FALSE(encodeJSON(Date(1e15), iso)) << "beyond the year 9999";
}

TEST(Binary, isBase64) {
    for (const char* text : {"\"A\"", "\"AA=A\"", "\"AB==\"", "\"AAE\"", "\"A A=\"", "\"====\"", "\"AA-_\""}) {
        EXPECT_EQ(verdict<Data>(text), "dataCorrupted") << text;
    }
    Data bytes;
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(decodeJSON<Data>(*encodeJSON(bytes)), bytes);
        bytes.bytes.push_back(static_cast<std::byte>(i * 37));
    }
}

TEST(Arrays, ofAnyLengthComeBack) {
    for (const std::size_t count : {0U, 1U, 8U, 9U, 1000U}) {
        std::vector<RGBAColor> colors;
        for (std::size_t i = 0; i < count; ++i)
            colors.push_back({.red = static_cast<double>(i) / 7});
        EXPECT_EQ(decodeJSON<std::vector<RGBAColor>>(*encodeJSON(colors)), colors);
    }
    for (const char* text : {"[1,]", "[,1]", "[1 2]", "[1", "[1}", "[1,[2,3]", "]"}) {
        EXPECT_EQ(verdict<std::vector<std::int64_t>>(text), "dataCorrupted") << text;
    }
    EXPECT_EQ((decodeJSON<std::vector<std::optional<std::int64_t>>>("[1,null]")),
              (std::vector<std::optional<std::int64_t>>{1, std::nullopt}));
}

TEST(Arrays, ofBooleansComeBack) {
    const std::vector<bool> values{true, false, true};
    EXPECT_EQ(encodeJSON(values), "[true,false,true]");
    EXPECT_EQ(decodeJSON<std::vector<bool>>("[true,false,true]"), values);
    const auto wrong = decodeJSON<std::vector<bool>>("[true,1]");
    ASSERT_FALSE(wrong.has_value());
    EXPECT_EQ(wrong.error().codingPath, (CodingPath{1UL}));
}

}  // namespace
