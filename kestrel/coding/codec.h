#pragma once

#include <kestrel/coding/coding_access.h>
#include <kestrel/coding/debug_mirror.h>
#include <kestrel/coding/json_reader.h>
#include <kestrel/coding/json_writer.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/hashing.h>
#include <kestrel/foundation/rgba_color.h>
#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kestrel {

/// How values of `T` are written, read, hashed and shown. The members are declared here and defined where the type's
/// field table or case table stands, in one source file: what includes a type's header compiles none of it.
template <class T>
struct Codec {
    /// Writes the value, or fails through the writer. What was written before a failure is taken back by the caller.
    static bool encode(JSONWriter& writer, const T& value);
    /// Reads the value at the reader's cursor into `value`, which is `blank()`, or fails through the reader.
    static bool decode(JSONReader& reader, T& value);
    /// A value to decode into. It says nothing.
    static T blank();
    /// Combines all that is written, so that equal values hash alike.
    static void hash(Hasher& hasher, const T& value);
    /// Shows the value to people who debug.
    static void mirror(DebugMirror& mirror, const T& value);
    /// The keys under which the keyed forms of two values differ; see `differences`.
    static std::vector<std::string_view> differences(const T& a, const T& b)
        requires std::equality_comparable<T>;
};

extern template struct Codec<RGBAColor>;
extern template struct Codec<TextAttributes>;
template <>
struct Codec<AttributedString> {
    static bool encode(JSONWriter& writer, const AttributedString& value);
    static bool decode(JSONReader& reader, AttributedString& value);
    static AttributedString blank();
    static void hash(Hasher& hasher, const AttributedString& value);
    static void mirror(DebugMirror& mirror, const AttributedString& value);
};

/// A type that has a codec: records (they have a record name), and values that say so with `using Coded = void;`.
template <class T>
concept Coded = requires { typename T::Coded; } || requires {
    typename std::bool_constant<std::string_view(T::recordName).empty()>;
    typename std::bool_constant<std::string_view(T::entityName).empty()>;
};

/// A container with unique, ordered members, such as a set of identifiers.
template <class C>
concept CodedSet = requires(C set, typename C::value_type member) {
    typename C::key_type;
    set.insert(member);
    requires std::same_as<typename C::key_type, typename C::value_type>;
};

// The operations over everything that a member can be: scalars, texts, dates, data, enumerations, coded types, and
// optionals, vectors and sets of them.

/// A value to decode into: of a coded type its codec's, of any other one the default. It says nothing.
template <class T>
[[nodiscard]] T blankValue() {
    if constexpr (Coded<T>) {
        return Codec<T>::blank();
    } else {
        return T{};
    }
}

/// Makes a blank value in place, in a container that constructs from it.
template <class T>
struct BlankMaker {
    /// The blank value.
    // NOLINTNEXTLINE(google-explicit-constructor): the conversion is what it is for.
    operator T() const { return blankValue<T>(); }
};

// ---- declarations

/// Writes a scalar, a text, an enumeration or a coded value, or fails through the writer.
template <class T>
bool encodeValue(JSONWriter& writer, const T& value);
/// Writes an array of the elements, or fails at the first one that has no keyed form.
template <class T>
bool encodeValue(JSONWriter& writer, const std::vector<T>& values);
/// Writes an array of the members in their order, or fails at the first one that has no keyed form.
template <CodedSet C>
bool encodeValue(JSONWriter& writer, const C& values);
/// Writes null for an absent value.
template <class T>
bool encodeValue(JSONWriter& writer, const std::optional<T>& value);

/// Reads a scalar, a text, an enumeration or a coded value into a blank one, or fails through the reader.
template <class T>
bool decodeValue(JSONReader& reader, T& value);
/// Reads an array in the place of what was there, or fails at the first element that cannot be read.
template <class T>
bool decodeValue(JSONReader& reader, std::vector<T>& values);
/// Reads an array in any order, and of equal elements one.
template <CodedSet C>
bool decodeValue(JSONReader& reader, C& values);
/// Reads null as an absent value.
template <class T>
bool decodeValue(JSONReader& reader, std::optional<T>& value);

