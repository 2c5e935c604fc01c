#include "session_bus.h"
#include "support.h"

#include <kestrel/platform/linux/dbus_notification_center.h>
#include <kestrel/platform/linux/notification_inquiry.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>

namespace kestrel {
namespace {

using platform::NotificationEvidence;
using platform::NotificationVerdict;
using test::BusMember;
using test::Program;
using test::SessionBus;
using test::TemporaryFolder;
using ::testing::HasSubstr;
using Clock = std::chrono::steady_clock;
using enum NotificationSetting;

constexpr auto serverName = "org.freedesktop.Notifications";
constexpr auto storeName = "org.freedesktop.impl.portal.PermissionStore";
constexpr auto application = "com.example.Crm";

/// What a server says of itself, in the test's own process.
void serve(BusMember& member, const std::string& capabilities) {
    member.have("/org/freedesktop/Notifications",
                R"(<node><interface name='org.freedesktop.Notifications'>
                     <method name='GetServerInformation'><arg type='s' direction='out'/><arg type='s' direction='out'/>
                       <arg type='s' direction='out'/><arg type='s' direction='out'/></method>
                     <method name='GetCapabilities'><arg type='as' direction='out'/></method>
                   </interface></node>)",
                [capabilities](std::string_view method) {
                    if (method == "GetServerInformation") {
                        return g_variant_new("(ssss)", "example-server", "Example", "2.5", "1.2");
                    }
                    return g_variant_new_parsed(("(" + capabilities + ",)").c_str());
                });
}

/// The user's words, as "{'com.example.Crm': ['no']}"; none at all when empty.
void store(BusMember& member, const std::string& words) {
    member.have("/org/freedesktop/impl/portal/PermissionStore",
                R"(<node><interface name='org.freedesktop.impl.portal.PermissionStore'>
                     <method name='Lookup'><arg type='s' direction='in'/><arg type='s' direction='in'/>
                       <arg type='a{sas}' direction='out'/><arg type='v' direction='out'/></method>
                   </interface></node>)",
                [words](std::string_view) -> GVariant* {
                    if (words.empty()) return nullptr;
                    return g_variant_new_parsed(("(@a{sas} " + words + ", <byte 0>)").c_str());
                });
}

class Notifications : public ::testing::Test {
  protected:
    Notifications() { platform::setApplicationIdentity({.identifier = application}); }
    ~Notifications() override { platform::setApplicationIdentity({}); }

    struct Answers {
        NotificationSettings settings;
        bool isGranted;
        std::optional<PlatformError> error;
        double seconds;
    };
    /// Asks both at once, of a centre that does not live to see the answers; `meanwhile` is done when they are asked.
    static Answers ask(const std::function<void()>& meanwhile = [] {}) {
        std::optional<NotificationSettings> settings;
        std::optional<bool> isGranted;
        Answers answers{};
        const auto start = Clock::now();
        {
            DBusNotificationCenter center;
            center.getNotificationSettings([&](const NotificationSettings& found) {
                EXPECT_FALSE(settings) << "once";
                settings = found;
            });
            center.requestAuthorization(
                NotificationAuthorizationOptions::alert | NotificationAuthorizationOptions::sound,
                [&](bool granted, std::optional<PlatformError> error) {
                    EXPECT_FALSE(isGranted) << "once";
                    isGranted = granted;
                    answers.error = std::move(error);
                });
        }
        EXPECT_FALSE(settings || isGranted) << "later";
        if (meanwhile) meanwhile();
        EXPECT_TRUE(test::runUntil([&] { return settings && isGranted; }));
        answers.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        answers.settings = settings.value_or(NotificationSettings());
        answers.isGranted = isGranted.value_or(false);
        return answers;
    }
    static void expectRefusal(const Answers& answers, const std::string& reason) {
        EXPECT_FALSE(answers.isGranted);
        ASSERT_TRUE(answers.error);
        EXPECT_EQ(answers.error->domain, userNotificationErrorDomain);
        EXPECT_EQ(answers.error->code, 1);
        EXPECT_EQ(answers.error->localizedDescription, "Notifications of this application are not allowed.");
        EXPECT_THAT(answers.error->localizedFailureReason.value_or(""), HasSubstr(reason));
    }
    static void expectNothingKnown(const Answers& answers, const std::string& reason) {
        EXPECT_EQ(answers.settings, NotificationSettings());
        expectRefusal(answers, reason);
    }
};

