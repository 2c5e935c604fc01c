#include <gtest/gtest.h>
#include <host/command/geocode_command.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <tests/platform/loopback_server.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "support.h"

namespace kestrel::host::test {
namespace {

using kestrel::test::LoopbackServer;

/// A desktop of its own, without a session bus.
class Desktop : public testing::Test {
  protected:
    Outcome run(const std::vector<std::string>& arguments, const std::string& tail = "") const {
        return kestrel(arguments, {.environment = {{"XDG_CONFIG_HOME", folder / "config"},
                                                   {"XDG_DATA_HOME", folder / "data"},
                                                   {"XDG_DATA_DIRS", folder / "nothing"},
                                                   {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus"},
                                                   {"TZ", "Europe/Berlin"}},
                                   .tail = tail});
    }
    /// An application for URLs of a scheme, which notes what it is asked to open.
    void addHandler(const std::string& scheme, const std::string& command) const {
        std::filesystem::create_directories(folder / "data/applications");
        std::filesystem::create_directories(folder / "config");
        writeText(folder / "data/applications/handler.desktop",
                  "[Desktop Entry]\nType=Application\nName=Handler\nExec=" + command +
                      " %u\nMimeType=x-scheme-handler/" + scheme + ";\n");
        writeText(folder / "config/mimeapps.list",
                  "[Default Applications]\nx-scheme-handler/" + scheme + "=handler.desktop\n");
    }

    TemporaryFolder folder;
};

TEST_F(Desktop, keepsPreferencesOfEveryTypeAndRefusesOtherValues) {
    EXPECT_EQ(run({"defaults", "get", "Theme"}).errors, "kestrel: \"Theme\" is not set\n");
    EXPECT_EQ(run({"defaults", "get"}).output, "");
    ASSERT_EQ(run({"defaults", "set", "Theme", "dark\tblue"}).errors, "");
    ASSERT_EQ(run({"defaults", "set", "Size", "-12.5", "--type", "double"}).errors, "");
    ASSERT_EQ(run({"defaults", "set", "On", "yes", "--type", "boolean"}).errors, "");
    ASSERT_EQ(run({"defaults", "set", "Since", "2026-01-31T10:00:00Z", "--type", "date"}).errors, "");
    EXPECT_EQ(run({"defaults", "get", "Theme"}).output, "dark\tblue\n");
    EXPECT_EQ(run({"defaults", "get"}).output,
              "On     boolean  true\n"
              "Since  date     2026-01-31T10:00:00Z\n"
              "Size   double   -12.5\n"
              "Theme  string   dark\\tblue\n");
    EXPECT_EQ(run({"defaults", "get", "On", "--json"}).output,
              "{\"key\":\"On\",\"type\":\"boolean\",\"value\":\"true\"}\n");
    EXPECT_EQ(run({"defaults", "set", "Size", "big", "--type", "integer"}).exitCode, 2);
    EXPECT_EQ(run({"defaults", "get", "Size"}).output, "-12.5\n");
    ASSERT_EQ(run({"defaults", "remove", "Size"}).exitCode, 0);
    EXPECT_EQ(run({"defaults", "get", "Size"}).exitCode, 1);

    writeText(folder / "broken.sqlite", "This is no database at all, however long it is.");
    const Outcome broken = run({"defaults", "set", "Theme", "light", "--file", folder / "broken.sqlite"});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_NE(broken.errors.find("broken.sqlite"), broken.errors.npos) << broken.errors;
}

TEST_F(Desktop, watchesPreferencesThatOtherProcessesChange) {
    ASSERT_EQ(run({"defaults", "set", "Theme", "dark"}).exitCode, 0);
    auto watching = std::async(std::launch::async, [&] {
        return run({"defaults", "watch", "Theme", "--count", "2"}, "2> " + (folder / "started").native());
    });
    while (!std::filesystem::exists(folder / "started") || readFile(folder / "started").empty())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ASSERT_EQ(run({"defaults", "set", "Other", "1"}).exitCode, 0);
    ASSERT_EQ(run({"defaults", "set", "Theme", "dark"}).exitCode, 0);
    ASSERT_EQ(run({"defaults", "set", "Theme", "light"}).exitCode, 0);
    // Both changes may be seen as one when they come fast: the second waits until the first was told.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ASSERT_EQ(run({"defaults", "remove", "Theme"}).exitCode, 0);
    ASSERT_EQ(watching.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_EQ(watching.get().output, "Theme = light\nTheme is not set\n");
}

TEST_F(Desktop, opensURLsInTheApplicationOfTheirScheme) {
    EXPECT_EQ(run({"open", "example"}).exitCode, 2);
    EXPECT_EQ(run({"open", "x-test:1"}).errors,
              "kestrel: no application opens x-test URLs; `kestrel doctor` says more\n");
    writeText(folder / "handle", "#!/bin/sh\nprintf '%s' \"$1\" > '" + (folder / "opened").native() + "'\n");
    std::filesystem::permissions(folder / "handle", std::filesystem::perms::owner_all);
    addHandler("x-test", folder / "handle");
    EXPECT_EQ(run({"open", "X-Test:some%20thing?a=b"}).errors, "");
    for (int i = 0; i < 2'000 && (!std::filesystem::exists(folder / "opened") || readFile(folder / "opened").empty());
         ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(readFile(folder / "opened"), "x-test:some%20thing?a=b");
    addHandler("x-test", folder / "missing");
    EXPECT_EQ(run({"open", "x-test:1"}).exitCode, 1) << "an application that is not there";
}

TEST_F(Desktop, isNotWaitedForWithoutEndWhenItsBusHangs) {
    // A bus that takes connections and never answers.
    const int bus = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string place = folder / "bus";
    ASSERT_LT(place.size(), sizeof address.sun_path);
    std::ranges::copy(place, address.sun_path);
    ASSERT_EQ(::bind(bus, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(bus, 16), 0);
    addHandler("x-test", "/bin/true");
    const Outcome opened =
        kestrel({"open", "x-test:1"}, {.environment = {{"XDG_CONFIG_HOME", folder / "config"},
                                                       {"XDG_DATA_HOME", folder / "data"},
                                                       {"XDG_DATA_DIRS", folder / "nothing"},
                                                       {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + place}}});
    ::close(bus);
    // Some versions of GIO do not ask the bus.
    EXPECT_TRUE(opened.exitCode == 0 || opened.errors.find("did not answer") != opened.errors.npos) << opened.errors;
}

TEST_F(Desktop, findsThePlaceOfAnAddress) {
    const LoopbackServer server([](const std::string& request, const LoopbackServer::Connection& connection) {
        if (request.find("Nowhere") != request.npos) return connection.answer(200, "[]");
        if (request.find("Broken") != request.npos) return connection.answer(500, "no");
        connection.answer(200, R"([{"lat":"48.1371","lon":"11.5754","name":"Rathaus","address":)"
                               R"({"road":"Marienplatz","house_number":"8","city":"München","postcode":"80331",)"
                               R"("country":"Deutschland","country_code":"de"}}])");
    });
    const auto find = [&](const std::string& address) { return run({"geocode", address, "--server", server.url()}); };
    const Outcome found = find("Marienplatz 8, 80331 München, Deutschland");
    EXPECT_EQ(found.errors, "");
    EXPECT_NE(found.output.find("48.1371, 11.5754\n"), found.output.npos) << found.output;
    EXPECT_NE(found.output.find("Marienplatz 8\n"), found.output.npos) << found.output;
    EXPECT_NE(server.requests().front().find("M%C3%BCnchen"), std::string::npos) << server.requests().front();
    EXPECT_EQ(find("Nowhere").errors, "kestrel: no place was found for \"Nowhere\"\n");
    EXPECT_NE(find("Broken").errors.find("500"), std::string::npos);
    EXPECT_EQ(run({"geocode", " , "}).exitCode, 2);
    EXPECT_EQ(run({"geocode", "Springfield", "--server", "ftp://example.com"}).exitCode, 2);

    const Outcome unset = run({"geocode", "Springfield"});
    EXPECT_EQ(unset.exitCode, 1);
    EXPECT_NE(unset.errors.find("GeocodingServer"), unset.errors.npos) << unset.errors;
    ASSERT_EQ(run({"defaults", "set", "GeocodingServer", server.url(), "--type", "url"}).exitCode, 0);
    EXPECT_EQ(run({"geocode", "Springfield"}).exitCode, 0);
}

TEST(GeocodeCommand, readsAddressesAsPeopleWriteThem) {
    EXPECT_EQ(addressOf("Springfield"), (PostalAddress{.city = "Springfield"}));
    EXPECT_EQ(addressOf("Main Street 1, 12345 New Springfield"),
              (PostalAddress{.street = "Main Street 1", .city = "New Springfield", .postalCode = "12345"}));
    EXPECT_EQ(addressOf(" 1 High St ,London SW1A,England,United Kingdom"),
              (PostalAddress{.street = "1 High St",
                             .city = "London",
                             .state = "England",
                             .postalCode = "SW1A",
                             .country = "United Kingdom"}));
}

TEST_F(Desktop, saysTruthfullyWhatIsThereAndWhatIsMissing) {
    const Outcome plain = run({"doctor"});
    EXPECT_EQ(plain.errors, "");
    EXPECT_EQ(plain.exitCode, 0);
    for (const char* part : {"Europe/Berlin", "com.fenwick.KestrelService.bundle", "com.fenwick.Kestrel",
                             "/nonexistent/bus", "defaults.sqlite"})
        EXPECT_NE(plain.output.find(part), plain.output.npos) << part << "\n" << plain.output;

    addHandler("https", "/bin/true");
    const Outcome outcome = run({"doctor", "--json"});
    const auto finding = [&](const std::string& subject) {
        const auto start = outcome.output.find("\"subject\":\"" + subject + "\"");
        return start == outcome.output.npos ? std::string("none")
                                            : outcome.output.substr(start, outcome.output.find('}', start) - start);
    };
    EXPECT_NE(finding("https").find("Handler"), std::string::npos) << outcome.output;
    EXPECT_EQ(finding("https").find("advice"), std::string::npos) << outcome.output;
    EXPECT_NE(finding("geo").find("advice"), std::string::npos) << outcome.output;
}

}  // namespace
}  // namespace kestrel::host::test
