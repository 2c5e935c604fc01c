#include "commands.h"

#include <kestrel/localization/resource_bundle.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace kestrel {
namespace {

using test::TemporaryFolder;
namespace fs = std::filesystem;

const fs::path sources = KESTREL_SOURCE_DIR;
const fs::path tables = sources / "kestrel/localization/po";
constexpr auto templateName = "com.fenwick.KestrelService.pot";

bool haveTools() {
    return test::run("command -v xgettext msguniq msgmerge msgen").status == 0;
}

// The texts of a template, without the header's empty one.
std::vector<std::string> textsOf(const fs::path& file) {
    const auto unquoted = [](const std::string& line) {
        std::string text;
        const auto begin = line.find('"') + 1;
        for (auto i = begin; i < line.rfind('"'); ++i) {
            if (line[i] == '\\') {
                ++i;
                text += line[i] == 'n' ? '\n' : line[i] == 't' ? '\t' : line[i];
            } else {
                text += line[i];
            }
        }
        return text;
    };
    std::vector<std::string> texts;
    std::ifstream stream{file};
    bool inText = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("msgid ")) {
            texts.push_back(unquoted(line));
            inText = true;
        } else if (inText && line.starts_with('"')) {
            texts.back() += unquoted(line);
        } else {
            inText = false;
        }
    }
    std::erase(texts, "");
    return texts;
}

// The numbers of the arguments that a text places, from 1.
std::set<std::size_t> placeholders(const std::string& text) {
    static const std::regex directive{"%%|%(?:@|lld)|%([0-9]+)\\$(?:@|lld)"};
    std::set<std::size_t> numbers;
    std::size_t next = 0;
    for (std::sregex_iterator match{text.begin(), text.end(), directive}, end; match != end; ++match) {
        if ((*match)[1].matched) {
            numbers.insert(std::stoul((*match)[1].str()));
        } else if (match->str() != "%%") {
            numbers.insert(++next);
        }
    }
    return numbers;
}

TEST(Texts, AreTranslatedIntoEveryLanguageWithTheSamePlaceholders) {
    const auto texts = textsOf(tables / templateName);
    ASSERT_GE(texts.size(), 39U);
    // What the compiled catalogue has is neither untranslated nor fuzzy.
    for (const auto& language : ResourceBundle::languages()) {
        for (const auto& text : texts) {
            const auto translation = ResourceBundle::translation(text, language);
            ASSERT_TRUE(translation) << language << " lacks a finished translation of: " << text;
            EXPECT_EQ(placeholders(*translation), placeholders(text)) << language << ": " << *translation;
        }
    }
}

TEST(Texts, RepeatTheKeyInEnglish) {
    for (const auto& text : textsOf(tables / templateName)) {
        EXPECT_EQ(ResourceBundle::translation(text, ResourceBundle::developmentLanguage), text);
    }
}

TEST(Texts, ShipEveryLanguageThatHasATable) {
    std::vector<std::string> languages;
    for (const auto& entry : fs::directory_iterator{tables}) {
        if (entry.path().extension() == ".po") languages.push_back(entry.path().stem());
    }
    std::ranges::sort(languages);
    EXPECT_EQ(ResourceBundle::languages(), languages);
}

TEST(Texts, AreThoseOfTheSources) {
    if (!haveTools()) GTEST_SKIP() << "the gettext tools are not installed";
    const auto [status, output] = test::run("'" + (sources / "scripts/update-texts").native() + "' --check");
    EXPECT_EQ(status, 0) << output;
}

class UpdateTexts : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!haveTools()) GTEST_SKIP() << "the gettext tools are not installed";
        fs::create_directories(tree.path() / "scripts");
        fs::copy_file(sources / "scripts/update-texts", tree.path() / "scripts/update-texts");
        for (const std::string language : {"en", "de"}) {
            tree.write("kestrel/localization/po/" + language + ".po",
                       "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n"
                       "\"Content-Transfer-Encoding: 8bit\\n\"\n");
        }
    }

    [[nodiscard]] test::CommandResult update(const std::string& option = "") const {
        return test::run("'" + (tree.path() / "scripts/update-texts").native() + "' " + option);
    }
    [[nodiscard]] std::string table(const std::string& name) const {
        const auto whole = test::contentsOf(tree.path() / "kestrel/localization/po" / name);
        return whole.substr(whole.find("\n\n") + 2);
    }

    TemporaryFolder tree;
};

