#include <kestrel/activity/text_body.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

template <>
struct CaseTable<TextBody> {
    static constexpr std::string_view typeName = "TextBody";
    static constexpr std::array rows{CaseRow{"plainText", "_0"}, CaseRow{"attributed", "_0"}, CaseRow{"html", "_0"}};
};
template struct Codec<TextBody>;

bool Codec<HTMLText>::encode(JSONWriter& writer, const HTMLText& value) {
    return encodeValue(writer, value.text);
}

bool Codec<HTMLText>::decode(JSONReader& reader, HTMLText& value) {
    return decodeValue(reader, value.text);
}

void Codec<HTMLText>::hash(Hasher& hasher, const HTMLText& value) {
    hashValue(hasher, value.text);
}

void Codec<HTMLText>::mirror(DebugMirror& mirror, const HTMLText& value) {
    mirrorValue(mirror, value.text);
}

}  // namespace kestrel
