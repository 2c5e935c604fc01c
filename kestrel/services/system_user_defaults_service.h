#pragma once

#include <kestrel/foundation/platform_error.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/services/user_defaults.h>
#include <concepts>
#include <expected>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace kestrel {

/// Whether a preference was stored, and why not.
using DefaultsWritten = std::expected<void, PlatformError>;

/// The user's preferences, by name. Values are of any type that is UserDefaultsRepresentable.
///
///     struct ThemeKey {
///         using Value = std::string;
///         std::string key = "Theme";
///         static inline const Value defaultValue = "light";
///     };
///     const std::string theme = runtime[services::systemDefaults].get(ThemeKey{});
///     AnyCancellable watching = runtime[services::systemDefaults].observe(ThemeKey{}).sink(applyTheme);
///
/// Changes by other processes are observed like this one's. May be used from any thread when the store may.
class SystemUserDefaultsService : public ServiceProtocol {
  public:
    /// What the reader reads for a name.
    [[nodiscard]] virtual std::optional<DefaultsValue> readStored(std::string_view name,
                                                                  StoredValueReader reader) const = 0;
    /// Stores a value, or nothing when absent. An error leaves what was there.
    virtual DefaultsWritten writeStored(std::optional<DefaultsValue> value, std::string_view name) = 0;
    /// Stores nothing.
    virtual DefaultsWritten remove(std::string_view name) = 0;
    /// What the type reads whenever its value has changed since somebody subscribed; not what it reads then. Without
    /// end. Comes on the thread that made the change; the main thread for changes by other processes.
    [[nodiscard]] virtual AnyPublisher<std::optional<DefaultsValue>> observeStored(std::string_view name,
                                                                                   StoredValueType type) = 0;

    /// The value of a name; absent when nothing is stored, or something of another type. An absent number reads as
    /// zero.
    template <UserDefaultsRepresentable Value>
    [[nodiscard]] std::optional<Value> read(std::string_view name) const {
        return UserDefaultsRepresentation<Value>::fromStored(
            readStored(name, UserDefaultsRepresentation<Value>::readStoredValue));
    }
    /// Stores a value; one that its type stores as nothing removes the entry. An error leaves what was there.
    template <UserDefaultsRepresentable Value>
    DefaultsWritten write(const Value& value, std::string_view name) {
        return writeStored(UserDefaultsRepresentation<Value>::userDefaultsStorage(value), name);
    }
    /// The value of a name whenever it has changed, absent as in `read`.
    template <UserDefaultsRepresentable Value>
    [[nodiscard]] AnyPublisher<std::optional<Value>> observe(std::string_view name) {
        return observeStored(name, storedValueType<Value>).map([](const std::optional<DefaultsValue>& stored) {
            return UserDefaultsRepresentation<Value>::fromStored(stored);
        });
    }

    /// The value of a key, or its default value.
    template <UserDefaultsKey Key>
    [[nodiscard]] typename Key::Value get(const Key& key) const {
        return read<typename Key::Value>(key.key).value_or(Key::defaultValue);
    }
    /// Stores the value of a key. An error leaves what was there.
    template <UserDefaultsKey Key>
    DefaultsWritten set(const typename Key::Value& value, const Key& key) {
        return write(value, key.key);
    }
    /// The value of a key whenever it has changed, or its default value.
    template <UserDefaultsKey Key>
    [[nodiscard]] AnyPublisher<typename Key::Value> observe(const Key& key) {
        return observe<typename Key::Value>(key.key).map(
            [](const std::optional<typename Key::Value>& value) { return value.value_or(Key::defaultValue); });
    }
};

template <>
class Forwarding<SystemUserDefaultsService> : public SystemUserDefaultsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SystemUserDefaultsService> target() const = 0;

    [[nodiscard]] std::optional<DefaultsValue> readStored(std::string_view name,
                                                          StoredValueReader reader) const override {
        return target()->readStored(name, reader);
    }
    DefaultsWritten writeStored(std::optional<DefaultsValue> value, std::string_view name) override {
        return target()->writeStored(std::move(value), name);
    }
    DefaultsWritten remove(std::string_view name) override { return target()->remove(name); }
    [[nodiscard]] AnyPublisher<std::optional<DefaultsValue>> observeStored(std::string_view name,
                                                                           StoredValueType type) override {
        return target()->observeStored(name, type);
    }
};

namespace services {
inline constexpr ServiceKey<SystemUserDefaultsService> systemDefaults;
}

}  // namespace kestrel
