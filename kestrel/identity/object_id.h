#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/hashing.h>
#include <kestrel/foundation/object_identifier.h>
#include <kestrel/foundation/uuid.h>
#include <kestrel/identity/record_types.h>
#include <array>
#include <compare>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// What an identifier says of its record: saved, with its primary key; new in memory, with a UUID; or temporary, tied
/// to the identity of a live object. Two are equal when they are of the same case with the same payload; a record that
/// is saved gets another identifier.
///
/// Ordered persistent, then temp, then new; within a case by key as a signed number, by identity as an unsigned one, by
/// UUID.
class ObjectIDStorage {
  public:
    /// Whether there is a record in the store.
    enum class Case : std::uint8_t {
        persistent,  ///< saved, with a primary key
        new_,        ///< not saved, with a UUID
        temp         ///< tied to an object in memory
    };

    /// Of a saved record. Every key is one, negative ones and 0 too.
    [[nodiscard]] static constexpr ObjectIDStorage persistent(std::int64_t primaryKey) noexcept {
        return {Case::persistent, static_cast<std::uint64_t>(primaryKey), 0};
    }
    /// Of a record that is not yet saved.
    [[nodiscard]] static constexpr ObjectIDStorage new_(UUID uuid) noexcept {
        return {Case::new_, uuid.high(), uuid.low()};
    }
    /// Of an object in memory, as long as it lives.
    [[nodiscard]] static constexpr ObjectIDStorage temp(ObjectIdentifier identity) noexcept {
        return {Case::temp, identity.word(), 0};
    }

    /// Which of the three it is.
    [[nodiscard]] constexpr Case which() const noexcept { return case_; }
    /// The primary key; absent unless saved.
    [[nodiscard]] constexpr std::optional<std::int64_t> persistent() const noexcept {
        if (case_ != Case::persistent) return std::nullopt;
        return static_cast<std::int64_t>(first_);
    }
    /// The UUID; absent unless new.
    [[nodiscard]] constexpr std::optional<UUID> new_() const noexcept {
        if (case_ != Case::new_) return std::nullopt;
        return UUID(first_, second_);
    }
    /// The object's identity; absent unless temporary.
    [[nodiscard]] constexpr std::optional<ObjectIdentifier> temp() const noexcept {
        if (case_ != Case::temp) return std::nullopt;
        return ObjectIdentifier(static_cast<std::uintptr_t>(first_));
    }

    /// Combines what equality compares.
    constexpr void hash(Hasher& hasher) const noexcept {
        hasher.combine(static_cast<std::uint64_t>(case_));
        hasher.combine(first_);
        if (case_ == Case::new_) hasher.combine(second_);
    }
    friend constexpr bool operator==(const ObjectIDStorage&, const ObjectIDStorage&) = default;
    /// Persistent, then temp, then new; within a case by the payload.
    friend constexpr std::strong_ordering operator<=>(const ObjectIDStorage& a, const ObjectIDStorage& b) noexcept {
        if (a.case_ != b.case_) return a.rank() <=> b.rank();
        if (a.case_ == Case::persistent)
            return static_cast<std::int64_t>(a.first_) <=> static_cast<std::int64_t>(b.first_);
        if (a.first_ != b.first_) return a.first_ <=> b.first_;
        return a.second_ <=> b.second_;
    }

  private:
    constexpr ObjectIDStorage(Case which, std::uint64_t first, std::uint64_t second) noexcept
        : first_(first), second_(second), case_(which) {}
    [[nodiscard]] constexpr int rank() const noexcept {
        return case_ == Case::persistent ? 0 : case_ == Case::temp ? 1 : 2;
    }

    std::uint64_t first_;
    std::uint64_t second_;
    Case case_;
};

namespace identity_detail {

template <class I>
inline constexpr bool isCharacterOrBool =
    std::same_as<I, bool> || std::same_as<I, char> || std::same_as<I, wchar_t> || std::same_as<I, char8_t> ||
    std::same_as<I, char16_t> || std::same_as<I, char32_t>;

}  // namespace identity_detail

/// What generic code asks of an identifier.
template <class ID>
concept ObjectIDProtocol = requires(const ID& id) {
    { id.isPersistent() } -> std::same_as<bool>;
};

/// The identifier of a record of type `T`: an immutable value, compared and hashed by its storage. Identifiers of
/// different record types do not compare, nor do they convert into each other.
///
/// `ObjectID<Contact> id = 42;` names a saved record by its primary key; `ObjectID<Contact>()` is a new one's.
template <class T>
class ObjectID {
  public:
    /// What it identifies.
    using Record = T;
    using Coded = void;

    /// A record that is not yet saved, with a new random UUID.
    ObjectID() : storage_(ObjectIDStorage::new_(UUID::random())) {}
    /// A record that is tied to an object in memory.
    explicit constexpr ObjectID(ObjectIdentifier tempID) noexcept : storage_(ObjectIDStorage::temp(tempID)) {}
    /// A saved record. Any integer that fits 64 signed bits; negative keys are keys like others.
    template <std::integral I>
        requires(!identity_detail::isCharacterOrBool<I> &&
                 (std::signed_integral<I> || sizeof(I) < sizeof(std::int64_t)))
    // NOLINTNEXTLINE(google-explicit-constructor): an integer literal is an identifier.
    constexpr ObjectID(I primaryKey) noexcept
        : storage_(ObjectIDStorage::persistent(static_cast<std::int64_t>(primaryKey))) {}
    /// With what another identifier says of its record.
    explicit constexpr ObjectID(ObjectIDStorage storage) noexcept : storage_(storage) {}

