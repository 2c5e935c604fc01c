#include <kestrel/foundation/unicode.h>

namespace kestrel {

CodePoint codePointAt(std::string_view text, std::size_t at) noexcept {
    constexpr CodePoint none{U'\uFFFD', 1};
    const auto byte = [&](std::size_t i) -> unsigned {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    if (lead < 0xc2 || lead > 0xf4) return none;
    const std::size_t size = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    char32_t value = lead & (0x7fU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xc0U) != 0x80) return none;
        value = value << 6U | (byte(i) & 0x3fU);
    }
    const bool isOverlong = (size == 3 && value < 0x800) || (size == 4 && value < 0x10000);
    const bool isSurrogate = value >= 0xd800 && value < 0xe000;
    if (isOverlong || isSurrogate || value > 0x10ffff) return none;
    return {value, size};
}

bool isWhiteSpace(char32_t c) noexcept {
    if (c < 0x80) return c == U' ' || (c >= U'\t' && c <= U'\r');
    return c == 0x85 || c == 0xa0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200a) || c == 0x2028 || c == 0x2029 ||
           c == 0x202f || c == 0x205f || c == 0x3000;
}

std::string_view trimmedWhiteSpace(std::string_view text) noexcept {
    while (!text.empty()) {
        const CodePoint first = codePointAt(text, 0);
        if (!isWhiteSpace(first.value)) break;
        text.remove_prefix(first.size);
    }
    while (!text.empty()) {
        // No white space takes more than three bytes.
        std::size_t length = 1;
        while (length < 3 && length < text.size() &&
               (static_cast<unsigned char>(text[text.size() - length]) & 0xc0U) == 0x80) {
            ++length;
        }
        const CodePoint last = codePointAt(text, text.size() - length);
        if (last.size != length || !isWhiteSpace(last.value)) break;
        text.remove_suffix(length);
    }
    return text;
}

}  // namespace kestrel
