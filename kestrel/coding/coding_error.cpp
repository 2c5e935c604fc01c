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

/// A text with its control characters written out, so that it can neither break a line nor command a terminal.
std::string inOneLine(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            line += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
        } else {
            line += c;
        }
    }
    return line;
}

std::string quoted(std::string_view key) {
    std::string text;
    for (const char c : key) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return '"' + inOneLine(text) + '"';
}

/// A description may quote the document: what is too long for a line is cut, between characters.
std::string shownDescription(std::string_view description) {
    constexpr std::size_t longest = 400;
    if (description.size() <= longest) return inOneLine(description);
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(description[end]) & 0xc0U) == 0x80U)
        --end;
    return inOneLine(description.substr(0, end)) + "…";
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
    return fmt::format("{} at {}: {} (line {}, column {})", caseName(kind), codingPath.text(),
                       shownDescription(description), position.line, position.column);
}

std::string EncodingError::message() const {
    return fmt::format("{} at {}: {}", caseName(kind), codingPath.text(), shownDescription(description));
}

PlatformError platformError(const DecodingError& error) {
    return {.domain = "KestrelService.DecodingError",
            .code = static_cast<std::int64_t>(error.kind),
            .localizedDescription = error.message()};
}

PlatformError platformError(const EncodingError& error) {
    return {.domain = "KestrelService.EncodingError",
            .code = static_cast<std::int64_t>(error.kind),
            .localizedDescription = error.message()};
}

}  // namespace kestrel
