#pragma once

#include <kestrel/coding/codec.h>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

namespace kestrel {

/// One case of a choice in keyed form: its name, and the label of its payload. Without a label the payload is itself an
/// object, whose members are the case's payload labels.
struct CaseRow {
    /// The key of the object that the case is written as.
    std::string_view name;
    /// Empty when the case has no label.
    std::string_view label{};
};

/// A choice's wire form, described once, in the source file of the choice:
///
///     template <>
///     struct CaseTable<TaskID> {
///         static constexpr std::string_view typeName = "TaskID";
///         static constexpr std::array rows{CaseRow{"task", "taskID"}, CaseRow{"taskOccurrence"}};
///     };
///     template struct Codec<TaskID>;
///
/// One row a case, in the order of the cases. A value is written as an object of one key, the case's name, which holds
/// an object of the payload's labels.
template <class C>
struct CaseTable;

/// A type whose wire form is a case table.
template <class C>
concept HasCaseTable = requires { CaseTable<C>::rows; };

namespace coding_detail {

template <HasCaseTable C>
inline constexpr auto caseNames = [] {
    std::array<std::string_view, CaseTable<C>::rows.size()> names{};
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = CaseTable<C>::rows[i].name;
    return names;
}();

template <class P>
inline constexpr bool hasNoPayload = false;
template <std::size_t Which>
inline constexpr bool hasNoPayload<NoPayload<Which>> = true;

template <class P>
bool encodePayload(JSONWriter& writer, std::string_view label, const P& payload) {
    if constexpr (hasNoPayload<P>) {
        writer.append("{}");
        return true;
    } else {
        if (label.empty()) return encodeValue(writer, payload);
        const std::size_t opened = writer.open();
        writer.key(label);
        if (!encodeValue(writer, payload)) {
            writer.prependKey(label);
            return false;
        }
        writer.closeObject(opened);
        return true;
    }
}

template <class P>
bool decodePayload(JSONReader& reader, std::string_view label, P& payload) {
    if constexpr (hasNoPayload<P>) {
        return reader.expectObject();
    } else {
        if (label.empty()) return decodeValue(reader, payload);
        const auto start = reader.place();
        JSONReader::Place place;
        if (!findMembers(reader, &label, 1, &place)) return false;
        if (place.cursor == nullptr) {
            reader.goTo(start);
            return reader.failMissingKey(label);
        }
        reader.goTo(place);
        if (decodeValue(reader, payload)) return true;
        reader.prependKey(label);
        return false;
    }
}

template <HasCaseTable C>
bool encodeCase(JSONWriter& writer, const C& value) {
    static_assert(CaseTable<C>::rows.size() == std::variant_size_v<typename C::Variant>,
                  "A case table has one row a case.");
    const CaseRow& row = CaseTable<C>::rows[value.caseIndex()];
    const std::size_t opened = writer.open();
    writer.key(row.name);
    const auto encode = [&](const auto& payload) { return encodePayload(writer, row.label, payload); };
    if (!std::visit(encode, CodingAccess::variant(value))) {
        writer.prependKey(row.name);
        return false;
    }
    writer.closeObject(opened);
    return true;
}

template <HasCaseTable C>
bool decodeCase(JSONReader& reader, C& value) {
    using Variant = typename C::Variant;
    std::size_t found = 0;
    JSONReader::Place payload;
    if (!decodeCaseName(reader, caseNames<C>.data(), caseNames<C>.size(), found, payload)) return false;
    const auto behind = reader.place();
    reader.goTo(payload);
    const CaseRow& row = CaseTable<C>::rows[found];
    const bool decoded = [&]<std::size_t... I>(std::index_sequence<I...>) {
        const auto decodeAs = [&]<std::size_t Which>(std::integral_constant<std::size_t, Which>) {
            using Payload = std::variant_alternative_t<Which, Variant>;
            return decodePayload(reader, row.label,
                                 CodingAccess::variant(value).template emplace<Which>(BlankMaker<Payload>{}));
        };
        return ((found == I && decodeAs(std::integral_constant<std::size_t, I>{})) || ...);
    }(std::make_index_sequence<std::variant_size_v<Variant>>());
    if (!decoded) {
        reader.prependKey(row.name);
        return false;
    }
    reader.goTo(behind);
    return true;
}

template <HasCaseTable C>
C blankCase() {
    using Variant = typename C::Variant;
    return CodingAccess::make<C>(Variant(std::in_place_index<0>, BlankMaker<std::variant_alternative_t<0, Variant>>{}));
}

template <HasCaseTable C>
void hashCase(Hasher& hasher, const C& value) {
    hasher.combine(value.caseIndex());
    const auto hash = [&]<class P>(const P& payload) {
        if constexpr (!hasNoPayload<P>) hashValue(hasher, payload);
    };
    std::visit(hash, CodingAccess::variant(value));
}

template <HasCaseTable C>
void mirrorCase(DebugMirror& mirror, const C& value) {
    mirror.word(CaseTable<C>::typeName);
    mirror.word(".");
    mirror.word(CaseTable<C>::rows[value.caseIndex()].name);
    const auto show = [&]<class P>(const P& payload) {
        if constexpr (!hasNoPayload<P>) {
            mirror.word(" ");
            mirrorValue(mirror, payload);
        }
    };
    std::visit(show, CodingAccess::variant(value));
}

template <HasCaseTable C>
std::vector<std::string_view> differentCases(const C& a, const C& b) {
    if (a == b) return {};
    const std::string_view name = CaseTable<C>::rows[a.caseIndex()].name;
    const std::string_view otherName = CaseTable<C>::rows[b.caseIndex()].name;
    if (name == otherName) return {name};
    return {name, otherName};
}

}  // namespace coding_detail
}  // namespace kestrel