TEST_F(Notifications, areThoseOfTheServer) {
    const SessionBus bus;
    if (test::run("/usr/bin/python3 -c 'import dbusmock'").status != 0)
        GTEST_SKIP() << "python3-dbusmock is not installed";
    const Program mock({"/usr/bin/python3", "-m", "dbusmock", "--session", "--template", "notification_daemon", "-p",
                        R"({"capabilities": "body sound persistence"})"});
    ASSERT_TRUE(test::run("gdbus wait --session --timeout 30 org.freedesktop.Notifications").status == 0);
    const auto answers = ask();
    EXPECT_EQ(answers.settings,
              (NotificationSettings{.authorizationStatus = NotificationAuthorizationStatus::authorized,
                                    .soundSetting = enabled,
                                    .alertSetting = enabled,
                                    .notificationCenterSetting = enabled,
                                    .alertStyle = NotificationAlertStyle::banner}));
    EXPECT_TRUE(answers.isGranted);
    EXPECT_FALSE(answers.error);
}

TEST_F(Notifications, areWithoutWhatTheServerCannotDo) {
    const SessionBus bus;
    BusMember server(bus, serverName);
    serve(server, "['body', 'soundless']");
    BusMember permissions(bus, storeName);
    store(permissions, "");
    const auto answers = ask();
    EXPECT_EQ(answers.settings,
              (NotificationSettings{.authorizationStatus = NotificationAuthorizationStatus::authorized,
                                    .alertSetting = enabled,
                                    .alertStyle = NotificationAlertStyle::banner}));
    EXPECT_TRUE(answers.isGranted);
}

TEST_F(Notifications, areDeniedByTheUsersWord) {
    const SessionBus bus;
    BusMember server(bus, serverName);
    serve(server, "['sound']");
    {
        BusMember permissions(bus, storeName);
        store(permissions, "{'com.example.Other': ['yes'], 'com.example.Crm': ['no']}");
        const auto answers = ask();
        EXPECT_EQ(answers.settings,
                  (NotificationSettings{.authorizationStatus = NotificationAuthorizationStatus::denied,
                                        .soundSetting = disabled,
                                        .alertSetting = disabled}));
        expectRefusal(answers, "permission store");
    }
    BusMember permissions(bus, storeName);
    store(permissions, "{'com.example.Other': ['no'], 'com.example.Crm': ['yes']}");
    EXPECT_EQ(ask().settings.authorizationStatus, NotificationAuthorizationStatus::authorized);
}

