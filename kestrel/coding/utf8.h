#pragma once

#include <cstddef>
#include <string_view>

namespace kestrel {

/// Whether a text is UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
[[nodiscard]] bool isValidUTF8(std::string_view text) noexcept;

/// The length of the longest prefix that is UTF-8; the size of the text when all of it is.
[[nodiscard]] std::size_t validUTF8Prefix(std::string_view text) noexcept;

/// The plain run at the front of `[begin, end)`: up to the first quote, backslash or control character. `hasHighBytes`
/// becomes true when there is a byte above 0x7f in the run. Sixteen bytes at a time.
[[nodiscard]] const char* plainRunEnd(const char* begin, const char* end, bool& hasHighBytes) noexcept;

}  // namespace kestrel
