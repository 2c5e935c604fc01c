#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

/// Whether a text is UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
[[nodiscard]] bool isValidUTF8(std::string_view text) noexcept;

/// The length of the longest prefix that is UTF-8; the size of the text when all of it is.
[[nodiscard]] std::size_t validUTF8Prefix(std::string_view text) noexcept;

/// Sixteen bytes of text, looked at together.
class TextBlock {
  public:
    /// In bytes.
    static constexpr std::size_t size = 16;

    /// The sixteen bytes from there on, which have to be there.
    [[nodiscard]] static TextBlock load(const char* from) noexcept {
        TextBlock block;
        std::memcpy(&block.bytes_, from, size);
        return block;
    }
    /// Fewer bytes, and zeros behind them; reads none beyond them.
    [[nodiscard]] static TextBlock load(const char* from, std::size_t count) noexcept {
        std::array<std::uint64_t, 2> words{};
        if (count >= 8) {
            words[0] = word<std::uint64_t>(from);
            words[1] = word<std::uint64_t>(from + count - 8) >> (8 * (15 - count)) >> 8U;
        } else if (count >= 4) {
            words[0] = word<std::uint32_t>(from) | static_cast<std::uint64_t>(word<std::uint32_t>(from + count - 4))
                                                       << (8 * (count - 4));
        } else if (count != 0) {
            words[0] = word<std::uint8_t>(from) |
                       static_cast<std::uint64_t>(word<std::uint8_t>(from + count / 2)) << (8 * (count / 2)) |
                       static_cast<std::uint64_t>(word<std::uint8_t>(from + count - 1)) << (8 * (count - 1));
        }
        TextBlock block;
        std::memcpy(&block.bytes_, words.data(), size);
        return block;
    }
    /// Writes all sixteen bytes there.
    void store(char* to) const noexcept { std::memcpy(to, &bytes_, size); }

#if defined(__SSE2__)
    /// A bit for each byte that is a quote, a backslash or a control character, the first byte's being the lowest.
    [[nodiscard]] unsigned specials() const noexcept {
        const __m128i controls = _mm_cmpeq_epi8(_mm_min_epu8(bytes_, _mm_set1_epi8(0x1f)), bytes_);
        const __m128i quotes = _mm_cmpeq_epi8(bytes_, _mm_set1_epi8('"'));
        const __m128i backslashes = _mm_cmpeq_epi8(bytes_, _mm_set1_epi8('\\'));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(controls, _mm_or_si128(quotes, backslashes))));
    }
    /// A bit for each byte above 0x7f.
    [[nodiscard]] unsigned highs() const noexcept { return static_cast<unsigned>(_mm_movemask_epi8(bytes_)); }
    /// How many bytes the whole characters take, when all are of one or two bytes: 16, or 15 when the last byte is the
    /// first one of two. 0 when there are others, or what is no UTF-8, and where that is not looked at.
    [[nodiscard]] unsigned shortCharacters() const noexcept {
        const auto mask = [](__m128i found) { return static_cast<unsigned>(_mm_movemask_epi8(found)); };
        const unsigned leads = mask(_mm_and_si128(_mm_cmpgt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(0xc1))),
                                                  _mm_cmplt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(0xe0)))));
        const unsigned continuations = mask(_mm_cmplt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(0xc0))));
        const bool areShort = highs() == (leads | continuations) && continuations == (leads << 1U & 0xffffU);
        return areShort ? 16 - (leads >> 15U) : 0;
    }
#else
    [[nodiscard]] unsigned specials() const noexcept {
        return mask([](std::uint64_t word) {
            const auto nonzeros = [](std::uint64_t w) { return ((w & lows) + lows) | w; };
            return ~(((word & lows) + ones * 0x60) | word) | ~nonzeros(word ^ (ones * '"')) |
                   ~nonzeros(word ^ (ones * '\\'));
        });
    }
    [[nodiscard]] unsigned highs() const noexcept {
        return mask([](std::uint64_t word) { return word; });
    }
    [[nodiscard]] unsigned shortCharacters() const noexcept { return highs() == 0 ? 16 : 0; }
#endif

  private:
    template <class Word>
    [[nodiscard]] static Word word(const char* from) noexcept {
        Word loaded;
        std::memcpy(&loaded, from, sizeof loaded);
        return loaded;
    }

#if defined(__SSE2__)
    __m128i bytes_;
#else
    static_assert(std::endian::native == std::endian::little);
    static constexpr std::uint64_t ones = 0x0101010101010101U;
    static constexpr std::uint64_t lows = ones * 0x7f;
    /// The highest bits of the bytes of what `look` makes of each word.
    template <class Look>
    [[nodiscard]] unsigned mask(Look look) const noexcept {
        const auto gathered = [&](std::uint64_t word) {
            return static_cast<unsigned>(((look(word) & ones * 0x80) * 0x0002040810204081U) >> 56U);
        };
        return gathered(bytes_[0]) | gathered(bytes_[1]) << 8U;
    }

    std::array<std::uint64_t, 2> bytes_;
#endif
};

/// The plain run at the front of `[begin, end)`: up to the first quote, backslash or control character. `hasHighBytes`
/// becomes true when there is a byte above 0x7f in the run. Sixteen bytes at a time where sixteen are left.
[[nodiscard]] inline const char* plainRunEnd(const char* begin, const char* end, bool& hasHighBytes) noexcept {
    const char* at = begin;
    unsigned high = 0;
    while (end - at >= static_cast<std::ptrdiff_t>(TextBlock::size)) {
        const auto block = TextBlock::load(at);
        const unsigned specials = block.specials();
        if (specials != 0) {
            // Of the bytes in front of the first special one.
            high |= block.highs() & (specials - 1U) & ~specials;
            hasHighBytes |= high != 0;
            return at + std::countr_zero(specials);
        }
        high |= block.highs();
        at += TextBlock::size;
    }
    hasHighBytes |= high != 0;
    for (; at != end; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte == '"' || byte == '\\' || byte < 0x20) break;
        hasHighBytes |= byte >= 0x80;
    }
    return at;
}

}  // namespace kestrel
