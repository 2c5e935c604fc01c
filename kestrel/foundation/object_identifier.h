#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace kestrel {

/// The identity of a live object in memory: its address as an unsigned machine word. Holds nothing alive; an identity
/// may be taken again once its object is gone.
class ObjectIdentifier {
  public:
    /// Of the object at that address.
    explicit ObjectIdentifier(const void* object) noexcept : word_(reinterpret_cast<std::uintptr_t>(object)) {}
    /// From a word that `word` gave.
    constexpr explicit ObjectIdentifier(std::uintptr_t word) noexcept : word_(word) {}

    /// The address as a number.
    [[nodiscard]] constexpr std::uintptr_t word() const noexcept { return word_; }
    /// "ObjectIdentifier(0x" + sixteen lower-case hexadecimal digits + ")".
    [[nodiscard]] std::string description() const;

    friend constexpr auto operator<=>(ObjectIdentifier, ObjectIdentifier) = default;

  private:
    std::uintptr_t word_;
};

}  // namespace kestrel
