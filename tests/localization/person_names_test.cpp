#include <gtest/gtest.h>
#include <kestrel/localization/person_name_formatter.h>
#include <kestrel/localization/person_name_patterns.h>
#include <kestrel/localization/resource_bundle.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {
namespace {

using Length = PersonNameLength;
using Usage = PersonNameUsage;
using Formality = PersonNameFormality;
using Order = PersonNameOrder;

constexpr std::array corpora{"de", "en", "es", "fr", "hu", "ja", "nl", "zh"};

// A line "key ; value ; value" without the spaces.
std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> result;
    std::istringstream stream{line};
    for (std::string cell; std::getline(stream, cell, ';');) {
        const auto begin = cell.find_first_not_of(' ');
        const auto end = cell.find_last_not_of(" \r");
        result.push_back(begin == std::string::npos ? std::string{} : cell.substr(begin, end - begin + 1));
    }
    return result;
}

template <class Value>
Value named(const std::map<std::string, Value>& names, const std::string& name) {
    const auto found = names.find(name);
    if (found == names.end()) ADD_FAILURE() << "unknown: " << name;
    return found == names.end() ? Value{} : found->second;
}

PersonNameOptions optionsOf(const std::vector<std::string>& parameters) {
    static const std::map<std::string, Order> orders{
        {"givenFirst", Order::givenFirst}, {"surnameFirst", Order::surnameFirst}, {"sorting", Order::sorting}};
    static const std::map<std::string, Length> lengths{
        {"long", Length::long_}, {"medium", Length::medium}, {"short", Length::short_}};
    static const std::map<std::string, Usage> usages{
        {"referring", Usage::referring}, {"addressing", Usage::addressing}, {"monogram", Usage::monogram}};
    static const std::map<std::string, Formality> formalities{{"formal", Formality::formal},
                                                              {"informal", Formality::informal}};
    return {.length = named(lengths, parameters.at(2)),
            .usage = named(usages, parameters.at(3)),
            .formality = named(formalities, parameters.at(4)),
            .order = named(orders, parameters.at(1))};
}

void set(PersonName& name, const std::string& field, std::string_view text) {
    static const std::map<std::string, std::string_view PersonName::*> members{
        {"title", &PersonName::title},
        {"given", &PersonName::given},
        {"given-informal", &PersonName::givenInformal},
        {"given2", &PersonName::given2},
        {"surname", &PersonName::surname},
        {"surname-prefix", &PersonName::surnamePrefix},
        {"surname-core", &PersonName::surnameCore},
        {"surname2", &PersonName::surname2},
        {"generation", &PersonName::generation},
        {"credentials", &PersonName::credentials},
        {"locale", &PersonName::locale}};
    const auto member = members.find(field);
    ASSERT_NE(member, members.end()) << field;
    name.*member->second = text;
}

// The listed differences: the line of each is "locale ; name ; parameters", as the failure shows it.
std::set<std::string> listedDifferences() {
    std::set<std::string> listed;
    std::ifstream file(KESTREL_SOURCE_DIR "/tests/localization/person_name_differences.txt");
    EXPECT_TRUE(file.is_open());
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') continue;
        EXPECT_TRUE(listed.insert(line).second) << "twice: " << line;
    }
    return listed;
}

class PersonNameCorpus : public ::testing::TestWithParam<const char*> {};

