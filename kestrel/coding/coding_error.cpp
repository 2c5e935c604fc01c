#include <fmt/format.h>
#include <kestrel/coding/coding_error.h>
#include <kestrel/foundation/enumeration.h>

#include <algorithm>

namespace kestrel {
namespace {

bool isPlainName(std::string_view key) {
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    return !key.empty() && !digit(key.front()) &&
           std::ranges::all_of(key, [&](char c) { return letter(c) || digit(c); });
}

/// A key is the document's own text: quoted and with control characters written out, it cannot break the line.
std::string quoted(std::string_view key) {
    std::string text = "\"";
    for (const char c : key) {
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            text += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
        } else {
            text += c;
        }
    }
    return text + '"';
}

}  // namespace

std::string CodingPath::text() const {
    std::string text = "$";
    for (const CodingKey& key : keys_) {
        if (const auto* index = std::get_if<std::size_t>(&key)) {
            text += fmt::format("[{}]", *index);
        } else if (const auto& name = std::get<std::string>(key); isPlainName(name)) {
            text += '.';
            text += name;
        } else {
            text += '[' + quoted(name) + ']';
        }
    }
    return text;
}

std::string DecodingError::message() const {
    return fmt::format("{} at {}: {} (line {}, column {})", caseName(kind), codingPath.text(), description,
                       position.line, position.column);
}

std::string EncodingError::message() const {
    return fmt::format("{} at {}: {}", caseName(kind), codingPath.text(), description);
}

}  // namespace kestrel
