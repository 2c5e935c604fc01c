#include <kestrel/localization/language_choice.h>
#include <kestrel/localization/localized.h>
#include <kestrel/localization/resource_bundle.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace kestrel {
namespace {

using Names = std::vector<std::string>;

class LanguageChoice : public ::testing::Test {
  protected:
    static std::string chosen(const Names& preferred, const Names& available = {"de", "en", "es", "fr", "ja"}) {
        return localization::chooseLanguage(preferred, available, "en");
    }
};

TEST_F(LanguageChoice, FallsBackFromTheRegionToTheLanguageToEnglish) {
    EXPECT_EQ(chosen({"de_AT"}), "de");
    EXPECT_EQ(chosen({"de_AT.UTF-8@euro"}), "de");
    EXPECT_EQ(chosen({"it_IT.UTF-8"}), "en");
    EXPECT_EQ(chosen({}), "en");
    EXPECT_EQ(chosen({"dex"}), "en");
}

TEST_F(LanguageChoice, PrefersTheMostExactName) {
    EXPECT_EQ(chosen({"de_AT"}, {"de", "de_AT", "en"}), "de_AT");
    EXPECT_EQ(chosen({"pt_BR.UTF-8"}, {"pt", "pt_BR"}), "pt_BR");
    EXPECT_EQ(chosen({"sr_RS.UTF-8@latin"}, {"sr", "sr@latin"}), "sr@latin");
}

TEST_F(LanguageChoice, UnderstandsTags) {
    EXPECT_EQ(chosen({"DE-at"}), "de");
    EXPECT_EQ(chosen({"zh-Hant-TW"}, {"zh", "zh_Hant"}), "zh_Hant");
}

TEST_F(LanguageChoice, TakesTheFirstPreferenceThatTheBundleHas) {
    EXPECT_EQ(chosen({"it", "fr_CA", "de"}), "fr");
    EXPECT_EQ(chosen({"en_GB", "de"}), "en");
}

TEST_F(LanguageChoice, TakesTheUntranslatedLocaleForEnglish) {
    EXPECT_EQ(chosen({"C", "de"}), "en");
    EXPECT_EQ(chosen({"C.UTF-8", "de"}), "en");
    EXPECT_EQ(chosen({"it", "POSIX", "de"}), "en");
}

// A child process with an environment of its own.
[[noreturn]] void lookUpToday(const std::map<std::string, std::string>& environment) {
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
        unsetenv(name);
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::cerr << localized("Today", "") << '\n';
    std::_Exit(0);
}

class EnvironmentLanguages : public ::testing::Test {
  protected:
    EnvironmentLanguages() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(EnvironmentLanguages, NeedNoLocaleOfTheSystem) {
    EXPECT_EXIT(lookUpToday({{"LC_ALL", "C"}, {"LANGUAGE", "de"}}), ::testing::ExitedWithCode(0), "^Heute\n$");
    EXPECT_EXIT(lookUpToday({{"LANG", "ja_JP.UTF-8"}}), ::testing::ExitedWithCode(0), "^今日\n$");
}

TEST_F(EnvironmentLanguages, AreReadInGettextsOrder) {
    EXPECT_EXIT(lookUpToday({{"LANGUAGE", "it:fr_CH:de"}, {"LC_ALL", "es_ES"}}), ::testing::ExitedWithCode(0),
                "^Aujourd’hui\n$");
    EXPECT_EXIT(lookUpToday({{"LANGUAGE", ""}, {"LC_ALL", "es_ES"}, {"LC_MESSAGES", "de"}}),
                ::testing::ExitedWithCode(0), "^Hoy\n$");
    EXPECT_EXIT(lookUpToday({{"LC_ALL", ""}, {"LC_MESSAGES", "de_AT"}, {"LANG", "fr_FR"}}),
                ::testing::ExitedWithCode(0), "^Heute\n$");
    EXPECT_EXIT(lookUpToday({{"LC_ALL", "C.UTF-8"}, {"LANG", "de_DE.UTF-8"}}), ::testing::ExitedWithCode(0),
                "^Today\n$");
    EXPECT_EXIT(lookUpToday({}), ::testing::ExitedWithCode(0), "^Today\n$");
}

TEST_F(EnvironmentLanguages, GiveWayToTheHost) {
    EXPECT_EXIT(
        {
            ResourceBundle::setPreferredLanguages({"fr"});
            lookUpToday({{"LANGUAGE", "de"}});
        },
        ::testing::ExitedWithCode(0), "^Aujourd’hui\n$");
}

TEST_F(EnvironmentLanguages, ComeBackWhenTheHostWithdraws) {
    EXPECT_EXIT(
        {
            setenv("LANGUAGE", "es", 1);
            ResourceBundle::setPreferredLanguages({"fr"});
            const auto before = localized("Today", "");
            ResourceBundle::setPreferredLanguages({});
            std::cerr << before << ' ' << localized("Today", "") << ' ' << ResourceBundle::currentLanguage() << '\n';
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(0), "^Aujourd’hui Hoy es\n$");
}

}  // namespace
}  // namespace kestrel