/// Combines a value; what is equal hashes alike, the two zeros included.
template <class T>
void hashValue(Hasher& hasher, const T& value);
/// Combines the number of elements, and each in its order.
template <class T>
void hashValue(Hasher& hasher, const std::vector<T>& values);
/// Combines the number of members, and each in its order.
template <CodedSet C>
void hashValue(Hasher& hasher, const C& values);
/// Combines whether there is a value, and the value.
template <class T>
void hashValue(Hasher& hasher, const std::optional<T>& value);

/// Shows a value: an enumeration by its case's name, a coded value member by member.
template <class T>
void mirrorValue(DebugMirror& mirror, const T& value);
/// Shows one line an element; "none" when there is none.
template <class T>
void mirrorValue(DebugMirror& mirror, const std::vector<T>& values);
/// Shows one line a member; "none" when there is none.
template <CodedSet C>
void mirrorValue(DebugMirror& mirror, const C& values);

// ---- encoding

namespace coding_detail {

template <Enumeration E>
bool encodeEnumeration(JSONWriter& writer, E value) {
    const std::string_view name = caseName(value);
    if (name.empty()) return writer.fail("The enumeration has no case of this raw value.");
    if constexpr (enumerationForm<E> == EnumerationForm::rawValue) {
        return writer.write(rawValue(value));
    } else if constexpr (enumerationForm<E> == EnumerationForm::caseText) {
        return writer.write(name);
    } else {
        const std::size_t opened = writer.open();
        writer.key(name);
        writer.append("{}");
        writer.closeObject(opened);
        return true;
    }
}

/// Where the value of each key of an object stands; of a key given twice the last one, and no place for a key that is
/// not there. The reader is left behind the object.
bool findMembers(JSONReader& reader, const std::string_view* keys, std::size_t count, JSONReader::Place* places);

/// Reads an object that has one key of those names, and whatever other keys. Gives the name's index and the place of
/// its value, the last one when it is given twice; the reader is left behind the object.
bool decodeCaseName(JSONReader& reader, const std::string_view* names, std::size_t count, std::size_t& found,
                    JSONReader::Place& payload);

template <Enumeration E>
bool decodeEnumeration(JSONReader& reader, E& value) {
    if constexpr (enumerationForm<E> == EnumerationForm::keyed) {
        static constexpr auto names = [] {
            std::array<std::string_view, allCases<E>.size()> list{};
            for (std::size_t i = 0; i < list.size(); ++i)
                list[i] = caseName(allCases<E>[i]);
            return list;
        }();
        std::size_t found = 0;
        JSONReader::Place payload;
        if (!decodeCaseName(reader, names.data(), names.size(), found, payload)) return false;
        const auto behind = reader.place();
        reader.goTo(payload);
        const bool isObject = reader.expectObject();
        reader.goTo(behind);
        if (!isObject) {
            reader.prependKey(names[found]);
            return false;
        }
        value = allCases<E>[found];
        return true;
    } else {
        const auto start = reader.place();
        std::optional<E> found;
        if constexpr (enumerationForm<E> == EnumerationForm::rawValue) {
            std::int64_t raw = 0;
            if (!reader.read(raw)) return false;
            found = fromRawValue<E>(raw);
            if (!found) {
                reader.goTo(start);
                return reader.fail(DecodingError::Kind::dataCorrupted,
                                   "No case has the raw value " + std::to_string(raw) + ".");
            }
        } else {
            std::string name;
            if (!reader.read(name)) return false;
            found = fromCaseName<E>(name);
            if (!found) {
                reader.goTo(start);
                return reader.fail(DecodingError::Kind::dataCorrupted, "No case has the raw value \"" + name + "\".");
            }
        }
        value = *found;
        return true;
    }
}

template <class C>
bool encodeElements(JSONWriter& writer, const C& values) {
    const std::size_t opened = writer.open();
    std::size_t index = 0;
    for (const auto& value : values) {
        writer.element();
        if (!encodeValue(writer, value)) {
            writer.prependIndex(index);
            return false;
        }
        // Elements are much of a size: a few of them tell how much room all take.
        constexpr std::size_t sampled = 16;
        if (++index == sampled && values.size() > 2 * sampled)
            writer.expect((writer.open() - opened) / sampled * (values.size() - sampled) / 16 * 17);
    }
    writer.closeArray(opened);
    return true;
}

}  // namespace coding_detail

