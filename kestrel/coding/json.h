#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/coding/coding_error.h>
#include <kestrel/coding/coding_options.h>
#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <utility>

/// The keyed form of values as JSON (RFC 8259).
///
/// Reading is strict: one document and nothing behind it; UTF-8 without lone surrogates and raw control characters; at
/// most 512 levels. Unknown keys are ignored, and of a key that is given twice the last one counts; null reads as
/// absent. Integers are exact over the whole signed 64-bit range (42.0 and 4.2e1 are the integer 42); a number is never
/// taken for a boolean. Writing leaves absent values out and prints doubles so that they read back bit for bit. Both
/// are linear in the document.
namespace kestrel {

/// Appends the keyed form of `value`, which must not be `out` itself, to `out`. When it fails, be it for want of
/// memory, `out` is as before.
template <class T>
[[nodiscard]] std::expected<void, EncodingError> encodeJSON(const T& value, std::string& out,
                                                            const CodingOptions& options = {}) {
    JSONWriter writer(out, options);
    // The form of a record takes about as much as the record.
    constexpr std::size_t large = 512;
    if constexpr (sizeof(T) > large) writer.expect(sizeof(T));
    if (!encodeValue(writer, value)) return std::unexpected(writer.takeError());
    writer.finish();
    return {};
}

/// The keyed form of `value`.
template <class T>
[[nodiscard]] std::expected<std::string, EncodingError> encodeJSON(const T& value, const CodingOptions& options = {}) {
    std::string text;
    if (auto written = encodeJSON(value, text, options); !written) return std::unexpected(std::move(written.error()));
    // Not to be kept with the room for a record that says much.
    if (text.size() < text.capacity() / 2) text.shrink_to_fit();
    return text;
}

/// The value whose keyed form `document` is. The document is read where it stands and needs no padding.
template <class T>
[[nodiscard]] std::expected<T, DecodingError> decodeJSON(std::string_view document, const CodingOptions& options = {}) {
    JSONReader reader(document, options);
    // One variable, made and filled in place: a record of a thousand bytes is not moved on its way out.
    std::expected<T, DecodingError> decoded(std::in_place, BlankMaker<T>{});
    if (decodeValue(reader, *decoded) && reader.atEnd()) return decoded;

    // Only what is malformed, mistaken or ambiguous comes here.
    *decoded = blankValue<T>();
    if (reader.checkDocument()) {
        reader.restartCarefully();
        if (decodeValue(reader, *decoded)) return decoded;
    }
    decoded = std::unexpected(reader.takeError());
    return decoded;
}

/// Whether `document` is well-formed, by the rules under which documents are read.
[[nodiscard]] std::expected<void, DecodingError> checkJSON(std::string_view document);

}  // namespace kestrel
