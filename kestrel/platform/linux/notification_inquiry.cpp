#include <gio/gsettingsbackend.h>
#include <kestrel/platform/linux/glib_support.h>
#include <kestrel/platform/linux/notification_inquiry.h>
#include <kestrel/platform/system.h>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace kestrel::platform {

namespace {

constexpr auto serverName = "org.freedesktop.Notifications";
constexpr auto serverPath = "/org/freedesktop/Notifications";
constexpr auto storeName = "org.freedesktop.impl.portal.PermissionStore";
constexpr auto storePath = "/org/freedesktop/impl/portal/PermissionStore";

// ---- the desktop's settings

/// Settings as they are stored, read without GSettings: that asks to be told of changes, over a connection to the
/// session bus that ends the program when the bus goes. It also ends the program that asks for a schema that is not
/// installed.
class StoredSettings {
  public:
    /// The path ends in a slash. Defaults are what nobody has set.
    StoredSettings(const char* schemaName, std::string path, bool countsDefaults)
        : path_(std::move(path)), countsDefaults_(countsDefaults) {
        GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
        if (source != nullptr) schema_.reset(g_settings_schema_source_lookup(source, schemaName, TRUE));
    }

    [[nodiscard]] std::optional<bool> truth(const std::string& name) const {
        if (!schema_ || g_settings_schema_has_key(schema_.get(), name.c_str()) == FALSE) return std::nullopt;
        const GLibOwned<GSettingsSchemaKey> key(g_settings_schema_get_key(schema_.get(), name.c_str()));
        if (g_variant_type_equal(g_settings_schema_key_get_value_type(key.get()), G_VARIANT_TYPE_BOOLEAN) == FALSE) {
            return std::nullopt;
        }
        const GLibOwned<GSettingsBackend> backend(g_settings_backend_get_default());
        const auto place = path_ + name;
        GLibOwned<GVariant> value(G_SETTINGS_BACKEND_GET_CLASS(backend.get())
                                      ->read(backend.get(), place.c_str(), G_VARIANT_TYPE_BOOLEAN, FALSE));
        if (!value && countsDefaults_) value.reset(g_settings_schema_key_get_default_value(key.get()));
        if (!value || g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) == FALSE) return std::nullopt;
        return g_variant_get_boolean(value.get()) != FALSE;
    }

  private:
    std::string path_;
    bool countsDefaults_;
    GLibOwned<GSettingsSchema> schema_{};
};

/// Whether the desktop is the one whose settings these are, or made of it. Elsewhere their defaults mean nothing: the
/// schemas are installed with many programs.
bool isDesktopOfSettings() {
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    std::string_view rest = desktops == nullptr ? "" : desktops;
    while (!rest.empty()) {
        const auto colon = rest.find(':');
        if (rest.substr(0, colon) == "GNOME") return true;
        if (colon == std::string_view::npos) break;
        rest.remove_prefix(colon + 1);
    }
    return false;
}

/// The identifier as it stands in the path of its settings: small letters and digits, all else one hyphen.
std::string settingsName(std::string_view identifier) {
    std::string name;
    for (const char c : identifier) {
        const char small = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        const bool isKept = (small >= 'a' && small <= 'z') || (small >= '0' && small <= '9');
        if (isKept) {
            name += small;
        } else if (!name.ends_with('-')) {
            name += '-';
        }
    }
    return name;
}

DesktopNotificationSettings desktopSettings(std::string_view identifier) {
    const bool countsDefaults = isDesktopOfSettings();
    const std::string path = "/org/gnome/desktop/notifications/";
    const StoredSettings global("org.gnome.desktop.notifications", path, countsDefaults);
    const StoredSettings application("org.gnome.desktop.notifications.application",
                                     path + "application/" + settingsName(identifier) + "/", countsDefaults);
    return {.showsBanners = global.truth("show-banners"),
            .showsOnLockScreen = global.truth("show-in-lock-screen"),
            .isEnabled = application.truth("enable"),
            .applicationShowsBanners = application.truth("show-banners"),
            .applicationShowsOnLockScreen = application.truth("show-in-lock-screen"),
            .showsDetailsOnLockScreen = application.truth("details-in-lock-screen"),
            .playsSounds = application.truth("enable-sound-alerts")};
}