TEST_P(PersonNameCorpus, isFormattedAsExpected) {
    const std::string locale = GetParam();
    const std::filesystem::path folder = KESTREL_SHARED_DIR "/corpora/person-names";
    if (!std::filesystem::exists(folder)) GTEST_SKIP() << "The files of expected names are not at " << folder;
    std::ifstream file(folder / (locale + ".txt"));
    ASSERT_TRUE(file.is_open());

    const PersonNameFormatter formatter(locale);
    const auto listed = listedDifferences();
    std::set<std::string> differing;
    std::vector<std::vector<std::string>> fields;
    std::string title;
    std::string expected;
    std::size_t count = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("# ")) title = line.substr(2);
        if (line.empty() || line.front() == '#') continue;
        auto parts = cells(line);
        if (parts[0] == "endName") {
            fields.clear();
        } else if (parts[0] == "name") {
            fields.push_back(std::move(parts));
        } else if (parts[0] == "expectedResult") {
            expected = parts.size() > 1 ? parts[1] : std::string{};
        } else if (parts[0] == "parameters") {
            PersonName name;
            for (const auto& field : fields)
                set(name, field.at(1), field.at(2));
            ++count;
            const auto formatted = formatter.format(name, optionsOf(parts));
            if (formatted.text == expected) continue;
            std::string difference = locale;
            difference.append(" ; ").append(title);
            for (std::size_t i = 1; i < parts.size(); ++i)
                difference.append(" ; ").append(parts[i]);
            differing.insert(difference);
            EXPECT_TRUE(listed.contains(difference))
                << difference << "\n  expected " << expected << "\n  is       " << formatted.text;
        } else {
            EXPECT_EQ(parts[0], "enum") << line;
        }
    }
    for (const auto& difference : listed) {
        if (difference.starts_with(locale + " ;")) {
            EXPECT_TRUE(differing.contains(difference)) << "listed, but as expected: " << difference;
        }
    }
    // A file that is cut short, or another form of it, must not pass.
    EXPECT_EQ(count, 336U);
}

INSTANTIATE_TEST_SUITE_P(, PersonNameCorpus, ::testing::ValuesIn(corpora),
                         [](const auto& each) { return std::string{each.param}; });

std::string formatted(std::string_view locale, const PersonName& name, const PersonNameOptions& options = {}) {
    return PersonNameFormatter(locale).format(name, options).text;
}

constexpr PersonNameOptions longFormal{.length = Length::long_, .formality = Formality::formal};

TEST(PersonNameFormatterLocales, areFoundByEveryWayToWriteThem) {
    const std::vector<std::pair<const char*, const char*>> served{{"de", "de"},
                                                                  {"de-AT", "de"},
                                                                  {"DE_at.UTF-8@euro", "de"},
                                                                  {"ja_JP.UTF-8", "ja"},
                                                                  {"sr_RS", "sr"},
                                                                  {"sr_RS@latin", "sr-Latn"},
                                                                  {"sr-ME", "sr-Latn"},
                                                                  {"zh-Hant-TW", "zh-Hant"},
                                                                  {"zh_TW", "zh-Hant"},
                                                                  {"zh-HK", "zh-Hant-HK"},
                                                                  {"zh-MO", "zh-Hant-MO"},
                                                                  {"zh-Hans-TW", "zh"},
                                                                  {"zh-yue", "yue"},
                                                                  {"en-GB", "en-GB"},
                                                                  {"pt-BR", "pt"},
                                                                  {"pt-AO", "pt-AO"},
                                                                  {"es-AR", "es-AR"},
                                                                  {"nb-NO", "nb"},
                                                                  {"iw", "he"},
                                                                  {"de-1996", "de"},
                                                                  {"de-x-none", "de"},
                                                                  {"C", "en"},
                                                                  {"POSIX", "en"},
                                                                  {"C.UTF-8", "en"},
                                                                  {"tlh", "en"},
                                                                  {"ko-Hang-KR", "ko"},
                                                                  {"ja-Hrkt", "ja"},
                                                                  {"zh-Hani", "zh"},
                                                                  {"en-Dsrt", "en"},
                                                                  {"", "en"},
                                                                  {"-", "en"},
                                                                  {"1", "en"},
                                                                  {"\xFF\xFE", "en"}};
    for (const auto& [locale, expected] : served)
        EXPECT_EQ(PersonNameFormatter(locale).locale(), expected) << locale;
    // A parent that is not what is left of the name.
    const PersonName name{.title = "Sr.", .given = "Ana", .surname = "Sol", .surname2 = "Mar", .generation = "II"};
    for (const char* region : {"es-AR", "es-CO"})
        EXPECT_EQ(formatted(region, name, longFormal), formatted("es-419", name, longFormal));
}

