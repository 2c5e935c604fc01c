#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

/// What an enumeration of the library knows about itself: its cases in the order of their raw values, their names, and
/// the way from a raw value or a name back to the case. The enumeration lists its cases and raw values once, in its own
/// declaration.
namespace kestrel {

/// The integers from `first` to `last`, both included.
struct RawValueRange {
    /// The smallest one.
    std::int64_t first;
    /// The largest one.
    std::int64_t last;
};

/// Where the raw values of an enumeration lie: 0 to 63, unless specialised beside the enumeration, with ascending
/// ranges. A case outside of them is none for the functions below.
///
///     template <>
///     inline constexpr auto rawValueRanges<Level> = std::array{RawValueRange{0, 0}, RawValueRange{1000, 1010}};
template <class E>
inline constexpr auto rawValueRanges = std::array{RawValueRange{0, 63}};

namespace enumeration_detail {

/// The integers of an enumeration's ranges stand one after the other, in slots.
template <class E>
consteval std::size_t countSlots() {
    std::int64_t count = 0;
    std::int64_t end = rawValueRanges<E>[0].first;
    for (const auto [first, last] : rawValueRanges<E>) {
        if (first < end || last < first) throw "the ranges of raw values have to ascend";
        count += last - first + 1;
        end = last + 1;
    }
    return static_cast<std::size_t>(count);
}
template <class E>
inline constexpr std::size_t slotCount = countSlots<E>();

/// The slot of a raw value, or `slotCount<E>` for one that lies in no range.
template <class E>
constexpr std::size_t slotOf(std::int64_t raw) noexcept {
    std::size_t slot = 0;
    for (const auto [first, last] : rawValueRanges<E>) {
        if (raw >= first && raw <= last) return slot + static_cast<std::size_t>(raw - first);
        slot += static_cast<std::size_t>(last - first + 1);
    }
    return slot;
}

template <class E>
constexpr std::int64_t rawValueAt(std::size_t slot) noexcept {
    auto left = static_cast<std::int64_t>(slot);
    for (const auto [first, last] : rawValueRanges<E>) {
        if (left <= last - first) return first + left;
        left -= last - first + 1;
    }
    return 0;
}

/// The enumerator's own name as the compiler spells it, or an empty text when `V` is no enumerator.
template <auto V>
consteval std::string_view spelledName() {
    std::string_view text = __PRETTY_FUNCTION__;
    text = text.substr(text.find("V = ") + 4);
    text = text.substr(0, text.find_first_of(";]"));
    // What is no enumerator is spelled as a cast of a number: "(kestrel::State)3". Parentheses also stand around the
    // name of an unnamed namespace.
    text = text.substr(text.find_last_of(":)") + 1);
    return text.empty() || text[0] == '-' || (text[0] >= '0' && text[0] <= '9') ? std::string_view() : text;
}

template <class E>
consteval auto spelledNames() {
    return []<std::size_t... I>(std::index_sequence<I...>) {
        return std::array<std::string_view, sizeof...(I)>{spelledName<static_cast<E>(rawValueAt<E>(I))>()...};
    }(std::make_index_sequence<slotCount<E>>());
}

template <class E>
inline constexpr auto names = spelledNames<E>();

template <class E>
consteval std::size_t countCases() {
    std::size_t count = 0;
    for (const auto name : names<E>)
        count += name.empty() ? 0U : 1U;
    return count;
}

}  // namespace enumeration_detail

/// Any enumeration.
template <class E>
concept Enumeration = std::is_enum_v<E>;

/// Every case, by ascending raw value: the order of declaration but for enumerations that declare theirs in another
/// one.
template <Enumeration E>
inline constexpr auto allCases = [] {
    std::array<E, enumeration_detail::countCases<E>()> cases{};
    std::size_t next = 0;
    for (std::size_t slot = 0; slot < enumeration_detail::slotCount<E>; ++slot) {
        if (enumeration_detail::names<E>[slot].empty()) continue;
        cases[next++] = static_cast<E>(enumeration_detail::rawValueAt<E>(slot));
    }
    return cases;
}();

/// The name of the case as it is written in keyed forms and messages. A case whose name is a word of the language
/// carries an underscore in code ("public_") and none in its name.
template <Enumeration E>
[[nodiscard]] constexpr std::string_view caseName(E value) noexcept {
    const std::size_t slot = enumeration_detail::slotOf<E>(static_cast<std::int64_t>(value));
    if (slot == enumeration_detail::slotCount<E>) return {};
    std::string_view name = enumeration_detail::names<E>[slot];
    if (name.ends_with('_')) name.remove_suffix(1);
    return name;
}

/// The case of that name; absent when there is none. Linear in the number of cases.
template <Enumeration E>
[[nodiscard]] constexpr std::optional<E> fromCaseName(std::string_view name) noexcept {
    for (const E value : allCases<E>) {
        if (caseName(value) == name) return value;
    }
    return std::nullopt;
}

/// How an enumeration without payloads is written in keyed form.
enum class EnumerationForm {
    rawValue,  ///< the integer
    caseText,  ///< the case's name as a text
    keyed,     ///< an object of one key, the case's name, whose value is an empty object
};

/// The form of an enumeration; specialised beside those that are not written as their raw integer.
template <Enumeration E>
inline constexpr EnumerationForm enumerationForm = EnumerationForm::rawValue;

/// Backed by integers.
template <class E>
concept IntegerBacked = Enumeration<E> && enumerationForm<E> == EnumerationForm::rawValue;
/// Backed by texts: the names of its cases.
template <class E>
concept TextBacked = Enumeration<E> && enumerationForm<E> == EnumerationForm::caseText;

/// The integer that keyed forms and stores have for the case.
template <IntegerBacked E>
[[nodiscard]] constexpr std::int64_t rawValue(E value) noexcept {
    return static_cast<std::int64_t>(value);
}
/// The text that keyed forms and stores have for the case: its name.
template <TextBacked E>
[[nodiscard]] constexpr std::string_view rawValue(E value) noexcept {
    return caseName(value);
}

/// The case of that raw value; absent when no case has it.
template <IntegerBacked E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::int64_t raw) noexcept {
    const std::size_t slot = enumeration_detail::slotOf<E>(raw);
    if (slot == enumeration_detail::slotCount<E> || enumeration_detail::names<E>[slot].empty()) return std::nullopt;
    return static_cast<E>(raw);
}
/// The case of that name; absent when no case has it.
template <TextBacked E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view raw) noexcept {
    return fromCaseName<E>(raw);
}

}  // namespace kestrel
