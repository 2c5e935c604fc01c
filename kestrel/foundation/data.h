#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// A sequence of bytes of any content. Its text form is base64 with padding (RFC 4648, section 4).
struct Data {
    /// The bytes, which callers may change.
    std::vector<std::byte> bytes{};

    /// The bytes of a text, unchanged.
    [[nodiscard]] static Data fromText(std::string_view text);
    /// Reads base64 with its padding. Absent for any other character, white space included, and for a broken length.
    [[nodiscard]] static std::optional<Data> fromBase64(std::string_view text);

    /// With padding and without line breaks.
    [[nodiscard]] std::string base64() const;
    /// The bytes seen as characters; valid as long as this value.
    [[nodiscard]] std::string_view text() const noexcept {
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    friend bool operator==(const Data&, const Data&) = default;
};

}  // namespace kestrel

template <>
struct std::hash<kestrel::Data> {
    [[nodiscard]] std::size_t operator()(const kestrel::Data& value) const noexcept {
        return std::hash<std::string_view>{}(value.text());
    }
};
