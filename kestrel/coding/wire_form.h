#pragma once

#include <kestrel/coding/case_table.h>
#include <kestrel/coding/field_table.h>

/// For source files that describe a type's wire form: the codec's members, made from the type's field table or case
/// table.
namespace kestrel {

template <class T>
bool Codec<T>::encode(JSONWriter& writer, const T& value) {
    if constexpr (HasCaseTable<T>) {
        return coding_detail::encodeCase(writer, value);
    } else {
        return coding_detail::encodeFields(writer, value);
    }
}

template <class T>
bool Codec<T>::decode(JSONReader& reader, T& value) {
    if constexpr (HasCaseTable<T>) {
        return coding_detail::decodeCase(reader, value);
    } else if (reader.isCareful()) {
        return coding_detail::decodeFieldsCarefully(reader, value);
    } else {
        return coding_detail::decodeFields(reader, value);
    }
}

template <class T>
T Codec<T>::blank() {
    if constexpr (HasCaseTable<T>) {
        return coding_detail::blankCase<T>();
    } else {
        return coding_detail::blankFields<T>();
    }
}

template <class T>
void Codec<T>::hash(Hasher& hasher, const T& value) {
    if constexpr (HasCaseTable<T>) {
        coding_detail::hashCase(hasher, value);
    } else {
        coding_detail::hashFields(hasher, value);
    }
}

template <class T>
void Codec<T>::mirror(DebugMirror& mirror, const T& value) {
    if constexpr (HasCaseTable<T>) {
        coding_detail::mirrorCase(mirror, value);
    } else {
        coding_detail::mirrorFields(mirror, value);
    }
}

template <class T>
std::vector<std::string_view> Codec<T>::differences(const T& a, const T& b)
    requires std::equality_comparable<T>
{
    if constexpr (HasCaseTable<T>) {
        return coding_detail::differentCases(a, b);
    } else {
        return coding_detail::differentFields(a, b);
    }
}

}  // namespace kestrel
