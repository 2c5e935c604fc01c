#include <kestrel/coding/wire_form.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/foundation/rgba_color.h>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

KESTREL_FIELDS(RGBAColor, red, green, blue, alpha);

KESTREL_FIELDS(TextAttributes, backgroundColor, fontName, fontSize, foregroundColor, isBold, isItalic, isStruckThrough,
               isUnderlined, link, namePart);

/// One run as it is written.
struct AttributedRunForm {
    using Coded = void;

    std::int64_t start{};
    std::int64_t length{};
    TextAttributes attributes{};
};
KESTREL_FIELDS(AttributedRunForm, start, length, attributes);

/// Attributed text as it is written: the text, and the runs that are not plain, in order.
struct AttributedStringForm {
    using Coded = void;

    std::string text{};
    std::vector<AttributedRunForm> runs{};
};
KESTREL_FIELDS(AttributedStringForm, text, runs);

namespace {

AttributedStringForm formOf(const AttributedString& value) {
    AttributedStringForm form{.text = value.text()};
    form.runs.reserve(value.runs().size());
    for (const auto& [range, attributes] : value.runs()) {
        form.runs.push_back(
            {static_cast<std::int64_t>(range.start), static_cast<std::int64_t>(range.length), attributes});
    }
    return form;
}

}  // namespace

bool Codec<AttributedString>::encode(JSONWriter& writer, const AttributedString& value) {
    return encodeValue(writer, formOf(value));
}

bool Codec<AttributedString>::decode(JSONReader& reader, AttributedString& value) {
    const auto start = reader.place();
    AttributedStringForm form;
    if (!decodeValue(reader, form)) return false;
    value = AttributedString(form.text);
    std::int64_t behind = 0;
    const auto length = static_cast<std::int64_t>(value.length());
    for (std::size_t i = 0; i < form.runs.size(); ++i) {
        const AttributedRunForm& run = form.runs[i];
        if (run.start < behind || run.length < 1 || run.start > length || run.length > length - run.start) {
            reader.goTo(start);
            reader.fail(DecodingError::Kind::dataCorrupted,
                        "The run of " + std::to_string(run.length) + " from " + std::to_string(run.start) +
                            " does not lie within the text and behind the run before it.");
            reader.prependIndex(i);
            reader.prependKey("runs");
            return false;
        }
        behind = run.start + run.length;
    }
    for (const AttributedRunForm& run : form.runs) {
        value.setAttributes({static_cast<std::size_t>(run.start), static_cast<std::size_t>(run.length)},
                            run.attributes);
    }
    return true;
}

AttributedString Codec<AttributedString>::blank() {
    return {};
}

void Codec<AttributedString>::hash(Hasher& hasher, const AttributedString& value) {
    hashValue(hasher, formOf(value));
}

void Codec<AttributedString>::mirror(DebugMirror& mirror, const AttributedString& value) {
    mirrorValue(mirror, formOf(value));
}

}  // namespace kestrel
