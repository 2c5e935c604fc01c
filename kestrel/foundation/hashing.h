#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrel {

/// Folds two words into one whose bits all depend on both: the two halves of their 128-bit product, combined.
[[nodiscard]] constexpr std::uint64_t mixWords(std::uint64_t a, std::uint64_t b) noexcept {
    // Digits of pi, so that a zero word does not annihilate the other one.
    a ^= 0x243f6a8885a308d3U;
    b ^= 0x13198a2e03707344U;
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

/// Gathers the words of a value, in order, into one hash. Not keyed: the result is the same in every run and must not
/// be relied on against an adversary, nor stored.
class Hasher {
  public:
    /// Combines a word. The order of the words counts.
    constexpr void combine(std::uint64_t word) noexcept { state_ = mixWords(state_, word); }
    /// Combines a text by its bytes and its length.
    constexpr void combine(std::string_view text) noexcept {
        std::uint64_t word = 0;
        std::size_t filled = 0;
        for (const char c : text) {
            word = (word << 8U) | static_cast<unsigned char>(c);
            if (++filled % sizeof word == 0) combine(word);
        }
        combine(word ^ (static_cast<std::uint64_t>(text.size()) << 56U));
        combine(text.size());
    }
    /// The hash of all that was combined so far.
    [[nodiscard]] constexpr std::uint64_t result() const noexcept { return state_; }

  private:
    std::uint64_t state_ = 0x9e3779b97f4a7c15U;
};

}  // namespace kestrel
