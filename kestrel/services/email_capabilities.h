#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/enumeration.h>
#include <cstdint>
#include <optional>

namespace kestrel {

/// What sends mail. In keyed form an object of one key, the case's name, whose value is an empty object.
enum class MailClient : std::uint8_t {
    kestrelMail,  ///< within the application
    systemMail,   ///< the mail application of the system
};
template <>
inline constexpr auto enumerationForm<MailClient> = EnumerationForm::keyed;

/// Which mail clients can send mail, and which one the user prefers.
struct EmailCapabilities {
    /// The user's preference, whatever can send.
    bool prefersKestrelMail{};
    /// Whether the application itself can send.
    bool canSendKestrelMail{};
    /// Whether the system has a mail application that can send.
    bool canSendSystemMail{};

    /// Whether anything can.
    [[nodiscard]] constexpr bool canSendMail() const noexcept { return canSendKestrelMail || canSendSystemMail; }
    /// Where to write a new message; absent when nothing can send it. Only a preference for the application's own mail
    /// leads there, and only when that can send: else it is the system's, whatever the application could do.
    [[nodiscard]] constexpr std::optional<MailClient> mailClientForComposing() const noexcept {
        if (prefersKestrelMail && canSendKestrelMail) return MailClient::kestrelMail;
        if (canSendSystemMail) return MailClient::systemMail;
        return std::nullopt;
    }

    friend bool operator==(const EmailCapabilities&, const EmailCapabilities&) = default;
};

}  // namespace kestrel