TEST_F(UpdateTexts, MakesCommentsOfTheSecondArgumentAndOneEntryOfEqualTexts) {
    tree.write("kestrel/b.cpp", R"(auto a = localized("Open", "A deal's \"state\".");
        auto b = localized("Field %@ of %2$@", "1: The index", {x, y});
        auto c = localized(marked.text, marked.comment);  // localized("not this", "")
        auto d = std::array{localizable("50% off", ""), localizable("Grün", "")};
        auto e = localized("Two "
                           "parts", "One\nTwo");
        auto f = localized("Code: %lld", "", {"3"});)");
    tree.write("kestrel/a.h", R"(auto a = kestrel::localized("Open", "");
        auto b = localized("Open", "A verb.");)");
    const auto [status, output] = update();
    ASSERT_EQ(status, 0) << output;
    EXPECT_EQ(table(templateName), R"(#: kestrel/b.cpp
msgid "50% off"
msgstr ""

#: kestrel/b.cpp
#, objc-format
msgid "Code: %lld"
msgstr ""

#. 1: The index
#: kestrel/b.cpp
#, objc-format
msgid "Field %@ of %2$@"
msgstr ""

#: kestrel/b.cpp
msgid "Grün"
msgstr ""

#. A verb.
#. A deal's "state".
#: kestrel/a.h kestrel/b.cpp
msgid "Open"
msgstr ""

#. One
#. Two
#: kestrel/b.cpp
msgid "Two parts"
msgstr ""
)");
    EXPECT_NE(table("en.po").find("msgid \"Grün\"\nmsgstr \"Grün\"\n"), std::string::npos) << table("en.po");
    EXPECT_NE(table("de.po").find("msgid \"Grün\"\nmsgstr \"\"\n"), std::string::npos) << table("de.po");
}

TEST_F(UpdateTexts, ChecksWithoutWriting) {
    tree.write("kestrel/a.cpp", R"(localized("Open", "");)");
    auto result = update("--check");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(
        result.output.find("update-texts: kestrel/localization/po/de.po is out of date: run scripts/update-texts\n"),
        std::string::npos)
        << result.output;
    EXPECT_FALSE(fs::exists(tree.path() / "kestrel/localization/po" / templateName));

    EXPECT_EQ(update().status, 0);
    result = update("--check");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");

    tree.write("kestrel/a.cpp", R"(localized("Open", "A state.");)");
    EXPECT_EQ(update("--check").status, 1);
}

TEST_F(UpdateTexts, KeepsTheTranslationOfATextThatLeavesAndReturns) {
    tree.write("kestrel/a.cpp", R"(localized("Open", ""); localized("Won", "");)");
    ASSERT_EQ(update().status, 0);
    const auto de = tree.path() / "kestrel/localization/po/de.po";
    auto edited = test::contentsOf(de);
    const std::string untranslated = "msgid \"Won\"\nmsgstr \"\"";
    ASSERT_NE(edited.find(untranslated), std::string::npos);
    edited.replace(edited.find(untranslated), untranslated.size(), "msgid \"Won\"\nmsgstr \"Gewonnen\"");
    tree.write("kestrel/localization/po/de.po", edited);
    ASSERT_EQ(update("--check").status, 0);

    tree.write("kestrel/a.cpp", R"(localized("Open", "");)");
    ASSERT_EQ(update().status, 0);
    EXPECT_NE(table("de.po").find("#~ msgid \"Won\"\n#~ msgstr \"Gewonnen\""), std::string::npos) << table("de.po");
    tree.write("kestrel/a.cpp", R"(localized("Open", ""); localized("Won", "");)");
    ASSERT_EQ(update().status, 0);
    EXPECT_EQ(test::contentsOf(de), edited);
}

}  // namespace
}  // namespace kestrel
