#include <kestrel/foundation/url.h>
#include <algorithm>
#include <boost/url/parse.hpp>

namespace kestrel {

namespace {

constexpr bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           c == '_' || c == '~';
}

void appendEncoded(std::string& text, char c) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    text += {'%', digits[byte >> 4U], digits[byte & 15U]};
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
    std::string encoded;
    encoded.reserve(text.size());
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            appendEncoded(encoded, c);
        } else {
            encoded += c;
        }
    }
    const auto parsed = boost::urls::parse_uri(encoded);
    if (!parsed) return std::nullopt;
    std::transform(encoded.begin(), encoded.begin() + static_cast<std::ptrdiff_t>(parsed->scheme().size()),
                   encoded.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return URL(std::move(encoded));
}

std::string percentEncoded(std::string_view text) {
    std::string encoded;
    for (const char c : text) {
        if (isUnreserved(c)) {
            encoded += c;
        } else {
            appendEncoded(encoded, c);
        }
    }
    return encoded;
}

}  // namespace kestrel
