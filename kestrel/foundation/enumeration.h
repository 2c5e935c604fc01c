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
/// declaration; raw values lie between 0 and 63.
namespace kestrel {

namespace enumeration_detail {

inline constexpr std::size_t rawValueLimit = 64;

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
        return std::array<std::string_view, sizeof...(I)>{spelledName<static_cast<E>(I)>()...};
    }(std::make_index_sequence<rawValueLimit>());
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

template <class E>
concept Enumeration = std::is_enum_v<E>;

/// Every case, by ascending raw value: the order of declaration but for enumerations that declare theirs in another
/// one.
template <Enumeration E>
inline constexpr auto allCases = [] {
    std::array<E, enumeration_detail::countCases<E>()> cases{};
    std::size_t next = 0;
    for (std::size_t raw = 0; raw < enumeration_detail::rawValueLimit; ++raw) {
        if (!enumeration_detail::names<E>[raw].empty()) cases[next++] = static_cast<E>(raw);
    }
    return cases;
}();

/// The name of the case as it is written in keyed forms and messages. A case whose name is a word of the language
/// carries an underscore in code ("public_") and none in its name.
template <Enumeration E>
[[nodiscard]] constexpr std::string_view caseName(E value) noexcept {
    const auto raw = static_cast<std::size_t>(value);
    if (raw >= enumeration_detail::rawValueLimit) return {};
    std::string_view name = enumeration_detail::names<E>[raw];
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

template <IntegerBacked E>
[[nodiscard]] constexpr std::int64_t rawValue(E value) noexcept {
    return static_cast<std::int64_t>(value);
}
template <TextBacked E>
[[nodiscard]] constexpr std::string_view rawValue(E value) noexcept {
    return caseName(value);
}

/// The case of that raw value; absent when no case has it.
template <IntegerBacked E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::int64_t raw) noexcept {
    if (raw < 0 || raw >= static_cast<std::int64_t>(enumeration_detail::rawValueLimit)) return std::nullopt;
    if (enumeration_detail::names<E>[static_cast<std::size_t>(raw)].empty()) return std::nullopt;
    return static_cast<E>(raw);
}
template <TextBacked E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view raw) noexcept {
    return fromCaseName<E>(raw);
}

}  // namespace kestrel
