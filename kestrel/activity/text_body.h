#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/foundation/choice.h>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

/// A text in HTML. Written as the text alone.
struct HTMLText {
    using Coded = void;

    /// A whole document or a part of one; not checked.
    std::string text{};

    friend bool operator==(const HTMLText&, const HTMLText&) = default;
};
template <>
struct Codec<HTMLText> {
    static bool encode(JSONWriter& writer, const HTMLText& value);
    static bool decode(JSONReader& reader, HTMLText& value);
    static HTMLText blank() { return {}; }
    static void hash(Hasher& hasher, const HTMLText& value);
    static void mirror(DebugMirror& mirror, const HTMLText& value);
};

/// The text of a note: plain, attributed or HTML. None is converted into another. In keyed form one key, the case's
/// name, holding the text under "_0".
class TextBody : public Choice<TextBody, std::string, AttributedString, HTMLText> {
  public:
    using Coded = void;

    /// Without attributes.
    [[nodiscard]] static TextBody plainText(std::string text) { return TextBody(std::move(text)); }
    /// With attributes over parts of it.
    [[nodiscard]] static TextBody attributed(AttributedString text) { return TextBody(std::move(text)); }
    /// In HTML.
    [[nodiscard]] static TextBody html(std::string text) { return TextBody(HTMLText{std::move(text)}); }

    [[nodiscard]] std::optional<std::string> plainText() const { return payload<std::string>(); }
    [[nodiscard]] std::optional<AttributedString> attributed() const { return payload<AttributedString>(); }
    /// The text in HTML; absent for the other two.
    [[nodiscard]] std::optional<std::string> html() const {
        const auto* html = payloadIf<HTMLText>();
        return html != nullptr ? std::optional(html->text) : std::nullopt;
    }
    /// The text of a plain body; absent for the other two.
    [[nodiscard]] std::optional<std::string> plain() const { return plainText(); }

    friend bool operator==(const TextBody&, const TextBody&) = default;

  private:
    friend CodingAccess;
    explicit TextBody(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<TextBody>;

}  // namespace kestrel
