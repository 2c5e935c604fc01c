#include <host/terminal/html_text.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace kestrel::host {
namespace {

/// The text of a code point in UTF-8; absent for what is none that may stand in a text.
std::optional<std::string> textOf(std::uint32_t code) {
    if (code == 0 || code > 0x10ffff || (code >= 0xd800 && code <= 0xdfff)) return std::nullopt;
    std::string text;
    appendUTF8(text, code);
    return text;
}

/// What a character reference without its "&" and ";" stands for: "amp", "#252", "#xfc".
std::optional<std::string> referenceText(std::string_view name) {
    using Pair = std::pair<std::string_view, std::string_view>;
    static constexpr std::array named{Pair{"amp", "&"},   Pair{"lt", "<"},   Pair{"gt", ">"},
                                      Pair{"quot", "\""}, Pair{"apos", "'"}, Pair{"nbsp", " "}};
    for (const auto& [known, text] : named) {
        if (name == known) return std::string(text);
    }
    if (!name.starts_with('#')) return std::nullopt;
    name.remove_prefix(1);
    const bool isHexadecimal = name.starts_with('x') || name.starts_with('X');
    if (isHexadecimal) name.remove_prefix(1);
    std::uint32_t code = 0;
    const auto [end, problem] = std::from_chars(name.data(), name.data() + name.size(), code, isHexadecimal ? 16 : 10);
    if (problem != std::errc() || end != name.data() + name.size()) return std::nullopt;
    return textOf(code);
}

class PlainText {
  public:
    std::string of(std::string_view html) {
        while (!html.empty()) {
            if (html.front() == '<' && takeMark(html)) continue;
            if (html.front() == '&' && takeReference(html)) continue;
            add(html.substr(0, 1));
            html.remove_prefix(1);
        }
        return std::move(text_);
    }

  private:
    /// Takes a mark or a comment off the front; false when a "<" is just that.
    bool takeMark(std::string_view& html) {
        constexpr std::string_view commentEnd = "-->";
        if (html.starts_with("<!--")) {
            const auto end = html.find(commentEnd);
            html.remove_prefix(end == html.npos ? html.size() : end + commentEnd.size());
            return true;
        }
        std::size_t start = 1;
        if (html.size() > 1 && html[1] == '/') start = 2;
        const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
        const auto startsMark = [&](char c) { return isLetter(c) || c == '!' || c == '?'; };
        if (start >= html.size() || !startsMark(html[start])) return false;
        const auto end = html.find('>');
        const std::string_view mark = html.substr(start, end == html.npos ? html.npos : end - start);
        const std::string name = foldedCase(mark.substr(0, mark.find_first_of(" \t\r\n/")));
        html.remove_prefix(end == html.npos ? html.size() : end + 1);
        if (start == 1 && (name == "script" || name == "style")) skipBehind("</" + name, html);
        static constexpr std::array<std::string_view, 16> blocks{
            "br", "p", "div", "li", "ul", "ol", "tr", "table", "h1", "h2", "h3", "h4", "h5", "h6", "blockquote", "hr"};
        if (std::ranges::find(blocks, name) != blocks.end()) text_ += '\n';
        return true;
    }
    /// Skips up to and with the mark that begins like `mark`, whatever its case.
    static void skipBehind(const std::string& mark, std::string_view& html) {
        const auto found = std::ranges::search(html, mark, [](char a, char b) {
            return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
        });
        html.remove_prefix(static_cast<std::size_t>(found.begin() - html.begin()));
        const auto end = html.find('>');
        html.remove_prefix(end == html.npos ? html.size() : end + 1);
    }
    bool takeReference(std::string_view& html) {
        // Longer than any reference that is known.
        constexpr std::size_t longest = 12;
        const auto end = html.substr(0, longest).find(';');
        if (end == html.npos) return false;
        const auto text = referenceText(html.substr(1, end - 1));
        if (!text) return false;
        add(*text);
        html.remove_prefix(end + 1);
        return true;
    }
    void add(std::string_view piece) {
        constexpr std::string_view whiteSpace = " \t\r\n";
        if (!whiteSpace.contains(piece.front())) {
            text_ += piece;
        } else if (!text_.empty() && !whiteSpace.contains(text_.back())) {
            text_ += ' ';
        }
    }

    std::string text_;
};

}  // namespace

std::string plainTextOfHTML(std::string_view html) {
    return PlainText().of(html);
}

}  // namespace kestrel::host
