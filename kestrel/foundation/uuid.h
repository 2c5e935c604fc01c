#pragma once

#include <kestrel/foundation/hashing.h>
#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// A 128-bit universally unique identifier. Values order by their sixteen bytes, which is also the order of their
/// texts.
class UUID {
  public:
    /// The most significant byte first.
    using Bytes = std::array<std::uint8_t, 16>;

    /// All zero.
    constexpr UUID() noexcept = default;
    /// From its sixteen bytes, read as two big-endian words.
    constexpr UUID(std::uint64_t high, std::uint64_t low) noexcept : high_(high), low_(low) {}

    /// A random identifier (version 4). Drawn from a generator of the calling thread, which is seeded by the operating
    /// system and again after a fork, so that parent and child never draw the same one.
    [[nodiscard]] static UUID random();
    /// Reads the 36-character form with hyphens, in either case. Absent for anything else.
    [[nodiscard]] static std::optional<UUID> parse(std::string_view text);

    /// The standard form: 36 characters, upper-case hexadecimal, hyphenated.
    [[nodiscard]] std::string text() const;
    /// All sixteen, as the text spells them.
    [[nodiscard]] Bytes bytes() const noexcept;
    /// The first eight bytes as a big-endian word.
    [[nodiscard]] constexpr std::uint64_t high() const noexcept { return high_; }
    /// The last eight bytes as a big-endian word.
    [[nodiscard]] constexpr std::uint64_t low() const noexcept { return low_; }

    friend constexpr auto operator<=>(const UUID&, const UUID&) = default;

  private:
    std::uint64_t high_ = 0;
    std::uint64_t low_ = 0;
};

}  // namespace kestrel

template <>
struct std::hash<kestrel::UUID> {
    [[nodiscard]] std::size_t operator()(const kestrel::UUID& value) const noexcept {
        return static_cast<std::size_t>(kestrel::mixWords(value.high(), value.low()));
    }
};
