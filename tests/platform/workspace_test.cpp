#include "session_bus.h"
#include "support.h"

#include <kestrel/platform/linux/gio_workspace.h>

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <limits>

namespace kestrel {
namespace {

using test::TemporaryFolder;
namespace fs = std::filesystem;

// Parts of their own, for GIO reads where applications are once in a process.
const test::AddPart listing("list-applications", [](const std::vector<std::string>& arguments) {
    for (const auto& name : platform::workspace()->applicationsToOpen(*URL::parse(arguments.at(0))))
        std::cout << name << '\n';
    return 0;
});
const test::AddPart opening("open", [](const std::vector<std::string>& arguments) {
    for (const auto& argument : arguments) {
        bool isDone = false;
        platform::workspace()->open(*URL::parse(argument), [&](const std::optional<PlatformError>& error) {
            isDone = true;
            if (error) {
                std::cout << error->domain << ' ' << error->code
                          << (error->localizedDescription.empty() ? " no text\n" : "\n");
            } else {
                std::cout << "handed over\n";
            }
        });
        if (isDone) std::cout << "not later\n";
        if (!test::runUntil([&] { return isDone; })) return 1;
    }
    test::runFor(0.3);
    return 0;
});
const test::AddPart showing("show-place", [](const std::vector<std::string>& arguments) {
    const MapItem item{
        .placemark = {.coordinate = {.latitude = std::stod(arguments.at(0)), .longitude = std::stod(arguments.at(1))},
                      .name = "Käfig (Turm) & #1"}};
    std::cout << (platform::mapApplication()->open(item) ? "shown" : "not shown") << '\n';
    test::runFor(0.3);
    return 0;
});
const test::AddPart openingOnBus("open-on-bus", [](const std::vector<std::string>& arguments) {
    bool isDone = false;
    platform::workspace()->open(*URL::parse(arguments.at(0)), [&](const auto& error) { isDone = !error; });
    if (!test::runUntil([&] { return isDone; })) return 1;
    test::runFor(0.2);
    std::cout << "opened" << std::endl;
    test::runFor(0.6);
    std::cout << "alive" << std::endl;
    return 0;
});

/// A desktop with applications that write what they are given into a file.
class ADesktop : public ::testing::Test {
  protected:
    ADesktop() {
        application("first", "Erster Browser", "/bin/sh -c 'echo \"$0 first\" >> " + log.native() + "' %u");
        application("second", "Second Browser", "/bin/sh -c 'echo \"$0 second\" >> " + log.native() + "' %u");
        application("missing", "Missing", "/nowhere/program %u");
        application("terminal", "In a terminal that is not there", "/bin/true %u", "Terminal=true\n");
        application("maps", "Maps", "/bin/sh -c 'echo \"$0 maps\" >> " + log.native() + "' %u");
        application("hidden", "Hidden", "/bin/true %u", "Hidden=true\n");
        scratch.write("data/applications/mimeapps.list", R"([Default Applications]
x-scheme-handler/https=second.desktop
text/plain=first.desktop
[Added Associations]
x-scheme-handler/https=first.desktop;second.desktop;first.desktop;hidden.desktop;gone.desktop;
x-scheme-handler/missing=missing.desktop;
x-scheme-handler/terminal=terminal.desktop;
x-scheme-handler/geo=maps.desktop;
text/plain=first.desktop;
)");
    }
    void application(const std::string& name, const std::string& title, const std::string& command,
                     const std::string& more = "") const {
        scratch.write("data/applications/" + name + ".desktop",
                      "[Desktop Entry]\nType=Application\nName=" + title + "\nExec=" + command + '\n' + more);
    }
    [[nodiscard]] std::vector<std::string> variables() const {
        const auto at = [&](const char* name) { return (scratch.path() / name).native(); };
        return {"HOME=" + at("home"),
                "XDG_DATA_HOME=" + at("data"),
                "XDG_CONFIG_HOME=" + at("config"),
                "XDG_CACHE_HOME=" + at("cache"),
                "XDG_DATA_DIRS=" + at("none"),
                "XDG_CONFIG_DIRS=" + at("none"),
                "XDG_CURRENT_DESKTOP=",
                "PATH=" + at("none")};
    }
    [[nodiscard]] std::string play(const std::string& part, std::vector<std::string> arguments) const {
        return test::play(part, std::move(arguments), variables());
    }
    /// What the applications were given. They write it some time after they were started.
    [[nodiscard]] std::string given() const {
        (void)test::runUntil([&] { return fs::exists(log) && fs::file_size(log) > 0; }, 10);
        auto text = test::contentsOf(log);
        fs::remove(log);
        return text;
    }

