#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel {

/// An absolute URL: it has a scheme, and is well-formed by RFC 3986. Equal by its text.
class URL {
  public:
    /// Absent when the text is no absolute URL. Text beyond ASCII is taken as UTF-8 and percent-encoded; the scheme is
    /// written in small letters. Everything else stays as it is.
    [[nodiscard]] static std::optional<URL> parse(std::string_view text);

    /// The URL as it is written; ASCII only. Valid as long as the value.
    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    /// In small letters, without the colon.
    [[nodiscard]] std::string_view scheme() const noexcept {
        return std::string_view(text_).substr(0, text_.find(':'));
    }
    friend bool operator==(const URL&, const URL&) = default;

  private:
    explicit URL(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

/// The bytes of a text with all but letters, digits and "-._~" percent-encoded, as a part of a URL's path or query.
[[nodiscard]] std::string percentEncoded(std::string_view text);

}  // namespace kestrel

template <>
struct std::hash<kestrel::URL> {
    [[nodiscard]] std::size_t operator()(const kestrel::URL& value) const noexcept {
        return std::hash<std::string_view>{}(value.text());
    }
};
