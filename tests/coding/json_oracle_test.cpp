#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/records/company.h>
#include <simdjson.h>

#include <random>
#include <string>

namespace {

using namespace kestrel;

/// Well-formed documents with a few bytes changed: mostly malformed, in ever new ways.
class Mutations {
  public:
    explicit Mutations(unsigned seed) : engine_(seed) {}

    std::string next() {
        std::string text = value(3);
        for (auto edits = engine_() % 3; edits > 0 && !text.empty(); --edits) {
            const std::size_t at = engine_() % text.size();
            static constexpr std::string_view bytes =
                "{}[]\",:\\ \n\t\x01\xff\xc3\xa9"
                "0123456789-+.eEtrufalsn/u";
            const char byte = bytes[engine_() % bytes.size()];
            switch (engine_() % 3) {
                case 0: text[at] = byte; break;
                case 1: text.insert(at, 1, byte); break;
                default: text.erase(at, 1); break;
            }
        }
        return text;
    }

  private:
    std::string space() { return engine_() % 4 == 0 ? std::string(engine_() % 3, ' ') + "\n" : ""; }
    std::string text() {
        static constexpr const char* parts[] = {
            "a", "é", "\\n", "\\u00e9", "\\ud83d\\ude00", "日本", "\\\"", "0123456789abcdef", ""};
        std::string made = "\"";
        for (auto i = engine_() % 4; i > 0; --i)
            made += parts[engine_() % std::size(parts)];
        return made + "\"";
    }
    std::string value(int depth) {
        std::string made = space();
        switch (depth == 0 ? 2 + engine_() % 5 : engine_() % 7) {
            case 0:
                made += "[";
                for (auto i = engine_() % 4; i > 0; --i)
                    made += value(depth - 1) + (i > 1 ? "," : "");
                made += "]";
                break;
            case 1:
                made += "{";
                for (auto i = engine_() % 4; i > 0; --i)
                    made += text() + space() + ":" + value(depth - 1) + (i > 1 ? "," : "");
                made += "}";
                break;
            case 2: made += std::to_string(static_cast<int>(engine_() % 20000) - 10000); break;
            case 3: made += std::to_string(engine_() % 100) + ".5e" + std::to_string(engine_() % 30); break;
            case 4: made += text(); break;
            case 5: made += engine_() % 2 != 0 ? "true" : "false"; break;
            default: made += "null"; break;
        }
        return made + space();
    }

    std::mt19937 engine_;
};

TEST(TheReader, agreesWithAnotherParserOnWhatIsWellFormed) {
    Mutations mutations(42);
    simdjson::dom::parser parser;
    std::size_t refused = 0;
    constexpr std::size_t documents = 60'000;
    for (std::size_t i = 0; i < documents; ++i) {
        const std::string document = mutations.next();
        const auto error = parser.parse(simdjson::padded_string(document)).error();
        const bool accepted = checkJSON(document).has_value();
        refused += accepted ? 0U : 1U;
        // The other one refuses numbers that fit no double; here they are well-formed until a type is asked for.
        if (accepted && error == simdjson::NUMBER_ERROR && document.find_first_of("eE") != std::string::npos) continue;
        ASSERT_EQ(accepted, error == simdjson::SUCCESS) << document << "\n" << simdjson::error_message(error);
    }
    EXPECT_GT(refused, documents / 5);
    EXPECT_LT(refused, documents * 4 / 5);
}

TEST(TheReader, survivesDamagedRecords) {
    Company company{.organizationID = 7,
                    .createDate = Date(0.5),
                    .name = "Genco Pura \"Olive Oil\" é",
                    .permissions = {.readPermissions = {1, 2}}};
    company.category = Category{.categoryID = 3, .color = RGBAColor{}};
    const std::string whole = *encodeJSON(company);
    std::mt19937 engine(1);
    for (int i = 0; i < 30'000; ++i) {
        std::string damaged = whole;
        for (auto edits = 1 + engine() % 3; edits > 0; --edits) {
            const std::size_t at = engine() % damaged.size();
            if (engine() % 2 == 0) {
                damaged[at] = static_cast<char>(engine());
            } else {
                damaged.erase(at, 1 + engine() % 5);
            }
            if (damaged.empty()) damaged = "1";
        }
        // Exactly as long as the text, so that a sanitizer sees every step beyond it.
        const std::vector<char> exact(damaged.begin(), damaged.end());
        const auto decoded = decodeJSON<Company>({exact.data(), exact.size()});
        const bool wellFormed = checkJSON(damaged).has_value();
        if (decoded) {
            ASSERT_TRUE(wellFormed) << damaged;
            ASSERT_EQ(decodeJSON<Company>(*encodeJSON(*decoded)), *decoded);
        } else {
            ASSERT_EQ(decoded.error().description.starts_with("Malformed"), !wellFormed)
                << decoded.error().message() << damaged;
        }
    }
}

/// Every byte changed to each that begins, continues or ends something else.
TEST(TextsOfAllKinds, areUTF8WhereTheyAreElsewhere) {
    const std::string accents =
        "Z\u00fcrich, \u00e9t\u00e9, \u00f1and\u00fa \u00fc\u00f6\u00e4 \u00df\u00e9\u00e8\u00ea\u00eb\u0416";
    for (const std::string& text :
         {accents, "a" + accents, accents + accents, std::string("ab\u65e5\u672c\u00fc\U0001f600 plain to the end"),
          std::string(33, 'x') + "\u00fc"}) {
        for (std::size_t at = 0; at < text.size(); ++at) {
            for (const int byte :
                 {0x20, 0x61, 0x7f, 0x80, 0x9f, 0xbf, 0xc0, 0xc1, 0xc2, 0xdf, 0xe0, 0xed, 0xf0, 0xf4, 0xff}) {
                std::string changed = text;
                changed[at] = static_cast<char>(byte);
                const bool isValid = simdjson::validate_utf8(changed);
                ASSERT_EQ(encodeJSON(changed).has_value(), isValid) << at << " " << byte;
                ASSERT_EQ(decodeJSON<std::string>('"' + changed + '"').has_value(), isValid) << at << " " << byte;
            }
            const std::string cut = text.substr(0, at);
            ASSERT_EQ(encodeJSON(cut).has_value(), simdjson::validate_utf8(cut)) << at;
        }
    }
}

}  // namespace