// ---- the bus

/// Keeps itself, by what its calls and its timer hold, until the answer is given.
class Inquiry : public std::enable_shared_from_this<Inquiry> {
  public:
    using Handler = std::move_only_function<void(NotificationEvidence)>;

    Inquiry(std::string identifier, Handler handler)
        : identifier_(std::move(identifier)), handler_(std::move(handler)) {}

    void start(double seconds) {
        const auto bus = sessionBusAddress();
        if (!bus) {
            problem_ = bus.error();
            mainQueue()->schedule([self = shared_from_this()] { self->finish(); });
            return;
        }
        address_ = bus->address;
        timer_ = mainQueue()->scheduleAfter(seconds, [self = shared_from_this()] {
            if (self->problem_.empty()) self->problem_ = self->hangingProblem();
            self->finish();
        });
        constexpr auto flags =
            joined(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT, G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        g_dbus_connection_new_for_address(bus->address.c_str(), flags, nullptr, cancellable_.get(), connected, keep());
    }

  private:
    using Keeper = std::shared_ptr<Inquiry>;
    using Reply = void (Inquiry::*)(GVariant* reply, const GError* error);
    struct Call {
        Keeper inquiry;
        Reply reply;
    };

    [[nodiscard]] Keeper* keep() { return new Keeper(shared_from_this()); }

    static void connected(GObject* /*source*/, GAsyncResult* result, gpointer user) noexcept {
        const std::unique_ptr<Keeper> self(static_cast<Keeper*>(user));
        GError* failure = nullptr;
        GLibOwned<GDBusConnection> connection(g_dbus_connection_new_for_address_finish(result, &failure));
        const GLibError error(failure);
        (*self)->connectionMade(std::move(connection), error.get());
    }
    void connectionMade(GLibOwned<GDBusConnection> connection, const GError* error) {
        if (!connection) {
            problem_ = "the session bus at " + address_ + " cannot be reached: " + error->message;
            return finish();
        }
        // A bus that goes away is none of the program's business.
        g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
        if (!handler_) return close(connection.get());
        connection_ = std::move(connection);
        evidence_.isBusReached = true;
        call(serverName, serverPath, serverName, "GetServerInformation", nullptr, "(ssss)", &Inquiry::takeServer);
        call(serverName, serverPath, serverName, "GetCapabilities", nullptr, "(as)", &Inquiry::takeCapabilities);
        call(storeName, storePath, storeName, "Lookup", g_variant_new("(ss)", "notifications", "notification"),
             "(a{sas}v)", &Inquiry::takePermissions);
    }
    void call(const char* name, const char* path, const char* interface, const char* method, GVariant* parameters,
              const char* replyType, Reply reply) {
        ++pending_;
        // The timer ends it.
        g_dbus_connection_call(connection_.get(), name, path, interface, method, parameters, G_VARIANT_TYPE(replyType),
                               G_DBUS_CALL_FLAGS_NONE, G_MAXINT, cancellable_.get(), replied,
                               new Call{.inquiry = shared_from_this(), .reply = reply});
    }
    static void replied(GObject* source, GAsyncResult* result, gpointer user) noexcept {
        const std::unique_ptr<Call> call(static_cast<Call*>(user));
        GError* failure = nullptr;
        const GLibOwned<GVariant> reply(
            g_dbus_connection_call_finish(reinterpret_cast<GDBusConnection*>(source), result, &failure));
        const GLibError error(failure);
        auto& self = *call->inquiry;
        if (!self.handler_) return;
        (self.*call->reply)(reply.get(), error.get());
        if (--self.pending_ == 0) self.finish();
    }

    void takeServer(GVariant* reply, const GError* error) {
        if (reply == nullptr) {
            problem_ = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != FALSE ||
                               g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE
                           ? std::string("no notification server owns org.freedesktop.Notifications on the session bus")
                           : std::string("the notification server does not answer: ") + error->message;
            return;
        }
        const char* name = nullptr;
        const char* vendor = nullptr;
        const char* version = nullptr;
        const char* protocolVersion = nullptr;
        g_variant_get(reply, "(&s&s&s&s)", &name, &vendor, &version, &protocolVersion);
        evidence_.server = {.name = name, .vendor = vendor, .version = version, .protocolVersion = protocolVersion};
    }
    void takeCapabilities(GVariant* reply, const GError* /*error*/) {
        if (reply == nullptr) return;
        hasCapabilities_ = true;
        const GLibOwned<GVariant> list(g_variant_get_child_value(reply, 0));
        for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
            const GLibOwned<GVariant> item(g_variant_get_child_value(list.get(), i));
            capabilities_.emplace_back(g_variant_get_string(item.get(), nullptr));
        }
    }
    void takePermissions(GVariant* reply, const GError* /*error*/) {
        // Without a store, or without an entry there, nobody has said anything.
        if (reply == nullptr) return;
        const GLibOwned<GVariant> table(g_variant_get_child_value(reply, 0));
        const GLibOwned<GVariant> words(
            g_variant_lookup_value(table.get(), identifier_.c_str(), G_VARIANT_TYPE_STRING_ARRAY));
        if (!words) return;
        for (gsize i = 0; i < g_variant_n_children(words.get()); ++i) {
            const GLibOwned<GVariant> word(g_variant_get_child_value(words.get(), i));
            const std::string_view text = g_variant_get_string(word.get(), nullptr);
            if (text == "yes") evidence_.permission = true;
            if (text == "no") evidence_.permission = false;
        }
    }

