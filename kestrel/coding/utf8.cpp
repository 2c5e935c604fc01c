#include <kestrel/coding/utf8.h>

#include <cstdint>
#include <cstring>

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

}  // namespace kestrel