TEST(PersonNameFormatterLocales, followTheUserWhenNoneIsNamed) {
    const auto served = [](std::vector<std::string> preferred) {
        ResourceBundle::setPreferredLanguages(std::move(preferred));
        std::string locale{PersonNameFormatter().locale()};
        ResourceBundle::setPreferredLanguages({});
        return locale;
    };
    EXPECT_EQ(served({"sv_SE.UTF-8"}), "sv");
    EXPECT_EQ(served({"tlh", "hu", "de"}), "hu");
    EXPECT_EQ(served({"C", "hu"}), "en");
    EXPECT_EQ(served({"tlh"}), "en");
}

TEST(PersonNameFormatter, givesEveryLocaleAllItsPatterns) {
    const PersonName name{.title = "T", .given = "G", .given2 = "M", .surname = "S", .generation = "J"};
    std::size_t count = 0;
    for (const auto& key : localization::personNameRules) {
        const PersonNameFormatter formatter(key.locale);
        EXPECT_EQ(formatter.locale(), key.locale);
        for (const auto order : {Order::givenFirst, Order::surnameFirst, Order::sorting})
            for (const auto length : {Length::long_, Length::medium, Length::short_})
                for (const auto usage : {Usage::referring, Usage::addressing, Usage::monogram})
                    for (const auto formality : {Formality::formal, Formality::informal}) {
                        const auto result = formatter.format(
                            name, {.length = length, .usage = usage, .formality = formality, .order = order});
                        EXPECT_FALSE(result.runs.empty());
                        EXPECT_EQ(result.text.find_first_of("{}|"), std::string::npos) << result.text;
                        ++count;
                    }
    }
    EXPECT_GE(count, 140U * 54U);
}

TEST(PersonNameFormatter, takesTheOrderOfTheNamesLanguage) {
    const PersonName latin{.given = "Éva", .surname = "Kovács"};
    EXPECT_EQ(formatted("hu", latin, longFormal), "Kovács Éva");
    EXPECT_EQ(formatted("en", latin, longFormal), "Éva Kovács");
    EXPECT_EQ(formatted("hu", {.given = "Ada", .surname = "Lovelace", .locale = "en"}, longFormal), "Ada Lovelace");
    EXPECT_EQ(formatted("en", {.given = "Hayao", .surname = "Miyazaki", .locale = "ja-JP"}, longFormal),
              "Miyazaki Hayao");
    EXPECT_EQ(
        formatted("en",
                  {.given = "Hayao", .surname = "Miyazaki", .locale = "ja-JP", .preferredOrder = Order::givenFirst},
                  longFormal),
        "Hayao Miyazaki");
    EXPECT_EQ(formatted("en", latin, {.order = Order::sorting}), "Kovács, Éva");
}

TEST(PersonNameFormatter, writesNamesOfOtherScriptsAsTheirLanguagesDo) {
    const PersonName kanji{.given = "駿", .surname = "宮崎"};
    EXPECT_EQ(formatted("ja", kanji, longFormal), "宮崎駿");
    EXPECT_EQ(formatted("zh", kanji, longFormal), "宮崎駿");
    EXPECT_EQ(formatted("en", kanji, longFormal), "宮崎駿");
    const PersonName katakana{.given = "アルベルト", .surname = "アインシュタイン", .locale = "de-CH"};
    EXPECT_EQ(formatted("ja", katakana, longFormal), "アルベルト・アインシュタイン");
    EXPECT_EQ(formatted("de", katakana, longFormal), "アルベルト・アインシュタイン");
    EXPECT_EQ(formatted("ja", {.given = "怡安", .surname = "張", .locale = "zh-TW"}, longFormal), "張怡安");
    const PersonName latin{.given = "Albert", .surname = "Einstein"};
    EXPECT_EQ(formatted("ja", latin, longFormal), "Albert Einstein");
    EXPECT_EQ(formatted("ja", {.given = "Hayao", .surname = "Miyazaki", .locale = "ja"}, longFormal), "Miyazaki Hayao");
    EXPECT_EQ(formatted("en", {.given = "길동", .surname = "홍"}, longFormal), "홍길동");
    EXPECT_EQ(formatted("hi", {.given = "Иван", .given2 = "Петрович", .surname = "Васильев"}, longFormal),
              "Иван Петрович Васильев");
    EXPECT_EQ(formatted("ar", {.given = "Ada", .surname = "Lovelace"}, {.order = Order::sorting}), "Lovelace, Ada");
}