    [[nodiscard]] std::string hangingProblem() const {
        return evidence_.isBusReached ? "the notification server does not answer" : "the session bus does not answer";
    }
    static void close(GDBusConnection* connection) { g_dbus_connection_close(connection, nullptr, nullptr, nullptr); }
    void finish() {
        auto handler = std::exchange(handler_, nullptr);
        if (!handler) return;
        timer_.cancel();
        g_cancellable_cancel(cancellable_.get());
        if (connection_) close(connection_.get());
        connection_.reset();
        // One that says who it is and not what it can do has not answered: nothing is known of it.
        if (evidence_.server && !hasCapabilities_) {
            evidence_.server.reset();
            problem_ = hangingProblem();
        }
        if (evidence_.server) {
            evidence_.server->capabilities = std::move(capabilities_);
            evidence_.desktop = desktopSettings(identifier_);
        } else {
            evidence_.problem = std::move(problem_);
        }
        handler(std::move(evidence_));
    }

    std::string identifier_;
    std::string address_{};
    /// Null once it has been called.
    Handler handler_;
    GLibOwned<GCancellable> cancellable_{g_cancellable_new()};
    GLibOwned<GDBusConnection> connection_{};
    AnyCancellable timer_{};
    int pending_ = 0;
    NotificationEvidence evidence_{};
    std::vector<std::string> capabilities_{};
    bool hasCapabilities_ = false;
    std::string problem_{};
};

// ---- judging

struct Setting {
    NotificationSetting value{};
    std::string source{};
};

std::string capability(std::string_view name) {
    return "capability \"" + std::string(name) + '"';
}

bool isFalse(const std::optional<bool>& word) {
    return word.has_value() && !*word;
}

/// Who refuses notifications of this application altogether; empty when nobody does.
std::string refusal(const NotificationEvidence& evidence) {
    if (isFalse(evidence.permission)) return "the permission store refuses this application";
    if (isFalse(evidence.desktop.isEnabled)) return "desktop setting enable of this application";
    return {};
}

Setting alertSetting(const NotificationEvidence& evidence) {
    using enum NotificationSetting;
    if (isFalse(evidence.desktop.showsBanners)) return {disabled, "desktop setting show-banners"};
    if (isFalse(evidence.desktop.applicationShowsBanners)) {
        return {disabled, "desktop setting show-banners of this application"};
    }
    return {enabled, evidence.desktop.showsBanners ? "desktop setting show-banners" : "a notification server answers"};
}

Setting capabilitySetting(const NotificationEvidence& evidence, std::string_view name) {
    using enum NotificationSetting;
    if (std::ranges::find(evidence.server->capabilities, name) == evidence.server->capabilities.end()) {
        return {notSupported, "the notification server lacks the " + capability(name)};
    }
    return {enabled, capability(name)};
}