TEST_F(Notifications, areNotKnownWithoutABusOrAServer) {
    expectNothingKnown(ask(), "no session bus");
    {
        const test::Variable broken("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
        expectNothingKnown(ask(), "/nowhere/bus");
    }
    {
        const test::Variable broken("DBUS_SESSION_BUS_ADDRESS", "no address");
        expectNothingKnown(ask(), "cannot be reached");
    }
    const SessionBus bus;
    expectNothingKnown(ask(), "no notification server owns org.freedesktop.Notifications");
    // Found without the variable, too.
    const auto path = bus.address().substr(bus.address().find("path=") + 5);
    const TemporaryFolder runtime;
    std::filesystem::create_symlink(path.substr(0, path.find(',')), runtime.path() / "bus");
    const test::Variable unset("DBUS_SESSION_BUS_ADDRESS");
    const test::Variable folder("XDG_RUNTIME_DIR", runtime.path().native());
    expectNothingKnown(ask(), "no notification server owns org.freedesktop.Notifications");
}

TEST_F(Notifications, areNotWaitedForLongerThanTwoSeconds) {
    {
        const SessionBus bus;
        BusMember server(bus, serverName);
        server.hang();
        const auto answers = ask();
        expectNothingKnown(answers, "the notification server does not answer");
        EXPECT_GE(answers.seconds, 1.9);
        EXPECT_LT(answers.seconds, 10) << "two seconds, on a machine that does nothing else";
    }
    {
        // What hangs beside the server does not count.
        const SessionBus bus;
        BusMember server(bus, serverName);
        serve(server, "['persistence']");
        BusMember permissions(bus, storeName);
        permissions.hang();
        EXPECT_EQ(ask().settings.notificationCenterSetting, enabled);
    }
    {
        // One that says who it is, and not what it can do.
        const SessionBus bus;
        BusMember server(bus, serverName);
        server.have("/org/freedesktop/Notifications",
                    R"(<node><interface name='org.freedesktop.Notifications'>
                         <method name='GetServerInformation'><arg type='s' direction='out'/>
                           <arg type='s' direction='out'/><arg type='s' direction='out'/>
                           <arg type='s' direction='out'/></method>
                       </interface></node>)",
                    [](std::string_view) { return g_variant_new("(ssss)", "half", "Example", "1", "1.2"); });
        expectNothingKnown(ask(), "the notification server does not answer");
    }
    // A bus that lets nobody in.
    const TemporaryFolder scratch;
    const auto path = (scratch.path() / "bus").native();
    const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listening, 8), 0);
    const test::Variable variable("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path);
    expectNothingKnown(ask(), "the session bus does not answer");
    close(listening);
}

TEST_F(Notifications, areNotKnownWhenTheBusGoesAway) {
    SessionBus bus;
    BusMember server(bus, serverName);
    server.hang();
    const auto ending = platform::mainQueue()->scheduleAfter(0.2, [&] { bus.end(); });
    expectNothingKnown(ask(), "");
    // The process goes on, now and later.
    test::runFor(0.2);
    expectNothingKnown(ask(), "cannot be reached");
}

// ---- the desktop's settings, which GIO reads once in a process

std::string described(const NotificationVerdict& verdict) {
    std::string text;
    const auto& settings = verdict.settings;
    for (const int each :
         {static_cast<int>(settings.authorizationStatus), static_cast<int>(settings.soundSetting),
          static_cast<int>(settings.badgeSetting), static_cast<int>(settings.alertSetting),
          static_cast<int>(settings.notificationCenterSetting), static_cast<int>(settings.lockScreenSetting),
          static_cast<int>(settings.alertStyle), static_cast<int>(settings.showPreviewsSetting)}) {
        text += std::to_string(each);
    }
    return text;
}

const test::AddPart asking("notification-settings", [](const std::vector<std::string>&) {
    platform::setApplicationIdentity({.identifier = "com.example.Crm_2"});
    std::optional<NotificationVerdict> verdict;
    platform::inquireAboutNotifications(
        "com.example.Crm_2", 20, [&](const NotificationEvidence& evidence) { verdict = platform::judge(evidence); });
    if (!test::runUntil([&] { return verdict.has_value(); })) return 1;
    std::cout << described(*verdict) << '\n' << verdict->sources[0] << '\n' << verdict->sources[5] << '\n';
    return 0;
});

// Asks, says so, and lives on while the bus goes away.
const test::AddPart outliving("bus-survivor", [](const std::vector<std::string>&) {
    std::optional<NotificationSettings> settings;
    platform::userNotificationCenter()->getNotificationSettings([&](const auto& found) { settings = found; });
    if (!test::runUntil([&] { return settings.has_value(); })) return 1;
    std::cout << static_cast<int>(settings->lockScreenSetting) << std::endl;
    test::runFor(0.6);
    std::cout << "alive" << std::endl;
    return 0;
});

