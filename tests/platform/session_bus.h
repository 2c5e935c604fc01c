#pragma once

#include "support.h"

#include <gio/gio.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace kestrel::test {

/// A session bus of the test's own, on which nobody is and nobody is started by a call. It is the process's session bus
/// as long as this lives.
class SessionBus {
  public:
    SessionBus() {
        const auto configuration = scratch_.write("bus.conf", R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN" "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=)" + scratch_.path().native() + R"(</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>)");
        // It complains about limits that it may not raise.
        daemon_.emplace(
            std::vector<std::string>{"sh", "-c",
                                     "exec dbus-daemon --nofork --nopidfile --print-address=1 --config-file '" +
                                         configuration.native() + "' 2>/dev/null"});
        address_ = daemon_->line();
        if (address_.empty()) throw std::runtime_error("no session bus");
        variable_.emplace("DBUS_SESSION_BUS_ADDRESS", address_);
    }
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;
    ~SessionBus() = default;

    [[nodiscard]] const std::string& address() const { return address_; }
    void end() { daemon_->end(SIGKILL); }

  private:
    TemporaryFolder scratch_{};
    std::optional<Program> daemon_{};
    std::string address_{};
    std::optional<Variable> variable_{};
};

/// Someone on a bus, in this process, who owns a name.
class BusMember {
  public:
    /// Answers a call with a tuple, or with an error when it is null.
    using Answer = std::function<GVariant*(std::string_view method)>;

    BusMember(const SessionBus& bus, const std::string& name) {
        constexpr auto flags =
            static_cast<GDBusConnectionFlags>(static_cast<unsigned>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT) |
                                              static_cast<unsigned>(G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION));
        connection_ = g_dbus_connection_new_for_address_sync(bus.address().c_str(), flags, nullptr, nullptr, nullptr);
        if (connection_ == nullptr) throw std::runtime_error("the bus lets nobody in");
        GVariant* const reply = g_dbus_connection_call_sync(
            connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", name.c_str(), 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        if (reply == nullptr) throw std::runtime_error("the name is taken");
        g_variant_unref(reply);
    }
    ~BusMember() {
        g_dbus_connection_close_sync(connection_, nullptr, nullptr);
        g_object_unref(connection_);
    }
    BusMember(const BusMember&) = delete;
    BusMember& operator=(const BusMember&) = delete;

    /// Takes all calls and answers none.
    void hang() {
        g_dbus_connection_add_filter(
            connection_,
            [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer) -> GDBusMessage* {
                const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
                if (isIncoming == FALSE || !isCall) return message;
                g_object_unref(message);
                return nullptr;
            },
            nullptr, nullptr);
    }
    /// Has an object whose interface the XML describes.
    void have(const char* path, const char* description, Answer answer) {
        answer_ = std::move(answer);
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(description, nullptr);
        static const GDBusInterfaceVTable table{
            .method_call =
                [](GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant*,
                   GDBusMethodInvocation* invocation, gpointer user) {
                    if (GVariant* const reply = static_cast<BusMember*>(user)->answer_(method)) {
                        g_dbus_method_invocation_return_value(invocation, reply);
                    } else {
                        g_dbus_method_invocation_return_dbus_error(invocation, "com.example.Error", "no");
                    }
                },
            .get_property = nullptr,
            .set_property = nullptr,
            .padding = {}};
        g_dbus_connection_register_object(connection_, path, node->interfaces[0], &table, this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
    }

  private:
    GDBusConnection* connection_ = nullptr;
    Answer answer_{};
};

}  // namespace kestrel::test