template <class T>
bool encodeValue(JSONWriter& writer, const T& value) {
    if constexpr (std::is_enum_v<T>) {
        return coding_detail::encodeEnumeration(writer, value);
    } else if constexpr (Coded<T>) {
        return Codec<T>::encode(writer, value);
    } else {
        return writer.write(value);
    }
}

template <class T>
bool encodeValue(JSONWriter& writer, const std::vector<T>& values) {
    return coding_detail::encodeElements(writer, values);
}

template <CodedSet C>
bool encodeValue(JSONWriter& writer, const C& values) {
    return coding_detail::encodeElements(writer, values);
}

/// Members leave absent values out before they come here; as an element or a whole document an absent value is null.
template <class T>
bool encodeValue(JSONWriter& writer, const std::optional<T>& value) {
    if (value) return encodeValue(writer, *value);
    writer.writeNull();
    return true;
}

// ---- decoding

template <class T>
bool decodeValue(JSONReader& reader, T& value) {
    if constexpr (std::is_enum_v<T>) {
        return coding_detail::decodeEnumeration(reader, value);
    } else if constexpr (Coded<T>) {
        return Codec<T>::decode(reader, value);
    } else {
        return reader.read(value);
    }
}

namespace coding_detail {

/// How many bytes of memory for each of its text an element usually takes.
inline constexpr std::size_t usualSpread = 4;

/// Whether elements of a type may take more than that: an element and what follows it are two characters at least.
template <class T>
inline constexpr bool mayBeSparse = sizeof(T) > 2 * usualSpread;

/// Whether room for so many elements is much more than the text that they were read from.
template <class T>
[[nodiscard]] constexpr bool isSparse(std::size_t count, std::size_t read) noexcept {
    return mayBeSparse<T> && sizeof(T) * count > usualSpread * read;
}

/// Makes room in a full vector, at an element that was reached by reading so many bytes. What is decoded is to take no
/// more than some times the memory of its document, also while it grows, whatever the document makes of that.
template <class T>
[[gnu::noinline]] void makeRoom(JSONReader& reader, std::vector<T>& values, std::size_t read) {
    const std::size_t count = values.size();
    if (isSparse<T>(count, read)) {
        // Room for exactly those that follow, which takes another look at them.
        values.reserve(count + reader.countElements());
    } else if (count >= 8) {
        // As many elements as the rest of the document holds if they are all as long as those read so far, but never
        // more than four times as many at once: a hostile document may start with short ones.
        const double perByte = static_cast<double>(count) / static_cast<double>(read);
        const auto left = static_cast<std::size_t>(static_cast<double>(reader.remaining()) * perByte);
        values.reserve(count + std::min(left + left / 16 + 1, count * 4));
    }
}

}  // namespace coding_detail

template <class T>
bool decodeValue(JSONReader& reader, std::vector<T>& values) {
    values.clear();
    if (!reader.beginArray()) return false;
    if (reader.endIfEmpty(']')) return true;
    const std::size_t total = reader.remaining();
    // Up to there vectors grow by themselves.
    constexpr std::size_t few = coding_detail::mayBeSparse<T> ? 1 : 8;
    for (;;) {
        if (values.size() == values.capacity() && values.size() >= few) {
            coding_detail::makeRoom(reader, values, total - reader.remaining());
        }
        const std::size_t index = values.size();
        bool isDecoded = false;
        if constexpr (std::is_same_v<T, bool>) {
            // A vector of booleans has no booleans to decode into.
            bool value = false;
            isDecoded = decodeValue(reader, value);
            values.push_back(value);
        } else {
            isDecoded = decodeValue(reader, values.emplace_back(BlankMaker<T>{}));
        }
        if (!isDecoded) {
            reader.prependIndex(index);
            return false;
        }
        switch (reader.nextElement()) {
            case JSONReader::Next::another: break;
            case JSONReader::Next::end:
                if (coding_detail::isSparse<T>(values.capacity() / 2, total - reader.remaining()))
                    values.shrink_to_fit();
                return true;
            case JSONReader::Next::broken: return false;
        }
    }
}

