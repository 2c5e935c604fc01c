#include "commands.h"

#include <kestrel/localization/bundle_location.h>
#include <kestrel/localization/localized.h>
#include <kestrel/localization/resource_bundle.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

namespace kestrel {
namespace {

using test::TemporaryFolder;
namespace fs = std::filesystem;

constexpr auto bundleName = "com.fenwick.KestrelService.bundle";
constexpr auto catalogueName = "LC_MESSAGES/com.fenwick.KestrelService.mo";

class Bundle : public ::testing::Test {
  protected:
    Bundle() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~Bundle() override {
        ResourceBundle::setDirectory({});
        ResourceBundle::setPreferredLanguages({});
    }

    static fs::path copyBundle(const fs::path& folder) {
        fs::create_directories(folder);
        fs::copy(ResourceBundle::directory(), folder / bundleName, fs::copy_options::recursive);
        return folder / bundleName;
    }
};

// Also run by itself, in another process, by the test of the moved installation.
TEST_F(Bundle, IsWhereItIsExpected) {
    const char* expected = std::getenv("KESTREL_TEST_EXPECTED_BUNDLE");
    if (expected != nullptr) {
        EXPECT_EQ(ResourceBundle::directory(), expected);
    } else {
        EXPECT_TRUE(fs::is_regular_file(ResourceBundle::directory() / "bundle.conf"));
    }
}

TEST_F(Bundle, MovesWithTheInstallation) {
    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&ResourceBundle::directory), &library), 0);
    const fs::path program = fs::read_symlink("/proc/self/exe");
    const bool isStatic = fs::equivalent(library.dli_fname, program);

    for (const std::string folder : {"lib", "lib/x86_64-linux-gnu"}) {
        const TemporaryFolder prefix;
        const auto moved = prefix.path() / folder;
        fs::create_directories(moved);
        fs::copy_file(library.dli_fname, moved / fs::path{library.dli_fname}.filename());
        const auto bundle = copyBundle(prefix.path() / "share/KestrelService");
        const auto movedProgram = isStatic ? moved / program.filename() : program;

        const auto [status, output] = test::run("env -u KESTREL_RESOURCES LD_LIBRARY_PATH='" + moved.native() +
                                                "' KESTREL_TEST_EXPECTED_BUNDLE='" + bundle.native() + "' '" +
                                                movedProgram.native() + "' --gtest_filter=Bundle.IsWhereItIsExpected");
        EXPECT_EQ(status, 0) << output;
        EXPECT_NE(output.find("1 test"), std::string::npos) << output;
    }
}

TEST_F(Bundle, IsTakenFromTheHostsDirectoryBeforeAllOthers) {
    const TemporaryFolder scratch;
    const auto before = ResourceBundle::directory();
    const auto bundle = copyBundle(scratch.path());
    for (const auto& named : {bundle, scratch.path(), scratch.path() / ""}) {
        ResourceBundle::setDirectory({});
        EXPECT_EQ(ResourceBundle::directory(), before);
        ResourceBundle::setDirectory(named);
        EXPECT_EQ(ResourceBundle::directory(), bundle);
    }

    // Texts come from the new place too.
    fs::copy_file(bundle / "fr" / catalogueName, bundle / "de" / catalogueName, fs::copy_options::overwrite_existing);
    ResourceBundle::setPreferredLanguages({"de"});
    EXPECT_EQ(localized("Today", ""), "Aujourd’hui");
    ResourceBundle::setDirectory({});
    EXPECT_EQ(localized("Today", ""), "Heute");
}

TEST_F(Bundle, IsTakenFromTheEnvironmentsDirectory) {
    const TemporaryFolder scratch;
    const auto bundle = copyBundle(scratch.path() / "resources");
    const auto [status, output] =
        test::run("cd '" + scratch.path().native() + "' && KESTREL_RESOURCES=resources KESTREL_TEST_EXPECTED_BUNDLE='" +
                  bundle.native() + "' '" + fs::read_symlink("/proc/self/exe").native() +
                  "' --gtest_filter=Bundle.IsWhereItIsExpected");
    EXPECT_EQ(status, 0) << output;
    EXPECT_NE(output.find("1 test"), std::string::npos) << output;
}

TEST_F(Bundle, IsNotWhereTheMarkerNamesAnother) {
    const TemporaryFolder scratch;
    const auto before = ResourceBundle::directory();
    scratch.write("bundle.conf", "identifier=com.example.Other\nlanguages=de\n");
    ResourceBundle::setDirectory(scratch.path());
    EXPECT_EQ(ResourceBundle::directory(), before);
}

TEST_F(Bundle, StopsTheProgramWithOneLineIfItIsMissing) {
    EXPECT_EXIT((void)localization::locateBundle({"/nowhere/first", "/nowhere/second"}),
                ::testing::KilledBySignal(SIGABRT),
                "^KestrelService: resource bundle com\\.fenwick\\.KestrelService\\.bundle not found; "
                "looked in /nowhere/first, /nowhere/second \\(bundle_location\\.cpp:[0-9]+\\)\n$");
}

TEST_F(Bundle, IsLookedForInAllPlacesInOrder) {
    const auto places = localization::bundlePlaces("/host");
    ASSERT_GE(places.size(), 4U);
    EXPECT_EQ(places[0], fs::path{"/host"} / bundleName);
    EXPECT_EQ(places[1], "/host");
    for (const auto& place : places)
        EXPECT_TRUE(place.is_absolute()) << place;
    // Not the host's doing: the running bundle has to be among the others.
    EXPECT_EQ(std::ranges::count(places, ResourceBundle::directory()), 1);
}

TEST_F(Bundle, StopsTheProgramIfItLacksAListedLanguage) {
    const TemporaryFolder scratch;
    const auto bundle = copyBundle(scratch.path());
    fs::remove(bundle / "fr" / catalogueName);
    EXPECT_EXIT(
        {
            ResourceBundle::setDirectory(bundle);
            ResourceBundle::setPreferredLanguages({"de"});
            (void)localized("Today", "");
        },
        ::testing::KilledBySignal(SIGABRT),
        "^KestrelService: resource bundle com\\.fenwick\\.KestrelService\\.bundle lists the language fr but lacks its "
        "catalogue [^\n]*/fr/LC_MESSAGES/com\\.fenwick\\.KestrelService\\.mo [^\n]*\n$");
}

TEST_F(Bundle, StopsTheProgramIfACatalogueIsDamaged) {
    const TemporaryFolder scratch;
    const auto bundle = copyBundle(scratch.path());
    for (const std::string_view content : {"", "this is no catalogue"}) {
        scratch.write(fs::path{bundleName} / "de" / catalogueName, content);
        EXPECT_EXIT(
            {
                ResourceBundle::setDirectory(bundle);
                ResourceBundle::setPreferredLanguages({"de"});
                (void)localized("Today", "");
            },
            ::testing::KilledBySignal(SIGABRT),
            "^KestrelService: catalogue [^\n]*/de/LC_MESSAGES/com\\.fenwick\\.KestrelService\\.mo cannot be used: "
            "[^\n]*\n$");
    }
}

TEST_F(Bundle, HasNoTranslationIntoALanguageItDoesNotHave) {
    EXPECT_EQ(ResourceBundle::translation("Today", "it"), std::nullopt);
    EXPECT_EQ(ResourceBundle::translation("Today", "de_AT"), std::nullopt);
    EXPECT_EQ(ResourceBundle::translation("No table has this", "de"), std::nullopt);
}

}  // namespace
}  // namespace kestrel
