#include <kestrel/coding/utf8.h>

#include <bit>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

std::size_t validUTF8Prefix(std::string_view text) noexcept {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t size = text.size();
    const auto continues = [&](std::size_t at) { return at < size && (bytes[at] & 0xc0U) == 0x80U; };
    std::size_t at = 0;
    while (at < size) {
        if (size - at >= 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + at, sizeof word);
            if ((word & 0x8080808080808080U) == 0) {
                at += 8;
                continue;
            }
        }
        const unsigned char lead = bytes[at];
        if (lead < 0x80) {
            at += 1;
        } else if (lead >= 0xc2 && lead <= 0xdf) {
            if (!continues(at + 1)) return at;
            at += 2;
        } else if ((lead & 0xf0U) == 0xe0U) {
            if (!continues(at + 1) || !continues(at + 2)) return at;
            if (lead == 0xe0 && bytes[at + 1] < 0xa0) return at;   // overlong
            if (lead == 0xed && bytes[at + 1] >= 0xa0) return at;  // a surrogate
            at += 3;
        } else if (lead >= 0xf0 && lead <= 0xf4) {
            if (!continues(at + 1) || !continues(at + 2) || !continues(at + 3)) return at;
            if (lead == 0xf0 && bytes[at + 1] < 0x90) return at;   // overlong
            if (lead == 0xf4 && bytes[at + 1] >= 0x90) return at;  // beyond U+10FFFF
            at += 4;
        } else {
            return at;
        }
    }
    return size;
}

bool isValidUTF8(std::string_view text) noexcept {
    return validUTF8Prefix(text) == text.size();
}

const char* plainRunEnd(const char* begin, const char* end, bool& hasHighBytes) noexcept {
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
            // The bits below the first special byte.
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

}  // namespace kestrel