TEST(PersonNameFormatter, leavesNoTraceOfFieldsThatAreAbsent) {
    EXPECT_EQ(formatted("en", {.given = "Ada", .surname = "Lovelace", .credentials = "PhD"}, longFormal),
              "Ada Lovelace, PhD");
    EXPECT_EQ(formatted("ru", {.given = "Ада", .surname = "Лавлейс", .generation = "мл."}, longFormal),
              "Ада Лавлейс — мл.");
    EXPECT_EQ(formatted("ru", {.given = "Ада", .surname = "Лавлейс", .credentials = "к.н."}, longFormal),
              "Ада Лавлейс, к.н.");
    EXPECT_EQ(formatted("en", {.title = "Dr.", .credentials = "PhD"}, longFormal), "Dr., PhD");
    EXPECT_EQ(
        formatted("sq", {.surname = "Kadare", .credentials = "PhD", .preferredOrder = Order::surnameFirst}, longFormal),
        "Kadare, PhD");
    EXPECT_EQ(formatted("en", {}, longFormal), "");
    EXPECT_EQ(formatted("en", {.given = " \t\u00A0", .surname = " Lovelace\u3000"}, longFormal), "Lovelace");
    EXPECT_EQ(formatted("ca", {.given = "Mercè", .surnamePrefix = "de la", .surnameCore = "Rosa"},
                        {.length = Length::long_, .formality = Formality::formal, .order = Order::sorting}),
              "De la Rosa, Mercè");
    const PersonNameOptions sorting{.length = Length::long_, .formality = Formality::formal, .order = Order::sorting};
    for (const auto& [title, credentials, expected] :
         {std::array{"", "", "Novák, Jan"}, std::array{"Ing.", "", "Novák, Jan (Ing.)"},
          std::array{"", "Ph.D.", "Novák, Jan, Ph.D."}, std::array{"Ing.", "Ph.D.", "Novák, Jan (Ing., Ph.D.)"}}) {
        EXPECT_EQ(
            formatted("cs", {.title = title, .given = "Jan", .surname = "Novák", .credentials = credentials}, sorting),
            expected);
    }
}

TEST(PersonNameFormatter, showsTheOnlyNameOfAPerson) {
    const PersonNameOptions shortFormal{.length = Length::short_, .formality = Formality::formal};
    const PersonNameOptions friendly{
        .length = Length::short_, .usage = Usage::addressing, .formality = Formality::informal};
    for (const char* locale : {"en", "de", "ar", "ja", "ko", "bg", "kk"}) {
        EXPECT_EQ(formatted(locale, {.given = "Madonna", .locale = locale}, shortFormal), "Madonna") << locale;
        EXPECT_EQ(formatted(locale, {.surname = "Lovelace", .locale = locale}, friendly), "Lovelace") << locale;
    }
    EXPECT_EQ(PersonNameFormatter("en").format({.given = "Madonna"}, shortFormal).runs,
              (std::vector<FormattedPersonName::Run>{{PersonNameField::given, 0, 7}}));
}

