#include <kestrel/localization/localized.h>
#include <kestrel/localization/resource_bundle.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

namespace kestrel {
namespace {

class Localized : public ::testing::Test {
  protected:
    Localized() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        ResourceBundle::setPreferredLanguages({"en"});
    }
    ~Localized() override { ResourceBundle::setPreferredLanguages({}); }
};

TEST_F(Localized, FollowsTheLanguageOfTheMoment) {
    EXPECT_EQ(localized("Last Year", ""), "Last Year");
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(localized("Last Year", ""), "Letztes Jahr");
    ResourceBundle::setPreferredLanguages({"ja"});
    EXPECT_EQ(localized("Last Year", ""), "昨年");
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(localized("Last Year", ""), "Letztes Jahr");
}

TEST_F(Localized, TakesTheTextAloneForTheKey) {
    ResourceBundle::setPreferredLanguages({"es"});
    EXPECT_EQ(localized("Public", "Permission display name."), "Público");
    EXPECT_EQ(localized("Public", "Something else."), "Público");
}

TEST_F(Localized, GivesATextBackThatTheLanguageLacks) {
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(localized("No table has this", ""), "No table has this");
    EXPECT_EQ(localized(std::string_view{"Today\0and more", 14}, ""), std::string("Today\0and more", 14));
}

TEST_F(Localized, GivesNothingForNothingRatherThanTheHeaderOfTheTable) {
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(localized("", ""), "");
}

TEST_F(Localized, LooksMarkedTextsUpLater) {
    static constexpr std::array orders{localizable("Ascending", ""), localizable("Descending", "Sort order.")};
    static_assert(orders[1].comment == "Sort order.");
    ResourceBundle::setPreferredLanguages({"fr"});
    EXPECT_EQ(localized(orders[0]), "Croissant");
    EXPECT_EQ(localized(orders[1]), "Décroissant");
}

TEST_F(Localized, FillsThePlaceholdersOfTheTranslation) {
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(localized("Extra Field %@", "", {"3"}), "Zusatzfeld 3");
}

TEST_F(Localized, FillsPlaceholdersInOrderAndByNumber) {
    EXPECT_EQ(localized("%@ of %@", "", {"1", "20"}), "1 of 20");
    EXPECT_EQ(localized("%2$@ of %1$@", "", {"20", "1"}), "1 of 20");
    EXPECT_EQ(localized("%1$@%1$@", "", {"ab", "unused"}), "abab");
    EXPECT_EQ(localized("%10$@", "", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "ten"}), "ten");
}

TEST_F(Localized, FillsPlaceholdersOfIntegersLikeOthers) {
    EXPECT_EQ(localized("%lld of %@: %lld", "", {"-1009", "two", "3"}), "-1009 of two: 3");
    EXPECT_EQ(localized("%2$lld%% %1$lldd", "", {"1", "20"}), "20% 1d");
}

TEST_F(Localized, LeavesAloneWhatIsNoPlaceholder) {
    EXPECT_EQ(localized("%@%% of %%@", "", {"50"}), "50% of %@");
    EXPECT_EQ(localized("100% sure, 5 %, %1$d, %1@ %, %ld, %1$", "", {}), "100% sure, 5 %, %1$d, %1@ %, %ld, %1$");
    EXPECT_EQ(localized("%%", ""), "%%");
}

TEST_F(Localized, DoesNotLookIntoArguments) {
    EXPECT_EQ(localized("%@ and %@", "", {"%@ %2$@ %%", "100%"}), "%@ %2$@ %% and 100%");
}

TEST_F(Localized, StopsTheProgramForAPlaceholderWithoutAnArgument) {
    const auto tooFew = [](std::string_view text) { return localized(text, "", {"one"}); };
    const std::string line =
        "^KestrelService: the text .* asks for more than the 1 arguments of its call "
        "\\(localized_test\\.cpp:[0-9]+\\)\n$";
    EXPECT_EXIT((void)tooFew("%@ %@"), ::testing::KilledBySignal(SIGABRT), line);
    EXPECT_EXIT((void)tooFew("%2$@"), ::testing::KilledBySignal(SIGABRT), line);
    EXPECT_EXIT((void)tooFew("%0$@"), ::testing::KilledBySignal(SIGABRT), line);
    EXPECT_EXIT((void)tooFew("%99999999999999999999$@"), ::testing::KilledBySignal(SIGABRT), line);
}

TEST_F(Localized, ServesManyThreadsAndLanguagesAtOnce) {
    const std::array<std::array<std::string, 2>, 4> won{
        {{"de", "Gewonnen"}, {"es", "Ganada"}, {"fr", "Gagnée"}, {"ja", "受注"}}};
    // Starts from a bundle that nothing has been read from.
    ResourceBundle::setDirectory(ResourceBundle::directory());
    std::atomic<int> wrong = 0;
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < 8; ++i) {
            threads.emplace_back([&, i] {
                const auto& [language, expected] = won[i % won.size()];
                for (int round = 0; round < 200; ++round) {
                    if (ResourceBundle::translation("Won", language) != expected) ++wrong;
                    if (i >= won.size()) ResourceBundle::setPreferredLanguages({language});
                    const auto text = localized("Won", "");
                    const bool known = text == "Won" || text == won[0][1] || text == won[1][1] || text == won[2][1] ||
                                       text == won[3][1];
                    if (!known) ++wrong;
                }
            });
        }
    }
    ResourceBundle::setDirectory({});
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace kestrel
