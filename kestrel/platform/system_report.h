#pragma once

#include <kestrel/platform/notification_settings.h>
#include <kestrel/platform/system.h>
#include <kestrel/reactive/publisher.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What the library finds of the system around it, for people who look for what is wrong.
namespace kestrel::platform {

/// One thing that was looked at. Technical texts in English.
struct SystemFinding {
    /// What it belongs to: "main loop", "time zone", "texts", "application", "session bus", "notifications",
    /// "handlers", "network", "preferences", "geocoding".
    std::string area{};
    /// What it is, unique within the area: "sound".
    std::string subject{};
    /// How it is: "enabled".
    std::string value{};
    /// From what that is known, or why it is not: "capability \"sound\"".
    std::string source{};
    /// What to do about it; absent where nothing is to be done.
    std::optional<std::string> advice{};

    friend bool operator==(const SystemFinding&, const SystemFinding&) = default;
};

/// All that was found, at one moment.
struct SystemReport {
    /// Who the program is to the desktop.
    ApplicationIdentity application{};
    /// What the user has allowed it.
    NotificationSettings notificationSettings{};
    /// As ReachabilityProtocol counts.
    std::int64_t reachabilityStatus{};
    /// All of it in rows, area by area in the order above.
    std::vector<SystemFinding> findings{};
};

/// Looks at everything, anew for each subscriber, and changes nothing. Sends one report, later, on the main queue;
/// within about two seconds, which is how long the notification server is given. A missing resource bundle stops the
/// program, as it always does.
[[nodiscard]] AnyPublisher<SystemReport> systemReport();

}  // namespace kestrel::platform
