#pragma once

#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/url.h>
#include <kestrel/platform/user_defaults_store.h>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace kestrel {

/// How a type is stored as a preference. A host specialises it for types of its own, with
///
///     // Absent when it is no such value.
///     static std::optional<Value> fromStored(const std::optional<DefaultsValue>&);
///     // Absent removes the entry.
///     static std::optional<DefaultsValue> userDefaultsStorage(const Value&);
///     static std::optional<DefaultsValue> readStoredValue(std::string_view name, const UserDefaultsStore&);
///
/// for the last of which deriving from StoredObject is enough.
template <class Value>
struct UserDefaultsRepresentation;

/// A type that preferences may have: texts, data, numbers, Booleans, URLs, dates, enumerations with raw values, and
/// optionals of them.
template <class Value>
concept UserDefaultsRepresentable =
    std::equality_comparable<Value> &&
    requires(const Value& value, const std::optional<DefaultsValue>& stored, const UserDefaultsStore& store) {
        { UserDefaultsRepresentation<Value>::fromStored(stored) } -> std::same_as<std::optional<Value>>;
        { UserDefaultsRepresentation<Value>::userDefaultsStorage(value) } -> std::same_as<std::optional<DefaultsValue>>;
        {
            UserDefaultsRepresentation<Value>::readStoredValue(std::string_view(), store)
        } -> std::same_as<std::optional<DefaultsValue>>;
    };

/// Reads what is there, if anything.
struct StoredObject {
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return store.object(name);
    }
};

/// A value that is stored as it is.
template <class Value>
struct StoredAsItself : StoredObject {
    [[nodiscard]] static std::optional<Value> fromStored(const std::optional<DefaultsValue>& stored) {
        if (!stored) return std::nullopt;
        const auto* value = std::get_if<Value>(&*stored);
        return value == nullptr ? std::nullopt : std::optional<Value>(*value);
    }
    [[nodiscard]] static std::optional<DefaultsValue> userDefaultsStorage(const Value& value) {
        return DefaultsValue(value);
    }
};

template <>
struct UserDefaultsRepresentation<std::string> : StoredAsItself<std::string> {};
template <>
struct UserDefaultsRepresentation<Data> : StoredAsItself<Data> {};
template <>
struct UserDefaultsRepresentation<Date> : StoredAsItself<Date> {};

// Numbers and Booleans are read by the store's own accessors, so that whatever is there is turned into one, and nothing
// at all reads as zero: such a key never falls back to its default value.

template <>
struct UserDefaultsRepresentation<double> : StoredAsItself<double> {
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return store.doubleValue(name);
    }
};
template <>
struct UserDefaultsRepresentation<bool> : StoredAsItself<bool> {
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return store.boolean(name);
    }
};
template <>
struct UserDefaultsRepresentation<float> {
    [[nodiscard]] static std::optional<float> fromStored(const std::optional<DefaultsValue>& stored) {
        const auto number = UserDefaultsRepresentation<double>::fromStored(stored);
        return number ? std::optional(static_cast<float>(*number)) : std::nullopt;
    }
    [[nodiscard]] static std::optional<DefaultsValue> userDefaultsStorage(float value) {
        return static_cast<double>(value);
    }
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return static_cast<double>(store.floatValue(name));
    }
};
template <std::signed_integral Integer>
struct UserDefaultsRepresentation<Integer> {
    /// Absent beyond the range of the type.
    [[nodiscard]] static std::optional<Integer> fromStored(const std::optional<DefaultsValue>& stored) {
        const auto* number = stored ? std::get_if<std::int64_t>(&*stored) : nullptr;
        if (number == nullptr || !std::in_range<Integer>(*number)) return std::nullopt;
        return static_cast<Integer>(*number);
    }
    [[nodiscard]] static std::optional<DefaultsValue> userDefaultsStorage(Integer value) {
        return static_cast<std::int64_t>(value);
    }
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return store.integer(name);
    }
};
template <>
struct UserDefaultsRepresentation<URL> : StoredAsItself<URL> {
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return store.url(name);
    }
};
/// By its raw value. A number that is no case's reads as nothing.
template <IntegerBacked E>
struct UserDefaultsRepresentation<E> : StoredObject {
    [[nodiscard]] static std::optional<E> fromStored(const std::optional<DefaultsValue>& stored) {
        const auto raw = StoredAsItself<std::int64_t>::fromStored(stored);
        return raw ? fromRawValue<E>(*raw) : std::nullopt;
    }
    [[nodiscard]] static std::optional<DefaultsValue> userDefaultsStorage(E value) { return rawValue(value); }
};
/// Absent is a value of its own: what is not stored, or of another type, reads as an absent value and not as nothing,
/// so that a default value never stands in for it. What its type reads where nothing is stored, zero, it reads too.
template <class Wrapped>
struct UserDefaultsRepresentation<std::optional<Wrapped>> {
    [[nodiscard]] static std::optional<std::optional<Wrapped>> fromStored(const std::optional<DefaultsValue>& stored) {
        return std::optional<std::optional<Wrapped>>(std::in_place,
                                                     UserDefaultsRepresentation<Wrapped>::fromStored(stored));
    }
    [[nodiscard]] static std::optional<DefaultsValue> userDefaultsStorage(const std::optional<Wrapped>& value) {
        return value ? UserDefaultsRepresentation<Wrapped>::userDefaultsStorage(*value) : std::nullopt;
    }
    [[nodiscard]] static std::optional<DefaultsValue> readStoredValue(std::string_view name,
                                                                      const UserDefaultsStore& store) {
        return UserDefaultsRepresentation<Wrapped>::readStoredValue(name, store);
    }
};

/// Reads a preference for some type.
using StoredValueReader = std::optional<DefaultsValue> (*)(std::string_view name, const UserDefaultsStore& store);

/// A type of preferences, as far as stored forms go: how one is read, and whether two of them are equal values.
struct StoredValueType {
    /// Reads one from a store.
    StoredValueReader read;
    /// Whether two stored forms read as the same value.
    bool (*areEqual)(const std::optional<DefaultsValue>& a, const std::optional<DefaultsValue>& b);
};
/// What a preference of that type does.
template <UserDefaultsRepresentable Value>
inline constexpr StoredValueType storedValueType{
    .read = UserDefaultsRepresentation<Value>::readStoredValue,
    .areEqual = [](const std::optional<DefaultsValue>& a, const std::optional<DefaultsValue>& b) {
        return UserDefaultsRepresentation<Value>::fromStored(a) == UserDefaultsRepresentation<Value>::fromStored(b);
    }};

/// A preference: the name of its entry, its type, and what it is when nothing is stored.
template <class Key>
concept UserDefaultsKey = UserDefaultsRepresentable<typename Key::Value> && requires(const Key& key) {
    { key.key } -> std::convertible_to<std::string_view>;
    { Key::defaultValue } -> std::convertible_to<typename Key::Value>;
};

}  // namespace kestrel
