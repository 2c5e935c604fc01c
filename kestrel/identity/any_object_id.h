#pragma once

#include <kestrel/foundation/hashing.h>
#include <kestrel/identity/object_id.h>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// The identifier of a record of any type: the record type is erased into the name of its entity. Compared, ordered and
/// hashed by the entity's name, byte for byte, and then by the storage; it has no keyed form.
///
/// A small value: the name is static text that lives as long as the program, never a copy.
class AnyObjectID {
  public:
    /// The identifier without its type. Any typed one converts.
    template <class T>
    // NOLINTNEXTLINE(google-explicit-constructor): erasing the type loses no value.
    constexpr AnyObjectID(const ObjectID<T>& id) noexcept : entity_(&entityOf<T>), storage_(id.storage()) {}

    /// That of the record type, of the register or of the type itself.
    [[nodiscard]] constexpr std::string_view entityName() const noexcept { return entity_->name; }
    /// What it says of its record. Valid as long as the value.
    [[nodiscard]] constexpr const ObjectIDStorage& objectIDStorage() const noexcept { return storage_; }
    /// That of a saved record; absent for any other one.
    [[nodiscard]] constexpr std::optional<std::int64_t> primaryKey() const noexcept { return storage_.persistent(); }
    /// The typed identifier again, when it is one of a `T`.
    template <class T>
    [[nodiscard]] constexpr std::optional<ObjectID<T>> as() const noexcept {
        if (entityName() != entityNameOf<T>) return std::nullopt;
        return ObjectID<T>(storage_);
    }
    /// As `ObjectID::stringValue`: "Organization/7".
    [[nodiscard]] std::string stringValue() const { return identity_detail::stringValue(entityName(), storage_); }

    /// The identifier of a saved record by its text, such as "Organization/7", for every entity of the register. Absent
    /// for any other text.
    [[nodiscard]] static std::optional<AnyObjectID> parse(std::string_view text);

    /// Combines what equality compares.
    constexpr void hash(Hasher& hasher) const noexcept {
        hasher.combine(entity_->hash);
        storage_.hash(hasher);
    }
    /// The same entity and the same storage.
    friend constexpr bool operator==(const AnyObjectID& a, const AnyObjectID& b) noexcept {
        return a.storage_ == b.storage_ && (a.entity_ == b.entity_ || a.entity_->name == b.entity_->name);
    }
    /// By the entity's name, then by the storage.
    friend constexpr std::strong_ordering operator<=>(const AnyObjectID& a, const AnyObjectID& b) noexcept {
        if (a.entity_ != b.entity_) {
            if (const auto order = a.entity_->name <=> b.entity_->name; order != 0) return order;
        }
        return a.storage_ <=> b.storage_;
    }

  private:
    /// An entity's name with its hash, so that neither is worked out again for an identifier.
    struct Entity {
        std::string_view name;
        std::uint64_t hash;
    };
    template <class T>
    static constexpr Entity entityOf{entityNameOf<T>, [] {
                                         Hasher hasher;
                                         hasher.combine(entityNameOf<T>);
                                         return hasher.result();
                                     }()};

    const Entity* entity_;
    ObjectIDStorage storage_;
};

}  // namespace kestrel

template <>
struct std::hash<kestrel::AnyObjectID> {
    using is_avalanching = void;
    [[nodiscard]] constexpr std::size_t operator()(const kestrel::AnyObjectID& id) const noexcept {
        kestrel::Hasher hasher;
        id.hash(hasher);
        return static_cast<std::size_t>(hasher.result());
    }
};
