#pragma once

#include <cstddef>
#include <string_view>

namespace kestrel {

/// A code point of a UTF-8 text, and the bytes that it takes there.
struct CodePoint {
    /// The code point; U+FFFD for a byte that is part of none.
    char32_t value{};
    /// In bytes, 1 to 4.
    std::size_t size{};

    friend constexpr bool operator==(const CodePoint&, const CodePoint&) = default;
};

/// The code point that starts at a byte of a text. A byte that is part of none, such as one of a sequence that is cut
/// off, overlong or a surrogate, stands as U+FFFD for itself. `at` lies within the text.
[[nodiscard]] CodePoint codePointAt(std::string_view text, std::size_t at) noexcept;

/// Whether it is white space: the property White_Space of Unicode.
[[nodiscard]] bool isWhiteSpace(char32_t codePoint) noexcept;

/// The text without white space at both ends. Linear in what is taken away.
[[nodiscard]] std::string_view trimmedWhiteSpace(std::string_view text) noexcept;

}  // namespace kestrel
