#pragma once

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

/// The plain run at the front of `[begin, end)`: up to the first quote, backslash or control character. `hasHighBytes`
/// becomes true when there is a byte above 0x7f in the run. Sixteen bytes at a time where sixteen are left.
[[nodiscard]] inline const char* plainRunEnd(const char* begin, const char* end, bool& hasHighBytes) noexcept {
    const char* at = begin;
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i lastControl = _mm_set1_epi8(0x1f);
    unsigned high = 0;
    while (end - at >= 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i special =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(block, quote), _mm_cmpeq_epi8(block, backslash)),
                         _mm_cmpeq_epi8(_mm_min_epu8(block, lastControl), block));
        const auto specials = static_cast<unsigned>(_mm_movemask_epi8(special));
        const auto highs = static_cast<unsigned>(_mm_movemask_epi8(block));
        if (specials != 0) {
            // Of the bytes in front of the first special one.
            high |= highs & (specials - 1U) & ~specials;
            hasHighBytes |= high != 0;
            return at + std::countr_zero(specials);
        }
        high |= highs;
        at += 16;
    }
    hasHighBytes |= high != 0;
#endif
    for (; at != end; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte == '"' || byte == '\\' || byte < 0x20) break;
        hasHighBytes |= byte >= 0x80;
    }
    return at;
}

/// Whether a word of eight bytes has a quote, a backslash or a control character among them; bytes above 0x7f do not
/// count.
[[nodiscard]] constexpr bool hasSpecialByte(std::uint64_t word) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highs = 0x8080808080808080U;
    const auto zeros = [](std::uint64_t w) { return (w - ones) & ~w & highs; };
    const std::uint64_t controls = (word - ones * 0x20) & ~word & highs;
    return (zeros(word ^ (ones * '"')) | zeros(word ^ (ones * '\\')) | controls) != 0;
}

}  // namespace kestrel
