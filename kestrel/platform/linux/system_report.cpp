#include <fcntl.h>
#include <gio/gio.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/localization/resource_bundle.h>
#include <kestrel/platform/linux/network_interfaces.h>
#include <kestrel/platform/linux/network_reachability.h>
#include <kestrel/platform/linux/notification_inquiry.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <kestrel/platform/system_report.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace kestrel::platform {

namespace {

namespace fs = std::filesystem;

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const auto& text : texts) {
        if (!all.empty()) all += ", ";
        all += text;
    }
    return all.empty() ? "none" : all;
}

/// Gathers the rows.
class Findings {
  public:
    explicit Findings(std::vector<SystemFinding>& rows) : rows_(rows) {}

    void lookAt(std::string area) { area_ = std::move(area); }
    void add(std::string subject, std::string value, std::string source,
             std::optional<std::string> advice = std::nullopt) {
        rows_.push_back({.area = area_,
                         .subject = std::move(subject),
                         .value = std::move(value),
                         .source = std::move(source),
                         .advice = std::move(advice)});
    }

  private:
    std::vector<SystemFinding>& rows_;
    std::string area_{};
};

void addMainLoop(Findings& findings) {
    findings.lookAt("main loop");
    findings.add("kind",
                 "GLib " + std::to_string(glib_major_version) + '.' + std::to_string(glib_minor_version) + '.' +
                     std::to_string(glib_micro_version),
                 "the default main context, which runs: this report came through it");
}

void addTimeZone(Findings& findings) {
    constexpr auto systemZone = "/etc/localtime";
    findings.lookAt("time zone");
    const auto calendar = Calendar::current();
    const std::string name(calendar.timeZoneName());
    std::error_code error;
    if (const char* variable = std::getenv("TZ"); variable != nullptr) {
        std::string_view named = variable;
        if (named.starts_with(':')) named.remove_prefix(1);
        if (Calendar::inZone(named)) return findings.add("name", name, "TZ");
        return findings.add("name", name,
                            "fallback: TZ names no zone of the time-zone database: \"" + std::string(variable) + '"',
                            "set TZ to a name such as Europe/Berlin, or unset it");
    }
    const auto target = fs::canonical(systemZone, error);
    if (!error) return findings.add("name", name, std::string(systemZone) + " (" + target.native() + ")");
    findings.add("name", name, std::string("fallback: ") + systemZone + " is missing and TZ is not set",
                 "link /etc/localtime to a file of /usr/share/zoneinfo, or set TZ");
}

void addTexts(Findings& findings) {
    findings.lookAt("texts");
    findings.add("resource bundle", ResourceBundle::directory().native(), "its marker file is there");
    findings.add("languages", joined(ResourceBundle::languages()), "the marker file");
    findings.add("preferred languages", joined(ResourceBundle::preferredLanguages()),
                 "the host, or else LANGUAGE, LC_ALL, LC_MESSAGES, LANG");
    findings.add("current language", ResourceBundle::currentLanguage(),
                 "the first preferred language that the bundle has");
}

void addApplication(Findings& findings, const ApplicationIdentity& application) {
    std::error_code ignored;
    const auto program = fs::read_symlink("/proc/self/exe", ignored).filename().native();
    const auto sourceOf = [&](const std::string& value) {
        return value == program ? "the name of the program's file" : "the host";
    };
    findings.lookAt("application");
    findings.add("identifier", application.identifier, sourceOf(application.identifier));
    findings.add("name", application.name, sourceOf(application.name));
}

void addSessionBus(Findings& findings, const NotificationEvidence& evidence) {
    findings.lookAt("session bus");
    const auto bus = sessionBusAddress();
    if (!bus) {
        return findings.add(
            "connection", "none", bus.error(),
            "start a session bus (dbus-run-session PROGRAM), or set DBUS_SESSION_BUS_ADDRESS to that of "
            "the running one");
    }
    findings.add("address", bus->address, bus->source);
    if (evidence.isBusReached) return findings.add("connection", "reached", "it let this program in");
    findings.add("connection", "not reached", evidence.problem,
                 "see that a session bus runs at that address, or correct " + bus->source);
}

std::string nameOf(NotificationAuthorizationStatus status) {
    return std::string(caseName(status));
}

std::optional<std::string> serverAdvice(const NotificationEvidence& evidence) {
    if (!evidence.isBusReached) return "see to the session bus first";
    return evidence.problem.starts_with("no notification server")
               ? "no notification server owns org.freedesktop.Notifications on the session bus; start one"
               : "the owner of org.freedesktop.Notifications on the session bus hangs or fails; start it anew";
}

void addNotifications(Findings& findings, const NotificationEvidence& evidence, const NotificationVerdict& verdict) {
    findings.lookAt("notifications");
    if (const auto& server = evidence.server) {
        findings.add("server", server->name + ' ' + server->version + " (" + server->vendor + ")",
                     "GetServerInformation, protocol " + server->protocolVersion);
        findings.add("capabilities", joined(server->capabilities), "GetCapabilities");
    } else {
        findings.add("server", "none", evidence.problem, serverAdvice(evidence));
    }
    const auto& settings = verdict.settings;
    std::optional<std::string> permissionAdvice;
    if (settings.authorizationStatus == NotificationAuthorizationStatus::denied) {
        permissionAdvice = "allow notifications of this application in the desktop's settings";
    }
    const std::array<std::pair<const char*, std::string>, 10> rows{{
        {"authorization", nameOf(settings.authorizationStatus)},
        {"sound", std::string(caseName(settings.soundSetting))},
        {"badge", std::string(caseName(settings.badgeSetting))},
        {"alert", std::string(caseName(settings.alertSetting))},
        {"notification center", std::string(caseName(settings.notificationCenterSetting))},
        {"lock screen", std::string(caseName(settings.lockScreenSetting))},
        {"alert style", std::string(caseName(settings.alertStyle))},
        {"show previews", std::string(caseName(settings.showPreviewsSetting))},
        {"critical alert", std::string(caseName(settings.criticalAlertSetting))},
        {"application's own settings", settings.providesAppNotificationSettings ? "yes" : "no"},
    }};
    for (std::size_t i = 0; i < rows.size(); ++i)
        findings.add(rows[i].first, rows[i].second, verdict.sources[i], i == 0 ? permissionAdvice : std::nullopt);
}