class DesktopSettings : public Notifications {
  protected:
    DesktopSettings() {
        scratch.write("schemas/notifications.gschema.xml", R"(<schemalist>
          <schema id='org.gnome.desktop.notifications' path='/org/gnome/desktop/notifications/'>
            <key name='show-banners' type='b'><default>true</default></key>
            <key name='show-in-lock-screen' type='b'><default>true</default></key>
          </schema>
          <schema id='org.gnome.desktop.notifications.application'>
            <key name='enable' type='b'><default>true</default></key>
            <key name='show-banners' type='b'><default>true</default></key>
            <key name='show-in-lock-screen' type='b'><default>true</default></key>
            <key name='details-in-lock-screen' type='b'><default>false</default></key>
            <key name='enable-sound-alerts' type='b'><default>true</default></key>
          </schema></schemalist>)");
        const auto compiled = test::run("glib-compile-schemas '" + (scratch.path() / "schemas").native() + "'");
        if (compiled.status != 0) throw std::runtime_error(compiled.output);
        serve(server, "['sound', 'persistence']");
    }
    [[nodiscard]] std::vector<std::string> words(const std::string& part, const std::string& backend,
                                                 const std::string& desktop) const {
        auto list = test::asPart(part, {});
        list.insert(
            list.begin(),
            {"env", "GSETTINGS_BACKEND=" + backend, "XDG_CONFIG_HOME=" + (scratch.path() / "config").native(),
             "XDG_RUNTIME_DIR=" + scratch.path().native(), "XDG_DATA_DIRS=" + scratch.path().native(),
             "GSETTINGS_SCHEMA_DIR=" + (scratch.path() / "schemas").native(), "XDG_CURRENT_DESKTOP=" + desktop});
        return list;
    }
    /// Digits of the settings in their order, and two of the sources, where the user has set this.
    std::string with(const std::string& settings, const std::string& desktop = "") {
        scratch.write("config/glib-2.0/settings/keyfile", settings);
        Program program(words("notification-settings", "keyfile", desktop));
        std::string output;
        whileServing([&] { output = program.rest(); });
        EXPECT_EQ(program.wait(), 0);
        return output;
    }
    /// The server is in this process, and answers while its loop runs.
    template <class Wait>
    void whileServing(Wait wait) {
        std::thread waiting([&] {
            wait();
            platform::mainQueue()->schedule(platform::quitMainLoop);
        });
        platform::runMainLoop();
        waiting.join();
    }

    TemporaryFolder scratch{};
    SessionBus bus{};
    BusMember server{bus, serverName};
};

TEST_F(DesktopSettings, haveTheirSay) {
    const std::string allowed = "\na notification server answers, and nothing refuses this application\n";
    EXPECT_EQ(with(""), "22022010" + allowed + "not known: no desktop setting show-in-lock-screen\n")
        << "defaults of another desktop say nothing";
    EXPECT_EQ(with("", "ubuntu:GNOME"), "22022211" + allowed + "desktop setting show-in-lock-screen\n");
    EXPECT_EQ(with("[org/gnome/desktop/notifications]\nshow-banners=false\nshow-in-lock-screen=false\n"),
              "22012100" + allowed + "desktop setting show-in-lock-screen\n");
    EXPECT_EQ(with("[org/gnome/desktop/notifications/application/com-example-crm-2]\nshow-banners=false\n"
                   "enable-sound-alerts=false\nshow-in-lock-screen=false\ndetails-in-lock-screen=true\n",
                   "GNOME"),
              "21012100" + allowed + "desktop setting show-in-lock-screen of this application\n");
    EXPECT_EQ(with("[org/gnome/desktop/notifications/application/com-example-crm-2]\nenable=false\n", "GNOME"),
              "11011101\ndesktop setting enable of this application\ndesktop setting enable of this application\n");
}

TEST_F(DesktopSettings, doNotEndTheProgramWhenTheBusGoesAway) {
    // The store of settings that has a connection of its own to the bus, where it is installed.
    Program program(words("bus-survivor", "dconf", "GNOME"));
    std::string found;
    whileServing([&] { found = program.line(); });
    EXPECT_EQ(found, "2") << "the default of the desktop";
    bus.end();
    EXPECT_EQ(program.line(), "alive");
    EXPECT_EQ(program.wait(), 0);
}

}  // namespace
}  // namespace kestrel
