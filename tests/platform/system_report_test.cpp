#include "session_bus.h"
#include "support.h"

#include <kestrel/platform/system_report.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <sstream>

namespace kestrel {
namespace {

using test::TemporaryFolder;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// A part of its own, for its own environment. Area, subject, value, source and advice, each row a line.
const test::AddPart reporting("system-report", [](const std::vector<std::string>& arguments) {
    platform::setApplicationIdentity({.identifier = "com.example.Crm", .name = "Example"});
    if (!arguments.empty() && !platform::standardUserDefaults()->set(platform::geocodingServerKey, arguments.front())) {
        return 1;
    }
    std::optional<platform::SystemReport> report;
    bool isFinished = false;
    const auto reading = platform::systemReport().sink(
        [&](const platform::SystemReport& sent) {
            if (report) std::cout << "twice\n";
            report = sent;
        },
        [&](const Completion<Never>&) { isFinished = true; });
    if (report) std::cout << "not later\n";
    if (!test::runUntil([&] { return isFinished; }) || !report) return 1;
    for (const auto& [area, subject, value, source, advice] : report->findings)
        std::cout << area << '|' << subject << '|' << value << '|' << source << '|' << advice.value_or("") << '\n';
    return 0;
});

class ASystemReport : public ::testing::Test {
  protected:
    struct Row {
        std::string value;
        std::string source;
        std::string advice;
    };
    /// The rows by area and subject.
    std::map<std::string, Row> report(const std::vector<std::string>& variables, const std::string& server = "") const {
        std::vector<std::string> all{"XDG_CONFIG_HOME=" + (scratch.path() / "config").native(),
                                     "XDG_DATA_HOME=" + (scratch.path() / "data").native(),
                                     "XDG_DATA_DIRS=" + (scratch.path() / "none").native()};
        all.insert(all.end(), variables.begin(), variables.end());
        const auto output =
            test::play("system-report", server.empty() ? std::vector<std::string>() : std::vector{server}, all);
        std::map<std::string, Row> rows;
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);) {
            std::vector<std::string> fields;
            std::istringstream parts(line + "|");
            for (std::string field; std::getline(parts, field, '|');)
                fields.push_back(field);
            fields.resize(5);
            EXPECT_FALSE(fields[2].empty() || fields[3].empty()) << line;
            EXPECT_TRUE(rows.emplace(fields[0] + ": " + fields[1], Row{fields[2], fields[3], fields[4]}).second)
                << line;
        }
        return rows;
    }

    TemporaryFolder scratch{};
};

TEST_F(ASystemReport, saysWhatIsMissingAndWhatToDoAboutIt) {
    const auto rows = report({"TZ=Nowhere/Town", "LANGUAGE=fr:de"});
    EXPECT_EQ(std::ranges::count_if(rows, [](const auto& row) { return row.first.starts_with("notifications: "); }), 11)
        << "the server and ten settings";
    const auto at = [&](const char* name) { return rows.contains(name) ? rows.at(name) : Row{"absent", "", ""}; };
    EXPECT_THAT(at("main loop: kind").value, StartsWith("GLib 2."));
    EXPECT_THAT(at("time zone: name").source, HasSubstr("TZ names no zone"));
    EXPECT_THAT(at("time zone: name").advice, HasSubstr("set TZ"));
    EXPECT_EQ(at("texts: current language").value, "fr");
    EXPECT_EQ(at("texts: preferred languages").value, "fr, de");
    EXPECT_EQ(at("application: identifier").value, "com.example.Crm");
    EXPECT_EQ(at("application: identifier").source, "the host");
    EXPECT_EQ(at("session bus: connection").value, "none");
    EXPECT_THAT(at("session bus: connection").advice, HasSubstr("start a session bus"));
    EXPECT_EQ(at("notifications: server").value, "none");
    EXPECT_EQ(at("notifications: authorization").value, "notDetermined");
    EXPECT_THAT(at("notifications: sound").source, StartsWith("not known: there is no session bus"));
    EXPECT_EQ(at("handlers: geo").value, "none");
    EXPECT_THAT(at("handlers: geo").advice, HasSubstr("xdg-mime default NAME.desktop x-scheme-handler/geo"));
    const auto file = scratch.path() / "config/com.example.Crm/defaults.sqlite";
    EXPECT_EQ(at("preferences: file").value, file.native());
    EXPECT_EQ(at("preferences: exists").value, "no");
    EXPECT_EQ(at("preferences: writable").value, "yes");
    EXPECT_EQ(at("preferences: keys").value, "0");
    EXPECT_EQ(at("geocoding: server").value, "none");
    EXPECT_THAT(at("geocoding: server").advice, HasSubstr("preference GeocodingServer"));
    EXPECT_FALSE(std::filesystem::exists(file)) << "looking changes nothing";

    scratch.write("config/com.example.Crm/defaults.sqlite", "damaged");
    const auto damaged = report({"TZ=Europe/Berlin"});
    EXPECT_EQ(damaged.at("time zone: name").value, "Europe/Berlin");
    EXPECT_EQ(damaged.at("time zone: name").source, "TZ");
    EXPECT_EQ(damaged.at("preferences: keys").value, "not readable");
    EXPECT_THAT(damaged.at("preferences: keys").source, HasSubstr("not a database"));
}

TEST_F(ASystemReport, saysWhatIsThere) {
    const test::SessionBus bus;
    const auto alone = report({});
    EXPECT_EQ(alone.at("session bus: connection").value, "reached");
    EXPECT_EQ(alone.at("notifications: server").advice,
              "no notification server owns org.freedesktop.Notifications on the session bus; start one");

    if (test::run("/usr/bin/python3 -c 'import dbusmock'").status != 0)
        GTEST_SKIP() << "python3-dbusmock is not installed";
    const test::Program mock({"/usr/bin/python3", "-m", "dbusmock", "--session", "--template", "notification_daemon",
                              "-p", R"({"capabilities": "body sound"})"});
    ASSERT_TRUE(test::run("gdbus wait --session --timeout 30 org.freedesktop.Notifications").status == 0);
    scratch.write("data/applications/web.desktop", "[Desktop Entry]\nType=Application\nName=Web\nExec=/bin/true %u\n");
    scratch.write("data/applications/mimeapps.list", "[Added Associations]\nx-scheme-handler/https=web.desktop;\n");
    const auto rows = report({}, "https://geocoding.example.com/");
    EXPECT_EQ(rows.at("session bus: address").value, bus.address());
    EXPECT_EQ(rows.at("session bus: address").source, "DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(rows.at("notifications: server").value, "mock-notify 1.0 (test vendor)");
    EXPECT_EQ(rows.at("notifications: capabilities").value, "body, sound");
    EXPECT_EQ(rows.at("notifications: authorization").value, "authorized");
    EXPECT_EQ(rows.at("notifications: sound").value, "enabled");
    EXPECT_EQ(rows.at("notifications: sound").source, "capability \"sound\"");
    EXPECT_EQ(rows.at("notifications: notification center").value, "notSupported");
    EXPECT_EQ(rows.at("handlers: https").value, "Web");
    EXPECT_EQ(rows.at("handlers: https").advice, "");
    EXPECT_EQ(rows.at("preferences: exists").value, "yes");
    EXPECT_EQ(rows.at("preferences: keys").value, "1");
    EXPECT_EQ(rows.at("geocoding: server").value, "https://geocoding.example.com/");
}

}  // namespace
}  // namespace kestrel