template <CodedSet C>
bool decodeValue(JSONReader& reader, C& values) {
    std::vector<typename C::value_type> elements;
    if (!decodeValue(reader, elements)) return false;
    values = C(elements.begin(), elements.end());
    return true;
}

template <class T>
bool decodeValue(JSONReader& reader, std::optional<T>& value) {
    if (reader.isNull()) {
        value.reset();
        return reader.readNull();
    }
    if constexpr (std::is_constructible_v<T, BlankMaker<T>>) {
        return decodeValue(reader, value.emplace(BlankMaker<T>{}));
    } else {
        return decodeValue(reader, value.emplace());
    }
}

// ---- hashing, mirroring

template <class T>
void hashValue(Hasher& hasher, const T& value) {
    if constexpr (Coded<T>) {
        Codec<T>::hash(hasher, value);
    } else if constexpr (std::is_same_v<T, double>) {
        // The two zeros are equal, so they hash alike.
        hasher.combine(std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value));
    } else if constexpr (std::is_same_v<T, Date>) {
        hashValue(hasher, value.sinceReferenceDate());
    } else if constexpr (std::is_same_v<T, Data>) {
        hasher.combine(value.text());
    } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
        hasher.combine(static_cast<std::uint64_t>(value));
    } else {
        hasher.combine(std::string_view(value));
    }
}

template <class T>
void hashValue(Hasher& hasher, const std::vector<T>& values) {
    hasher.combine(values.size());
    for (const auto& value : values)
        hashValue(hasher, value);
}

template <CodedSet C>
void hashValue(Hasher& hasher, const C& values) {
    hasher.combine(values.size());
    for (const auto& value : values)
        hashValue(hasher, value);
}

template <class T>
void hashValue(Hasher& hasher, const std::optional<T>& value) {
    hasher.combine(value.has_value() ? 1U : 0U);
    if (value) hashValue(hasher, *value);
}

template <class T>
void mirrorValue(DebugMirror& mirror, const T& value) {
    if constexpr (std::is_enum_v<T>) {
        mirror.word(caseName(value));
    } else if constexpr (Coded<T>) {
        Codec<T>::mirror(mirror, value);
    } else {
        mirror.show(value);
    }
}

/// Shows the value, or "absent".
template <class T>
void mirrorValue(DebugMirror& mirror, const std::optional<T>& value) {
    if (value) {
        mirrorValue(mirror, *value);
    } else {
        mirror.word("absent");
    }
}

namespace coding_detail {

template <class C>
void mirrorElements(DebugMirror& mirror, const C& values) {
    if (values.empty()) return mirror.word("none");
    mirror.open();
    std::size_t index = 0;
    for (const auto& value : values) {
        mirror.element(index++);
        mirrorValue(mirror, value);
    }
    mirror.close();
}

}  // namespace coding_detail

template <class T>
void mirrorValue(DebugMirror& mirror, const std::vector<T>& values) {
    coding_detail::mirrorElements(mirror, values);
}

template <CodedSet C>
void mirrorValue(DebugMirror& mirror, const C& values) {
    coding_detail::mirrorElements(mirror, values);
}

/// The keys of the fields in which two values differ, in the order of the keyed form; none when the values are equal.
/// Of a choice, whose keyed form has the case as its key, the cases. The texts last as long as the program.
template <Coded T>
    requires requires(const T& value) { Codec<T>::differences(value, value); }
[[nodiscard]] std::vector<std::string_view> differences(const T& a, const T& b) {
    return Codec<T>::differences(a, b);
}

/// The debug mirror of any coded value, over several lines without a final newline.
template <class T>
[[nodiscard]] std::string debugMirror(const T& value) {
    DebugMirror mirror;
    mirrorValue(mirror, value);
    return mirror.take();
}

}  // namespace kestrel

/// Coded values hash by all that their codec writes: sensitive to every field that equality compares.
template <kestrel::Coded T>
    requires(std::is_class_v<T>)
struct std::hash<T> {
    using is_avalanching = void;
    [[nodiscard]] std::size_t operator()(const T& value) const {
        kestrel::Hasher hasher;
        kestrel::Codec<T>::hash(hasher, value);
        return static_cast<std::size_t>(hasher.result());
    }
};