    /// What it says of its record. Valid as long as the value.
    [[nodiscard]] constexpr const ObjectIDStorage& storage() const noexcept { return storage_; }
    /// The primary key of a saved record.
    [[nodiscard]] constexpr std::optional<std::int64_t> value() const noexcept { return storage_.persistent(); }
    /// Whether the record is saved: then the identifier has a keyed form.
    [[nodiscard]] constexpr bool isPersistent() const noexcept {
        return storage_.which() == ObjectIDStorage::Case::persistent;
    }
    /// Not saved; temporary identifiers count as new.
    [[nodiscard]] constexpr bool isNew() const noexcept { return !isPersistent(); }

    /// "#42", the UUID, or the printed object identity.
    [[nodiscard]] std::string description() const;
    /// "Contact/42", "Contact/new/UUID)", "Contact/temp/IDENTITY)", with the entity's name in front. The closing
    /// parentheses belong to the text.
    [[nodiscard]] std::string stringValue() const;
    /// As stringValue().
    [[nodiscard]] std::string debugOutput() const { return stringValue(); }
    /// As stringValue().
    [[nodiscard]] std::string debugDescription() const { return stringValue(); }

    /// The same case with the same payload.
    friend constexpr bool operator==(const ObjectID& a, const ObjectID& b) noexcept { return a.storage_ == b.storage_; }
    /// As ObjectIDStorage is ordered.
    friend constexpr std::strong_ordering operator<=>(const ObjectID& a, const ObjectID& b) noexcept {
        return a.storage_ <=> b.storage_;
    }

  private:
    ObjectIDStorage storage_;
};

namespace identity_detail {

/// What coding an identifier needs to know of its record type.
struct WireNames {
    std::string_view recordName;
    /// `{"recordName":"NAME","primaryKey":`, the way in which identifiers are written.
    std::string_view nameFirst;
    /// `,"recordName":"NAME"}`, the end of one that has its key first.
    std::string_view nameLast;
};

/// `prefix` + the record's name + `suffix`, made when the program is compiled.
template <class T, std::size_t P, std::size_t S>
consteval auto decoratedName(const char (&prefix)[P], const char (&suffix)[S]) {
    std::array<char, P + S - 2 + recordNameOf<T>.size()> text{};
    std::size_t at = 0;
    for (std::size_t i = 0; i + 1 < P; ++i)
        text[at++] = prefix[i];
    for (const char c : recordNameOf<T>)
        text[at++] = c;
    for (std::size_t i = 0; i + 1 < S; ++i)
        text[at++] = suffix[i];
    return text;
}
template <class T>
inline constexpr auto nameFirstText = decoratedName<T>("{\"recordName\":\"", "\",\"primaryKey\":");
template <class T>
inline constexpr auto nameLastText = decoratedName<T>(",\"recordName\":\"", "\"}");
template <class T>
inline constexpr WireNames wireNames{recordNameOf<T>,
                                     {nameFirstText<T>.data(), nameFirstText<T>.size()},
                                     {nameLastText<T>.data(), nameLastText<T>.size()}};

bool encodeObjectID(JSONWriter& writer, const ObjectIDStorage& storage, const WireNames& names);
bool decodeObjectID(JSONReader& reader, ObjectIDStorage& storage, const WireNames& names);
std::string description(const ObjectIDStorage& storage);
std::string stringValue(std::string_view entityName, const ObjectIDStorage& storage);

}  // namespace identity_detail

template <class T>
std::string ObjectID<T>::description() const {
    return identity_detail::description(storage_);
}

template <class T>
std::string ObjectID<T>::stringValue() const {
    return identity_detail::stringValue(entityNameOf<T>, storage_);
}

/// Written as "recordName" and "primaryKey", and only when persistent: an unsaved identifier fails with `invalidValue`.
/// Reading fails with `dataCorrupted` at "recordName" when the identifier is of another record type.
template <class T>
struct Codec<ObjectID<T>> {
    static bool encode(JSONWriter& writer, const ObjectID<T>& id) {
        return identity_detail::encodeObjectID(writer, id.storage(), identity_detail::wireNames<T>);
    }
    static bool decode(JSONReader& reader, ObjectID<T>& id) {
        ObjectIDStorage storage = ObjectIDStorage::persistent(0);
        if (!identity_detail::decodeObjectID(reader, storage, identity_detail::wireNames<T>)) return false;
        id = ObjectID<T>(storage);
        return true;
    }
    static constexpr ObjectID<T> blank() { return ObjectID<T>(0); }
    static void hash(Hasher& hasher, const ObjectID<T>& id) { id.storage().hash(hasher); }
    static void mirror(DebugMirror& mirror, const ObjectID<T>& id) { mirror.word(id.stringValue()); }
};

}  // namespace kestrel
