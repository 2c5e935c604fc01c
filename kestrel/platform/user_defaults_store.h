#pragma once

#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/platform_error.h>
#include <kestrel/foundation/url.h>
#include <kestrel/platform/notification_center.h>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

/// A preference as it is stored. Numbers and Booleans are told apart, but read as each other.
using DefaultsValue = std::variant<std::string, Data, std::int64_t, double, bool, Date, URL>;

/// The preferences of a user in an application, by name. May be used from any thread.
///
/// Whenever a value has changed, by whomever, another process included, the store posts
/// `userDefaultsDidChangeNotification` with itself as the object; a value that is written as it was is no change.
class UserDefaultsStore : public NotificationObject {
  public:
    /// What is stored; absent when nothing is.
    [[nodiscard]] virtual std::optional<DefaultsValue> object(std::string_view key) const = 0;
    /// Stores a value. When this returns a value, it is durable; an error leaves the store as it was.
    virtual std::expected<void, PlatformError> set(std::string_view key, DefaultsValue value) = 0;
    /// Removes what is stored, if anything is.
    virtual std::expected<void, PlatformError> removeObject(std::string_view key) = 0;
    /// The names for which something is stored, in the order of their bytes.
    [[nodiscard]] virtual std::vector<std::string> keys() const = 0;

    ///@{
    /// What is stored, as a number: absent, a text that is no decimal number, data, a date or a URL read as zero.
    /// Numbers are kept within the range of the type; as an integer they are rounded towards zero, and what is no
    /// number is 0. Booleans are 0 and 1.
    [[nodiscard]] std::int64_t integer(std::string_view key) const;
    [[nodiscard]] double doubleValue(std::string_view key) const;
    [[nodiscard]] float floatValue(std::string_view key) const;
    ///@}
    /// Any number but zero is true, and so are the texts "true", "yes" and "1", whatever the case; all else is false.
    [[nodiscard]] bool boolean(std::string_view key) const;
    /// A URL, or a text that is one; a text that starts with "/" is the URL of that file. Else absent.
    [[nodiscard]] std::optional<URL> url(std::string_view key) const;
};

/// The name of the notification; it is about the store.
inline constexpr std::string_view userDefaultsDidChangeNotification = "UserDefaultsDidChange";

}  // namespace kestrel