Setting soundSetting(const NotificationEvidence& evidence) {
    auto setting = capabilitySetting(evidence, "sound");
    if (setting.value == NotificationSetting::enabled && isFalse(evidence.desktop.playsSounds)) {
        return {NotificationSetting::disabled, "desktop setting enable-sound-alerts of this application"};
    }
    return setting;
}

Setting lockScreenSetting(const NotificationEvidence& evidence) {
    using enum NotificationSetting;
    const auto& desktop = evidence.desktop;
    if (isFalse(desktop.showsOnLockScreen)) return {disabled, "desktop setting show-in-lock-screen"};
    if (isFalse(desktop.applicationShowsOnLockScreen)) {
        return {disabled, "desktop setting show-in-lock-screen of this application"};
    }
    if (desktop.showsOnLockScreen) return {enabled, "desktop setting show-in-lock-screen"};
    return {notSupported, "not known: no desktop setting show-in-lock-screen"};
}

}  // namespace

std::expected<SessionBusAddress, std::string> sessionBusAddress() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0') return SessionBusAddress{address, "DBUS_SESSION_BUS_ADDRESS"};
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (folder != nullptr && *folder == '/') {
        const auto socket = std::string(folder) + "/bus";
        if (g_file_test(socket.c_str(), G_FILE_TEST_EXISTS) != FALSE) {
            const GLibText escaped(g_dbus_address_escape_value(socket.c_str()));
            return SessionBusAddress{std::string("unix:path=") + escaped.get(), "$XDG_RUNTIME_DIR/bus"};
        }
    }
    return std::unexpected(
        "there is no session bus: neither DBUS_SESSION_BUS_ADDRESS nor $XDG_RUNTIME_DIR/bus names one");
}

NotificationVerdict judge(const NotificationEvidence& evidence) {
    NotificationVerdict verdict;
    if (!evidence.server) {
        verdict.sources.fill("not known: " + evidence.problem);
        return verdict;
    }
    auto& settings = verdict.settings;
    const auto refused = refusal(evidence);
    const auto judged = [&](Setting setting) {
        if (!refused.empty() && setting.value == NotificationSetting::enabled) {
            return Setting{NotificationSetting::disabled, refused};
        }
        return setting;
    };
    const Setting sound = judged(soundSetting(evidence));
    const Setting alert = judged(alertSetting(evidence));
    const Setting list = judged(capabilitySetting(evidence, "persistence"));
    const Setting lockScreen = judged(lockScreenSetting(evidence));
    settings.authorizationStatus =
        refused.empty() ? NotificationAuthorizationStatus::authorized : NotificationAuthorizationStatus::denied;
    settings.soundSetting = sound.value;
    settings.alertSetting = alert.value;
    settings.notificationCenterSetting = list.value;
    settings.lockScreenSetting = lockScreen.value;
    const bool showsAlerts = alert.value == NotificationSetting::enabled;
    settings.alertStyle = showsAlerts ? NotificationAlertStyle::banner : NotificationAlertStyle::none;
    const auto& details = evidence.desktop.showsDetailsOnLockScreen;
    settings.showPreviewsSetting =
        isFalse(details) ? NotificationShowPreviewsSetting::whenAuthenticated : NotificationShowPreviewsSetting::always;
    verdict.sources = {!refused.empty()      ? refused
                       : evidence.permission ? "the permission store allows this application"
                                             : "a notification server answers, and nothing refuses this application",
                       sound.source,
                       "not known: desktops do not say whether they show badges",
                       alert.source,
                       list.source,
                       lockScreen.source,
                       showsAlerts ? "notification servers show banners that go away by themselves" : alert.source,
                       details ? "desktop setting details-in-lock-screen of this application"
                               : "not known: no desktop setting details-in-lock-screen of this application",
                       "not known: notification servers do not say what critical notifications may do",
                       "not known: desktops do not say whether they have a page for this application"};
    return verdict;
}

void inquireAboutNotifications(std::string applicationIdentifier, double seconds,
                               std::move_only_function<void(NotificationEvidence)> handler) {
    std::make_shared<Inquiry>(std::move(applicationIdentifier), std::move(handler))->start(seconds);
}

}  // namespace kestrel::platform
