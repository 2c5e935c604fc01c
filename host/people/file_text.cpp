#include <fmt/format.h>
#include <glib.h>
#include <host/people/file_text.h>
#include <host/people/library_objects.h>
#include <host/terminal/text.h>
#include <kestrel/coding/utf8.h>

#include <algorithm>
#include <utility>

namespace kestrel::host {
namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The text in UTF-8, when all of it is of the character set.
std::optional<std::string> converted(std::string_view text, const char* charset) {
    gsize written = 0;
    const Owned<char, g_free> utf8(
        g_convert(text.data(), static_cast<gssize>(text.size()), "UTF-8", charset, nullptr, &written, nullptr));
    if (!utf8) return std::nullopt;
    return std::string(utf8.get(), written);
}

/// Whether a text has characters beyond ASCII that are not U+FFFD.
bool hasForeignLetters(std::string_view text) {
    constexpr char32_t replacement = U'\ufffd';
    return std::ranges::any_of(codePoints(text), [](char32_t code) { return code >= 0x80 && code != replacement; });
}

/// The component's name when the line is `word`, a colon and a name.
std::string componentOf(std::string_view line, std::string_view word) {
    if (line.size() <= word.size() || !startsWithWord(line, word)) return {};
    const std::string_view rest = trimmed(line.substr(word.size()));
    return rest.starts_with(':') ? inUpperCase(trimmed(rest.substr(1))) : std::string();
}

}  // namespace

std::string plainBytes(std::string bytes) {
    for (const auto& [mark, charset] : {std::pair<std::string_view, const char*>("\xff\xfe", "UTF-16LE"),
                                        std::pair<std::string_view, const char*>("\xfe\xff", "UTF-16BE")}) {
        if (!bytes.starts_with(mark)) continue;
        if (auto text = converted(std::string_view(bytes).substr(mark.size()), charset)) bytes = *std::move(text);
    }
    if (bytes.starts_with("\xef\xbb\xbf")) bytes.erase(0, 3);
    if (!bytes.contains('\0')) return bytes;
    std::string plain;
    plain.reserve(bytes.size());
    for (const char c : bytes)
        plain += c == '\0' ? std::string_view("\xef\xbf\xbd") : std::string_view(&c, 1);
    return plain;
}

std::string inUTF8(std::string_view text, const std::string& charset) {
    if (isValidUTF8(text)) return std::string(text);
    // Damaged rather than of another character set, when other letters than those of ASCII are there.
    std::string mended = validUTF8(text);
    if (isSameWord(charset, "UTF-8") || hasForeignLetters(mended)) return mended;
    if (!charset.empty()) {
        if (auto known = converted(text, charset.c_str())) return *std::move(known);
    }
    if (auto western = converted(text, "WINDOWS-1252")) return *std::move(western);
    return mended;
}

std::optional<std::string> present(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == text.npos) return parts;
        text.remove_prefix(end + 1);
    }
}

bool isSameWord(std::string_view a, std::string_view b) {
    return a.size() == b.size() && startsWithWord(a, b);
}

bool startsWithWord(std::string_view text, std::string_view word) {
    return text.size() >= word.size() && std::ranges::equal(text.substr(0, word.size()), word, {}, lower, lower);
}

std::string inUpperCase(std::string_view text) {
    std::string changed(text);
    std::ranges::transform(changed, changed.begin(), upper);
    return changed;
}

std::string inLowerCase(std::string_view text) {
    std::string changed(text);
    std::ranges::transform(changed, changed.begin(), lower);
    return changed;
}

std::string withLineFeeds(std::string_view text) {
    std::string changed;
    changed.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r') {
            changed += text[i];
        } else if (i + 1 == text.size() || text[i + 1] != '\n') {
            changed += '\n';
        }
    }
    return changed;
}

std::string digestOf(std::string_view text) {
    const Owned<char, g_free> digest(
        g_compute_checksum_for_data(G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(text.data()), text.size()));
    return digest.get();
}

std::vector<TextLine> linesOf(std::string_view text) {
    std::vector<TextLine> lines;
    while (!text.empty()) {
        const auto end = text.find_first_of("\r\n");
        lines.push_back({.number = lines.size() + 1, .text = text.substr(0, end)});
        if (end == text.npos) break;
        const auto next = text.find_first_not_of('\r', end);
        const bool endsInLineFeed = next != text.npos && text[next] == '\n';
        text.remove_prefix(endsInLineFeed ? next + 1 : end + 1);
    }
    return lines;
}

void unindentLike(std::vector<TextLine>& lines, std::size_t index) {
    const std::string_view text = lines[index].text;
    const std::string_view blank = text.substr(0, text.find_first_not_of(" \t"));
    if (blank.empty()) return;
    for (++index; index < lines.size() && lines[index].text.starts_with(blank); ++index)
        lines[index].text.remove_prefix(blank.size());
}

std::string begunBy(std::string_view line) {
    return componentOf(line, "BEGIN");
}

std::string endedBy(std::string_view line) {
    return componentOf(line, "END");
}

void RepeatedWarning::warn(std::size_t line, std::string message) {
    constexpr std::size_t most = 5;
    if (told_ < most) {
        ++told_;
        problems_->warn(file_.at(line), std::move(message));
    } else {
        ++untold_;
        lastLine_ = line;
    }
}

void RepeatedWarning::finish() {
    if (untold_ == 0) return;
    problems_->warn(file_.at(lastLine_),
                    fmt::format("{} more {} {}", untold_, untold_ == 1 ? words_.one : words_.several, words_.what));
}

}  // namespace kestrel::host
