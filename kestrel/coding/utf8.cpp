#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <cstddef>

namespace kestrel {

namespace {

/// How many bytes the character at the front of a text takes; 0 when there is none.
std::size_t characterSize(std::string_view text) noexcept {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const auto continues = [&](std::size_t at) { return at < text.size() && (byte(at) & 0xc0U) == 0x80U; };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead >= 0xc2 && lead <= 0xdf) return continues(1) ? 2 : 0;
    if ((lead & 0xf0U) == 0xe0U) {
        if (!continues(1) || !continues(2)) return 0;
        const bool isOverlong = lead == 0xe0 && byte(1) < 0xa0;
        const bool isSurrogate = lead == 0xed && byte(1) >= 0xa0;
        return isOverlong || isSurrogate ? 0 : 3;
    }
    if (lead >= 0xf0 && lead <= 0xf4) {
        if (!continues(1) || !continues(2) || !continues(3)) return 0;
        const bool isOverlong = lead == 0xf0 && byte(1) < 0x90;
        const bool isBeyondUnicode = lead == 0xf4 && byte(1) >= 0x90;
        return isOverlong || isBeyondUnicode ? 0 : 4;
    }
    return 0;
}

}  // namespace

std::size_t validUTF8Prefix(std::string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        const char* const from = text.data() + at;
        const std::size_t count = std::min(text.size() - at, TextBlock::size);
        const auto block = count == TextBlock::size ? TextBlock::load(from) : TextBlock::load(from, count);
        if (const std::size_t passed = block.shortCharacters(); passed != 0) {
            at += std::min(passed, count);
            continue;
        }
        for (const std::size_t behind = at + count; at < behind;) {
            const std::size_t passed = characterSize(text.substr(at));
            if (passed == 0) return at;
            at += passed;
        }
    }
    return at;
}

bool isValidUTF8(std::string_view text) noexcept {
    return validUTF8Prefix(text) == text.size();
}

}  // namespace kestrel
