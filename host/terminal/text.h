#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Text as it is shown to people: made safe for a terminal, measured in its cells, and compared as people compare
/// names. All texts are UTF-8; a byte that is none counts as U+FFFD.
namespace kestrel::host {

/// The code points of a text.
[[nodiscard]] std::vector<char32_t> codePoints(std::string_view text);

/// Appends a code point that may stand in a text.
void appendUTF8(std::string& text, char32_t code);

/// The text with every byte that is not UTF-8 replaced by U+FFFD.
[[nodiscard]] std::string validUTF8(std::string_view text);

/// The text on one line and without power over the terminal: control characters, line separators and the marks that
/// turn the writing direction become escapes such as `\n` or `\u{1b}`.
[[nodiscard]] std::string printable(std::string_view text);

/// JSON without power over the terminal: what `printable` escapes becomes `\u` escapes, which mean the same document.
[[nodiscard]] std::string printableJSON(std::string_view json);

/// The number of terminal cells that a printable text takes: two for wide East Asian characters, none for combining
/// ones.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// The text when it fits into `width` cells, else its start and "…", which together do.
[[nodiscard]] std::string fitted(std::string_view text, std::size_t width);

enum class Alignment : unsigned char { left, right };
/// The text filled up with blanks to `width` cells. A wider text stays as it is.
[[nodiscard]] std::string padded(std::string_view text, std::size_t width, Alignment alignment = Alignment::left);

/// "10,005,534".
[[nodiscard]] std::string grouped(std::int64_t number);
/// An amount with groups of thousands, and two decimals unless it is whole: "1,054", "99.50". From 1e15 on, in
/// scientific notation.
[[nodiscard]] std::string amount(double number);

/// The text in lower case, character by character, for comparing names.
[[nodiscard]] std::string foldedCase(std::string_view text);

/// The names that somebody may have meant by `wanted`, best first, three at most: those that contain it and those
/// within a few typing mistakes of it, whatever their case.
[[nodiscard]] std::vector<std::string> nearNames(std::string_view wanted, std::span<const std::string> names);

/// "this-year-to-date" for "thisYearToDate".
[[nodiscard]] std::string inKebabCase(std::string_view camelCase);

/// The texts joined by ", ".
[[nodiscard]] std::string listed(std::span<const std::string> texts);

}  // namespace kestrel::host
