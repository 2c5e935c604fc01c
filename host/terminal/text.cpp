#include <fmt/format.h>
#include <host/terminal/text.h>
#include <kestrel/foundation/unicode.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cwchar>
#include <cwctype>
#include <utility>

namespace kestrel::host {
namespace {

constexpr std::string_view replacement = "\xef\xbf\xbd";

/// The C library's tables of characters, whatever the locale of the process. Null where the system lacks it.
locale_t unicodeTables() {
    static const locale_t tables = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return tables;
}

/// Calls `visit` with each code point of any text and with its bytes, which are U+FFFD's for a byte that is not UTF-8.
template <class Visitor>
void forEachCodePoint(std::string_view text, Visitor&& visit) {
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint next = codePointAt(text, at);
        const bool isBroken = next.size == 1 && next.value == U'\ufffd';
        visit(next.value, isBroken ? replacement : text.substr(at, next.size));
        at += next.size;
    }
}

}  // namespace

void appendUTF8(std::string& text, char32_t code) {
    const auto byte = [&](char32_t bits) { text += static_cast<char>(bits); };
    if (code < 0x80) {
        byte(code);
    } else if (code < 0x800) {
        byte(0xc0U | code >> 6U);
        byte(0x80U | (code & 0x3fU));
    } else if (code < 0x10000) {
        byte(0xe0U | code >> 12U);
        byte(0x80U | (code >> 6U & 0x3fU));
        byte(0x80U | (code & 0x3fU));
    } else {
        byte(0xf0U | code >> 18U);
        byte(0x80U | (code >> 12U & 0x3fU));
        byte(0x80U | (code >> 6U & 0x3fU));
        byte(0x80U | (code & 0x3fU));
    }
}

namespace {

/// Whether a terminal may obey a character instead of showing it: the C0 and C1 controls, the line and paragraph
/// separators, and the marks that reorder what stands around them.
bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x200e || code == 0x200f ||
           (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

std::size_t cells(char32_t code) {
    if (code < 0x7f) return 1;
    const locale_t tables = unicodeTables();
    if (tables == nullptr) return 1;
    const locale_t before = uselocale(tables);
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(before);
    return width < 0 ? 1 : static_cast<std::size_t>(width);
}

/// The least number of characters to insert, to delete, to replace or to swap with their neighbour that makes one text
/// of the other.
std::size_t typingMistakes(const std::vector<char32_t>& a, const std::vector<char32_t>& b) {
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

}  // namespace

std::vector<char32_t> codePoints(std::string_view text) {
    std::vector<char32_t> codes;
    forEachCodePoint(text, [&](char32_t code, std::string_view) { codes.push_back(code); });
    return codes;
}

std::string validUTF8(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    forEachCodePoint(text, [&](char32_t, std::string_view bytes) { valid += bytes; });
    return valid;
}

std::string printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    forEachCodePoint(text, [&](char32_t code, std::string_view bytes) {
        switch (code) {
            case U'\n': shown += "\\n"; break;
            case U'\r': shown += "\\r"; break;
            case U'\t': shown += "\\t"; break;
            default:
                if (isControl(code)) {
                    shown += fmt::format("\\u{{{:x}}}", static_cast<std::uint32_t>(code));
                } else {
                    shown += bytes;
                }
        }
    });
    return shown;
}

std::string printableJSON(std::string_view json) {
    std::string shown;
    shown.reserve(json.size());
    forEachCodePoint(json, [&](char32_t code, std::string_view bytes) {
        // A raw control character below the blank is white space between values: inside a text it is escaped already.
        if (code >= 0x20 && isControl(code)) {
            shown += fmt::format("\\u{:04x}", static_cast<std::uint32_t>(code));
        } else {
            shown += bytes;
        }
    });
    return shown;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    forEachCodePoint(text, [&](char32_t code, std::string_view) { width += cells(code); });
    return width;
}

std::string fitted(std::string_view text, std::size_t width) {
    std::string whole;
    std::string start;
    std::size_t taken = 0;
    forEachCodePoint(text, [&](char32_t code, std::string_view bytes) {
        taken += cells(code);
        whole += bytes;
        // One cell is kept for the mark of what is left out.
        if (taken < width) start = whole;
    });
    if (taken <= width) return whole;
    if (width == 0) return {};
    return start + "…";
}

std::string padded(std::string_view text, std::size_t width, Alignment alignment) {
    const std::size_t taken = displayWidth(text);
    const std::string blanks(width > taken ? width - taken : 0, ' ');
    return alignment == Alignment::left ? std::string(text) + blanks : blanks + std::string(text);
}

std::string grouped(std::int64_t number) {
    std::string text = fmt::format("{}", number);
    const std::size_t first = number < 0 ? 1 : 0;
    for (std::size_t at = text.size(); at > first + 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string amount(double number) {
    constexpr double limit = 1e15;
    if (!(std::abs(number) < limit)) return fmt::format("{:.6g}", number);
    const auto cents = std::llround(std::abs(number) * 100);
    std::string text = grouped(cents / 100);
    if (cents % 100 != 0) text += fmt::format(".{:02}", cents % 100);
    return number < 0 && cents != 0 ? "-" + text : text;
}

std::string foldedCase(std::string_view text) {
    std::string folded;
    folded.reserve(text.size());
    forEachCodePoint(text, [&](char32_t code, std::string_view) {
        if (code < 0x80) {
            folded += static_cast<char>(code >= 'A' && code <= 'Z' ? code + ('a' - 'A') : code);
        } else if (const locale_t tables = unicodeTables(); tables != nullptr) {
            appendUTF8(folded, static_cast<char32_t>(towlower_l(static_cast<wint_t>(code), tables)));
        } else {
            appendUTF8(folded, code);
        }
    });
    return folded;
}

std::vector<std::string> nearNames(std::string_view wanted, std::span<const std::string> names) {
    constexpr std::size_t most = 3;
    // Longer than any name that is worth a comparison.
    constexpr std::size_t longest = 200;
    const std::string folded = foldedCase(wanted);
    if (folded.empty() || folded.size() > longest) return {};
    const std::vector<char32_t> codes = codePoints(folded);
    const std::size_t tolerance = std::max<std::size_t>(2, codes.size() / 3);
    // The mistakes, and the place of the name.
    std::vector<std::pair<std::size_t, std::size_t>> ranked;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string candidate = foldedCase(names[i]);
        if (candidate.size() > longest) continue;
        // Part of a name is as good as one mistake.
        const std::size_t mistakes = candidate.contains(folded) ? 1 : typingMistakes(codes, codePoints(candidate));
        if (mistakes <= tolerance) ranked.emplace_back(mistakes, i);
    }
    std::ranges::sort(ranked);
    std::vector<std::string> near;
    for (const auto& [mistakes, place] : ranked) {
        if (near.size() < most && std::ranges::find(near, names[place]) == near.end()) near.push_back(names[place]);
    }
    return near;
}

std::string inKebabCase(std::string_view camelCase) {
    std::string text;
    for (const char c : camelCase) {
        if (c >= 'A' && c <= 'Z') {
            text += '-';
            text += static_cast<char>(c - 'A' + 'a');
        } else {
            text += c;
        }
    }
    return text;
}

std::string listed(std::span<const std::string> texts) {
    return fmt::format("{}", fmt::join(texts, ", "));
}

}  // namespace kestrel::host