void addHandlers(Findings& findings) {
    findings.lookAt("handlers");
    for (const std::string scheme : {"https", "geo"}) {
        const auto url = URL::parse(scheme == "https" ? "https://example.com" : "geo:0,0");
        const auto applications = url ? workspace()->applicationsToOpen(*url) : std::vector<std::string>();
        const auto type = "x-scheme-handler/" + scheme;
        if (!applications.empty()) {
            findings.add(scheme, joined(applications), "applications for " + type + ", the preferred one first");
            continue;
        }
        std::string advice = scheme == "https" ? "install a web browser" : "install an application for maps";
        advice += " that handles ";
        advice += type;
        advice += ", or name an installed one: xdg-mime default NAME.desktop ";
        advice += type;
        findings.add(scheme, "none", "no application is registered for " + type, std::move(advice));
    }
}

std::int64_t addNetwork(Findings& findings) {
    constexpr std::array<const char*, 3> names{"not reachable", "reachable through Wi-Fi or a cable",
                                               "reachable through a cellular network"};
    const NetworkReachability reachability;
    const auto status = reachability.currentReachabilityStatus();
    const auto* const monitor = G_OBJECT_TYPE_NAME(g_network_monitor_get_default());
    findings.lookAt("network");
    findings.add(
        "reachability", std::to_string(status) + ", " + names.at(static_cast<std::size_t>(status)),
        std::string("network monitor ") + monitor,
        status == 0 ? std::optional<std::string>("there is no default route; connect to a network") : std::nullopt);
    const auto interface = defaultRouteInterface();
    findings.add("interface", interface.value_or("none"),
                 interface ? "the default route" : "no default route in /proc/net/route and /proc/net/ipv6_route");
    return status;
}

void addPreferences(Findings& findings) {
    const auto file = standardUserDefaultsFile();
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    findings.lookAt("preferences");
    std::error_code ignored;
    const bool exists = fs::exists(file, ignored);
    findings.add("file", file.native(), configured != nullptr && *configured == '/' ? "XDG_CONFIG_HOME" : "~/.config");
    findings.add("exists", exists ? "yes" : "no", exists ? "it is there" : "the first write makes it");
    // Until it is made, what counts is the nearest folder that is there.
    auto place = file;
    while (!fs::exists(place, ignored) && place.has_relative_path())
        place = place.parent_path();
    std::string obstacle;
    for (const auto& path : {place, exists ? file.parent_path() : place}) {
        if (obstacle.empty() && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
            obstacle = path.native() + ": " + std::error_code(errno, std::generic_category()).message();
        }
    }
    findings.add(
        "writable", obstacle.empty() ? "yes" : "no", obstacle.empty() ? place.native() : obstacle,
        obstacle.empty() ? std::nullopt : std::optional("give this user the right to write " + place.native()));
    const auto store = SQLiteUserDefaults::openAnyway(file);
    if (const auto read = store->refresh(); !read) {
        return findings.add("keys", "not readable", read.error().localizedFailureReason.value_or(""),
                            "repair " + file.native() + ", or move it away: the next write makes a new one");
    }
    findings.add("keys", std::to_string(store->keys().size()), "the file");
}

void addGeocoding(Findings& findings) {
    findings.lookAt("geocoding");
    const std::string key(geocodingServerKey);
    if (const auto url = standardUserDefaults()->url(key)) {
        return findings.add("server", url->text(), "preference " + key);
    }
    findings.add("server", "none",
                 "preference " + key + (standardUserDefaults()->object(key) ? " is no URL" : " is not set"),
                 "set the preference " + key +
                     " to the base URL of a Nominatim server, such as https://geocoding.example.com; a host may also "
                     "name one itself");
}

SystemReport reportOf(const NotificationEvidence& evidence) {
    SystemReport report{.application = applicationIdentity()};
    const auto verdict = judge(evidence);
    report.notificationSettings = verdict.settings;
    Findings findings(report.findings);
    addMainLoop(findings);
    addTimeZone(findings);
    addTexts(findings);
    addApplication(findings, report.application);
    addSessionBus(findings, evidence);
    addNotifications(findings, evidence, verdict);
    addHandlers(findings);
    report.reachabilityStatus = addNetwork(findings);
    addPreferences(findings);
    addGeocoding(findings);
    return report;
}

}  // namespace

AnyPublisher<SystemReport> systemReport() {
    return create<SystemReport>([](const auto& emitter) {
        mainQueue()->schedule([emitter] {
            inquireAboutNotifications(applicationIdentity().identifier, notificationInquiryLimit,
                                      [emitter](const NotificationEvidence& evidence) {
                                          if (emitter.isCancelled()) return;
                                          emitter.send(reportOf(evidence));
                                          emitter.finish();
                                      });
        });
        return AnyCancellable();
    });
}

}  // namespace kestrel::platform
