#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/records/name.h>

#include <array>
#include <map>

namespace {

using namespace kestrel;
using enum NameStyle;
using Components = NameComponents;

const Name ada{.prefix = "Dr.",
               .first = "Ada",
               .middle = "Augusta",
               .last = "Lovelace",
               .suffix = "Jr.",
               .nickname = "Addie",
               .alias = "The Enchantress"};

struct PartOfName {
    Components component;
    NamePart part;
    std::optional<std::string> Name::* text;
};
const std::array partsOfName{PartOfName{Components::prefix, NamePart::prefix, &Name::prefix},
                             PartOfName{Components::first, NamePart::first, &Name::first},
                             PartOfName{Components::middle, NamePart::middle, &Name::middle},
                             PartOfName{Components::last, NamePart::last, &Name::last},
                             PartOfName{Components::suffix, NamePart::suffix, &Name::suffix},
                             PartOfName{Components::nickname, NamePart::nickname, &Name::nickname},
                             PartOfName{Components::alias, NamePart::alias, &Name::alias}};

TEST(Name, joinsFirstAndLast) {
    EXPECT_EQ(Name::empty().composedFirstLast(), std::nullopt);
    EXPECT_EQ((Name{.first = "", .last = ""}.composedFirstLast()), std::nullopt);
    EXPECT_EQ((Name{.prefix = "Dr.", .middle = "Augusta", .alias = "Countess"}.composedFirstLast()), std::nullopt);
    EXPECT_EQ((Name{.first = "Ada", .last = ""}.composedFirstLast()), "Ada");
    EXPECT_EQ((Name{.first = "", .last = "Lovelace"}.composedFirstLast()), "Lovelace");
    EXPECT_EQ(ada.composedFirstLast(), "Ada Lovelace");
    // Never turned around: the words of the host's own fields.
    EXPECT_EQ((Name{.first = "駿", .last = "宮崎"}.composedFirstLast()), "駿 宮崎");
}

TEST(Name, hasFourStyles) {
    const auto withoutNickname = Components::all - Components::nickname;
    EXPECT_EQ(ada.localized(withoutNickname, short_), "Ada");
    EXPECT_EQ(ada.localized(Components::all, short_), "Addie");
    EXPECT_EQ(ada.localized(), "Ada Lovelace");
    EXPECT_EQ(ada.localized(Components::all, long_), "Dr. Ada Augusta Lovelace Jr.");
    EXPECT_EQ(ada.localized(Components::all, abbreviated), "AL");
    EXPECT_EQ(ada.localizedFull(), "Dr. Ada Augusta Lovelace Jr.");
    EXPECT_EQ((Name{.first = "éva", .last = "kovács"}.localized(Components::all, abbreviated, "fr")), "ÉK");
}

TEST(Name, putsTheFamilyNameWhereTheLocaleDoes) {
    const Name eva{.prefix = "Dr.", .first = "Éva", .last = "Kovács"};
    EXPECT_EQ(eva.localizedFull("hu"), "Dr. Kovács Éva");
    EXPECT_EQ(eva.localized(Components::all, medium, "hu_HU.UTF-8"), "Kovács Éva");
    EXPECT_EQ(eva.localized(Components::all, medium, "de-AT"), "Éva Kovács");
    const Name hayao{.first = "駿", .last = "宮崎"};
    for (const char* locale : {"ja", "ja_JP.UTF-8", "zh-Hant-TW", "en", "de"}) {
        EXPECT_EQ(hayao.localized(Components::all, medium, locale), "宮崎駿") << locale;
        EXPECT_EQ(hayao.localizedFull(locale).substr(0, 6), "宮崎") << locale;
    }
    EXPECT_EQ((Name{.first = "길동", .last = "홍"}.localized(Components::all, medium, "ko")), "홍길동");
    EXPECT_EQ(ada.localized(Components::all, medium, "ja"), "Ada Lovelace");
}

TEST(Name, showsNicknameAndAliasWhereTheyBelong) {
    for (const auto style : {short_, medium, long_}) {
        EXPECT_EQ(ada.localized(Components::nickname, style), "Addie");
        EXPECT_EQ(ada.localized(Components::alias, style), "The Enchantress");
        EXPECT_EQ(ada.localized(Components::prefix, style), "Dr.");
        EXPECT_EQ(ada.localized(Components::last, style), "Lovelace");
        EXPECT_EQ((Name{.alias = "The Enchantress"}.localized(Components::all, style)), "");
        EXPECT_EQ((Name{.suffix = "Jr."}.localized(Components::all, style)), "Jr.");
    }
    EXPECT_EQ(ada.localized(Components::nickname | Components::last, medium), "Lovelace");
    EXPECT_EQ(ada.localized(Components::nickname | Components::last, short_), "Addie");
    EXPECT_EQ(ada.localized(Components::first | Components::alias, long_), "Ada");
    EXPECT_EQ(ada.localized(Components::nickname, abbreviated), "A");
    EXPECT_EQ(ada.localized(Components::prefix | Components::suffix, medium), "Dr. Jr.");
    EXPECT_EQ(ada.localized(Components::prefix | Components::suffix, abbreviated), "D");
    EXPECT_EQ(ada.localized({}, long_), "");
    EXPECT_EQ(Name::empty().localizedFull(), "");
}

TEST(Name, takesWhiteSpaceForNothing) {
    for (const char* blank : {" ", "\t", "\u3000", "\u00a0\n"}) {
        EXPECT_EQ((Name{.first = "Ada", .last = "Lovelace", .nickname = blank}.localized(Components::all, short_)),
                  "Ada");
        EXPECT_EQ((Name{.first = "Ada", .nickname = blank}.localized(Components::all, short_)), "Ada");
        EXPECT_EQ((Name{.prefix = "Dr.", .first = blank}.localized(Components::all, abbreviated)), "D");
        EXPECT_EQ((Name{.first = blank, .last = blank}.localizedFull()), "");
        EXPECT_EQ((Name{.prefix = blank, .first = "Ada", .middle = blank, .last = "Lovelace"}.localizedFull()),
                  "Ada Lovelace");
    }
}

TEST(Name, leavesOutInEveryLocaleWhatItsStyleLeavesOut) {
    for (const char* locale : {"en", "de", "fi", "lt", "el", "ka", "zu", "br", "sq", "bn", "ru", "ja", "hu", "uk"}) {
        const std::string middle = ada.localized(Components::all - Components::nickname, medium, locale);
        EXPECT_THAT(middle, testing::AllOf(testing::HasSubstr("Ada"), testing::HasSubstr("Lovelace"))) << locale;
        for (const auto style : {short_, medium}) {
            const std::string text = ada.localized(Components::all, style, locale);
            for (const char* part : {"Dr.", "Augusta", "Jr."})
                EXPECT_THAT(text, testing::Not(testing::HasSubstr(part))) << locale;
        }
        EXPECT_THAT(ada.localized(Components::all, short_, locale), testing::HasSubstr("Addie")) << locale;
    }
}

TEST(Name, findsTheLanguageOfOddLocales) {
    const Name eva{.first = "Éva", .last = "Kovács"};
    for (const char* locale : {"hu-HUN", "hu_HU@currency=HUF", "hu-Latn-HU-x-private", "HU"})
        EXPECT_EQ(eva.localized(Components::all, medium, locale), "Kovács Éva") << locale;
    for (const char* locale : {"??", "-", "hu1", "x", "en-USA", "\xff\xfe", "hungarian"})
        EXPECT_EQ(eva.localized(Components::all, medium, locale), "Éva Kovács") << locale;
    const Components nickname{NameComponents::nickname.rawValue | 1 << 20};
    EXPECT_EQ(ada.localized(nickname, long_), "Addie") << "bits that mean nothing";
    // However long: linear.
    std::string words;
    for (int i = 0; i < 200'000; ++i)
        words += "a ";
    EXPECT_GT((Name{.first = words, .middle = words, .last = words}.localized(Components::all, medium, "uk").size()),
              1U);
    EXPECT_GT(
        (Name{.first = words, .middle = words, .last = words}.localized(Components::all, abbreviated, "af").size()),
        1U);
}

TEST(Name, marksEveryPartOfTheText) {
    const auto text = ada.annotated(Components::all, long_, "en");
    EXPECT_EQ(text.text(), "Dr. Ada Augusta Lovelace Jr.");
    std::vector<std::pair<std::string, std::optional<NamePart>>> marked;
    for (const auto& run : text.runs())
        marked.emplace_back(text.substring(run.range), run.attributes.namePart);
    EXPECT_EQ(marked, (decltype(marked){{"Dr.", NamePart::prefix},
                                        {"Ada", NamePart::first},
                                        {"Augusta", NamePart::middle},
                                        {"Lovelace", NamePart::last},
                                        {"Jr.", NamePart::suffix}}));
    const auto friendly = ada.annotated(Components::all, short_, "en");
    ASSERT_EQ(friendly.runs().size(), 1U);
    EXPECT_EQ(friendly.runs()[0].attributes.namePart, NamePart::nickname);
    EXPECT_EQ(ada.annotated(Components::alias).attributesAt(0).namePart, NamePart::alias);
    const Name japanese{.prefix = "博士", .first = "駿", .middle = "明", .last = "宮崎"};
    const auto runs = japanese.annotated(Components::all, long_, "ja");
    EXPECT_EQ(runs.text(), "宮崎明駿博士");
    ASSERT_EQ(runs.runs().size(), 4U);
    EXPECT_EQ(runs.runs()[1].range, (AttributedString::Range{2, 1}));
    EXPECT_EQ(runs.runs()[1].attributes.namePart, NamePart::middle);
}

// Every choice of parts that are there, absent or empty, in every style.
TEST(Name, losesNothingThatWasChosenAndLeavesNoGaps) {
    const Name katakana{.prefix = "ドクター ゼロ",
                        .first = "アルベルト",
                        .middle = "ミドル エム",
                        .last = "アインシュタイン",
                        .suffix = "ジュニア",
                        .nickname = "アル",
                        .alias = "ハカセ"};
    const Name cyrillic{.prefix = "г-н",
                        .first = "Иван",
                        .middle = "Петрович",
                        .last = "Васильев",
                        .suffix = "мл.",
                        .nickname = "Ваня",
                        .alias = "Учитель"};
    const Name twoWords{.prefix = "Prof. Dr.",
                        .first = "Mary Sue",
                        .middle = "Anne-Lise",
                        .last = "van den Berg",
                        .suffix = "the Third",
                        .nickname = "Mae Q",
                        .alias = "No One"};
    std::size_t count = 0;
    for (const char* locale :
         {"en", "de", "fr", "es", "it", "nl", "pt", "sv", "pl", "ru", "hu", "ja",  "zh", "zh-Hant", "ko",
          "ar", "bg", "ca", "cs", "he", "kk", "lv", "sq", "ta", "th", "vi", "yue", "ak", "tlh"}) {
        for (const Name* full : {&ada, &katakana, &cyrillic, &twoWords}) {
            for (int chosen = 0; chosen < 1 << 7; ++chosen) {
                const Components components{chosen};
                // The parts that are not chosen: there, or empty, or absent. It must not matter.
                Name others = *full;
                Name empties = *full;
                Name absent = *full;
                for (const auto& [component, part, text] : partsOfName) {
                    if (components.contains(component)) continue;
                    empties.*text = "";
                    absent.*text = std::nullopt;
                }
                for (const auto style : {short_, medium, long_, abbreviated}) {
                    const auto annotated = others.annotated(components, style, locale);
                    const std::string& text = annotated.text();
                    const auto trace = std::string{locale} + " " + std::to_string(chosen) + " " +
                                       std::to_string(static_cast<int>(style)) + ": " + text;
                    SCOPED_TRACE(trace);
                    ASSERT_EQ(others.localized(components, style, locale), text);
                    ASSERT_EQ(empties.localized(components, style, locale), text);
                    ASSERT_EQ(absent.localized(components, style, locale), text);
                    ++count;

                    std::map<NamePart, std::string> shown;
                    std::size_t end = 0;
                    for (const auto& run : annotated.runs()) {
                        ASSERT_GE(run.range.start, end);
                        end = run.range.end();
                        ASSERT_TRUE(run.attributes.namePart);
                        shown[*run.attributes.namePart] += annotated.substring(run.range);
                    }
                    ASSERT_LE(end, annotated.length());

                    for (const auto& [component, part, member] : partsOfName) {
                        const bool isChosen = components.contains(component);
                        const bool isExtra = part == NamePart::nickname || part == NamePart::alias;
                        if (!isChosen) {
                            ASSERT_FALSE(shown.contains(part));
                        } else if ((style == long_ && !isExtra) || components == component) {
                            ASSERT_TRUE(shown.contains(part));
                            ASSERT_TRUE(style == abbreviated || shown[part] == *(*full.*member));
                        } else if (style == medium && (part == NamePart::first || part == NamePart::last)) {
                            ASSERT_EQ(shown[part], *(*full.*member));
                        } else if (part == NamePart::alias || (part == NamePart::nickname && style != short_)) {
                            ASSERT_FALSE(shown.contains(part));
                        }
                    }
                    const auto extras = Components::nickname | Components::alias;
                    const bool hasName = !(components - extras).isEmpty() || components == Components::nickname ||
                                         components == Components::alias ||
                                         (style == short_ && components.contains(Components::nickname));
                    ASSERT_EQ(!text.empty(), hasName);

                    for (const char* gap : {"  ", " ,", ",,", ", ,"})
                        ASSERT_EQ(text.find(gap), std::string::npos);
                    if (text.empty()) continue;
                    for (const char edge : {' ', ','}) {
                        ASSERT_NE(text.front(), edge);
                        ASSERT_NE(text.back(), edge);
                    }
                    // Dots between words neither start nor end a name.
                    for (const char* dot : {"・", "·", "，", "—"}) {
                        ASSERT_FALSE(text.starts_with(dot));
                        ASSERT_FALSE(text.ends_with(dot));
                    }
                }
            }
        }
    }
    EXPECT_EQ(count, 29U * 4U * 128U * 4U);
}

TEST(Name, isCodedByItsParts) {
    const auto written = encodeJSON(ada);
    ASSERT_TRUE(written);
    EXPECT_EQ(decodeJSON<Name>(*written), ada);
    EXPECT_EQ(decodeJSON<Name>(R"({"last":"Lovelace","nickname":null})"), (Name{.last = "Lovelace"}));
    EXPECT_EQ(encodeJSON(Name{.last = "Lovelace"}), R"({"last":"Lovelace"})");
}

TEST(Name, choosesPartsByBits) {
    EXPECT_EQ(Components::all - Components::alias, Components{63});
    EXPECT_TRUE((Components::first | Components::last).contains(Components::last));
    EXPECT_FALSE(Components::first.contains(Components::first | Components::last));
    EXPECT_TRUE((Components::first & Components::last).isEmpty());
}

}  // namespace