TEST(PersonNameFormatter, abridgesByWordsAndLetters) {
    const PersonNameOptions shortFormal{.length = Length::short_, .formality = Formality::formal};
    const PersonNameOptions monogram{.length = Length::long_, .usage = Usage::monogram};
    EXPECT_EQ(formatted("de", {.given = "Jean-Luc", .given2 = "J.R.", .surname = "Picard"}, shortFormal),
              "J. L. J. R. Picard");
    EXPECT_EQ(formatted("fr", {.given = "Jean-Luc", .surname = "Picard"}, shortFormal), "J.-L. Picard");
    EXPECT_EQ(formatted("en", {.given = "“Bob” O’Neil", .surname = "Li"}, shortFormal), "B.O. Li");
    EXPECT_EQ(formatted("de", {.given = "E\u0301mile", .surname = "Zola"}, shortFormal), "E\u0301. Zola");
    EXPECT_EQ(formatted("en", {.given = "émile", .surname = "zola"}, monogram), "ÉZ");
    EXPECT_EQ(formatted("en", {.given = "ilker", .surname = "ışık", .locale = "en"}, monogram), "II");
    EXPECT_EQ(formatted("tr", {.given = "ilker", .surname = "ışık"}, monogram), "İI");
    EXPECT_EQ(formatted("en", {.given = "ßeta", .surname = "ﬁ"}, monogram), "SSFI");
    EXPECT_EQ(formatted("en", {.given = "👩🏽‍🚀", .surname = "🇩🇪!"}, monogram), "👩🏽‍🚀🇩🇪");
    EXPECT_EQ(formatted("hi", {.given = "निशा", .surname = "गुप्ता"}, monogram), "निगु");
    // Bytes that are no text pass through.
    EXPECT_EQ(formatted("en", {.given = "\xFF\xC3", .surname = "Li"}, longFormal), "\xFF\xC3 Li");
    EXPECT_FALSE(formatted("en", {.given = "\xFF\xC3", .surname = "\xE5\xAE"}, monogram).empty());
}

TEST(PersonNameFormatter, saysWhichFieldEachPieceCameFrom) {
    using Run = FormattedPersonName::Run;
    const auto result = PersonNameFormatter("zh").format(
        {.given = "艾达", .surnamePrefix = "冯", .surnameCore = "布鲁赫", .locale = "en"},
        {.length = Length::long_, .formality = Formality::formal, .order = Order::sorting});
    EXPECT_EQ(result.text, "布鲁赫·艾达·冯");
    EXPECT_EQ(result.runs, (std::vector<Run>{{PersonNameField::surname, 0, 9},
                                             {PersonNameField::given, 11, 6},
                                             {PersonNameField::surname, 19, 3}}));
}

TEST(PersonNameFormatter, putsRequiredFieldsInTheirPlace) {
    const PersonName name{.title = "Dr.",
                          .given = "Ada Maria",
                          .given2 = "Augusta",
                          .surnamePrefix = "von",
                          .surnameCore = "Lovelace",
                          .generation = "Jr.",
                          .credentials = "PhD"};
    PersonNameOptions options{.length = Length::short_, .formality = Formality::formal};
    EXPECT_EQ(formatted("en", name, options), "A.M.A. von Lovelace");
    options.required = PersonNameField::given2;
    EXPECT_EQ(formatted("en", name, options), "A.M.Augusta von Lovelace");
    options.required = PersonNameField::given | PersonNameField::generation;
    EXPECT_EQ(formatted("de", name, options), "Ada Maria A. von Lovelace Jr.");
    options.required = PersonNameFields::all();
    EXPECT_EQ(formatted("de", name, options), "Dr. Ada Maria Augusta von Lovelace Jr. PhD");
    options.order = Order::sorting;
    EXPECT_EQ(formatted("de", name, options), "Dr. von Lovelace, Ada Maria Augusta Jr. PhD");
}

}  // namespace
}  // namespace kestrel