    TemporaryFolder scratch{};
    fs::path log = scratch.path() / "log";
};

TEST_F(ADesktop, namesTheApplicationsOnceThePreferredOneFirst) {
    EXPECT_EQ(play("list-applications", {"HTTPS://example.com/"}), "Second Browser\nErster Browser");
    EXPECT_EQ(play("list-applications", {"unknown:thing"}), "");
    EXPECT_EQ(play("list-applications", {"missing:thing"}), "");
    const auto text = scratch.write("a b.txt", "text\n");
    EXPECT_EQ(play("list-applications", {"file://" + scratch.path().native() + "/a%20b.txt"}), "Erster Browser");
    EXPECT_EQ(play("list-applications", {"file:///nowhere/a.txt"}), "");
}

TEST_F(ADesktop, handsUrlsToThePreferredApplication) {
    EXPECT_EQ(play("open", {"https://example.com/a%20b?c=%22d%22&e=f"}), "handed over");
    EXPECT_EQ(given(), "https://example.com/a%20b?c=%22d%22&e=f second\n");
    const auto text = scratch.write("a b.txt", "text\n");
    EXPECT_EQ(play("open", {"file://" + scratch.path().native() + "/a%20b.txt"}), "handed over");
    EXPECT_EQ(given(), text.native() + " first\n") << "files by their paths";
}

TEST_F(ADesktop, saysWhenNobodyTakesAUrl) {
    const auto notSupported = "g-io-error-quark " + std::to_string(G_IO_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(play("open", {"unknown:thing", "missing:thing", "terminal:thing", "file:///nowhere/a.txt"}),
              notSupported + '\n' + notSupported + "\ng-io-error-quark " + std::to_string(G_IO_ERROR_FAILED) +
                  "\ng-io-error-quark " + std::to_string(G_IO_ERROR_NOT_FOUND));
}

TEST_F(ADesktop, showsPlacesOnItsMaps) {
    EXPECT_EQ(play("show-place", {"-46.5", "7.25"}), "shown");
    EXPECT_EQ(given(), "geo:-46.5,7.25?q=-46.5,7.25(K%C3%A4fig%20%28Turm%29%20%26%20%231) maps\n");
    EXPECT_EQ(play("show-place", {"90.5", "7.25"}), "not shown");
    fs::remove(scratch.path() / "data/applications/maps.desktop");
    EXPECT_EQ(play("show-place", {"-46.5", "7.25"}), "not shown");
}

TEST_F(ADesktop, doesNotEndTheProgramWhenItsBusGoesAway) {
    test::SessionBus bus;
    std::vector<std::string> words{"env"};
    for (const auto& variable : variables())
        words.push_back(variable);
    for (const auto& word : test::asPart("open-on-bus", {"https://example.com/"}))
        words.push_back(word);
    test::Program program(std::move(words));
    EXPECT_EQ(program.line(), "opened");
    bus.end();
    EXPECT_EQ(program.line(), "alive");
    EXPECT_EQ(program.wait(), 0);
}

TEST(AGeoUri, hasPlainNumbersAndAnEncodedLabel) {
    const auto textOf = [](double latitude, double longitude, const std::optional<std::string>& name = std::nullopt) {
        const auto uri = GeoURIMapApplication::uriOf(
            {.placemark = {.coordinate = {.latitude = latitude, .longitude = longitude}}, .name = name});
        return uri ? uri->text() : "none";
    };
    EXPECT_EQ(textOf(1e-7, -180), "geo:0.0000001,-180?q=0.0000001,-180");
    EXPECT_EQ(textOf(-0.0, 90, "A)b"), "geo:0,90?q=0,90(A%29b)");
    EXPECT_EQ(textOf(90, 180, ""), "geo:90,180?q=90,180");
    EXPECT_EQ(textOf(90.0000001, 0), "none");
    EXPECT_EQ(textOf(0, -180.1), "none");
    EXPECT_EQ(textOf(std::nan(""), 0), "none");
    EXPECT_EQ(textOf(0, std::numeric_limits<double>::infinity()), "none");
}

}  // namespace
}  // namespace kestrel
