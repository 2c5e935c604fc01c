#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/attributed_string.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// A choice of parts of a name, as bits of an integer.
struct NameComponents {
    /// A bit for each part, in the order of the constants; that of the prefix is the lowest.
    std::int64_t rawValue{};

    /// Name::prefix alone.
    static const NameComponents prefix;
    /// Name::first alone.
    static const NameComponents first;
    /// Name::middle alone.
    static const NameComponents middle;
    /// Name::last alone.
    static const NameComponents last;
    /// Name::suffix alone.
    static const NameComponents suffix;
    /// Name::nickname alone.
    static const NameComponents nickname;
    /// Name::alias alone.
    static const NameComponents alias;
    /// All seven parts.
    static const NameComponents all;

    /// Whether all of the other ones are among them; true when there are none.
    [[nodiscard]] constexpr bool contains(NameComponents other) const noexcept {
        return (rawValue & other.rawValue) == other.rawValue;
    }
    /// Whether no part is chosen.
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return rawValue == 0; }

    /// The components of either.
    friend constexpr NameComponents operator|(NameComponents a, NameComponents b) noexcept {
        return {a.rawValue | b.rawValue};
    }
    /// The components of both.
    friend constexpr NameComponents operator&(NameComponents a, NameComponents b) noexcept {
        return {a.rawValue & b.rawValue};
    }
    /// The components of `a` that are not in `b`.
    friend constexpr NameComponents operator-(NameComponents a, NameComponents b) noexcept {
        return {a.rawValue & ~b.rawValue};
    }
    /// Adds the other ones.
    constexpr NameComponents& operator|=(NameComponents other) noexcept { return *this = *this | other; }
    /// Keeps those that are among the other ones, too.
    constexpr NameComponents& operator&=(NameComponents other) noexcept { return *this = *this & other; }
    /// Takes the other ones away.
    constexpr NameComponents& operator-=(NameComponents other) noexcept { return *this = *this - other; }
    friend constexpr bool operator==(NameComponents, NameComponents) = default;
};
inline constexpr NameComponents NameComponents::prefix{1U << 0U};
inline constexpr NameComponents NameComponents::first{1U << 1U};
inline constexpr NameComponents NameComponents::middle{1U << 2U};
inline constexpr NameComponents NameComponents::last{1U << 3U};
inline constexpr NameComponents NameComponents::suffix{1U << 4U};
inline constexpr NameComponents NameComponents::nickname{1U << 5U};
inline constexpr NameComponents NameComponents::alias{1U << 6U};
inline constexpr NameComponents NameComponents::all{(1U << 7U) - 1};

/// How much of a name is shown.
enum class NameStyle : std::uint8_t {
    short_ = 0,       ///< as friends say it, by nickname or first name, with the last name where that is usual: "Ada"
    medium = 1,       ///< as most people say it, by first and last name: "Ada Lovelace"
    long_ = 2,        ///< every chosen part, unabridged: "Dr. Ada Augusta Lovelace Jr."
    abbreviated = 3,  ///< as a monogram: "AL"
};

/// A person's name by its parts.
struct Name {
    using Coded = void;
    /// Which parts to show.
    using Components = NameComponents;
    /// How much to show of them.
    using Style = NameStyle;

    /// In front of the name: "Dr."
    std::optional<std::string> prefix{};
    /// The first of the given names.
    std::optional<std::string> first{};
    /// The given names behind the first.
    std::optional<std::string> middle{};
    /// The family name.
    std::optional<std::string> last{};
    /// Behind the name: "Jr."
    std::optional<std::string> suffix{};
    /// What friends call the person.
    std::optional<std::string> nickname{};
    /// Another name that the person goes by.
    std::optional<std::string> alias{};

    /// A name without any part.
    [[nodiscard]] static Name empty() { return {}; }

    /// The chosen parts, put together as the people of a locale do: in their order, with their separators. Parts that
    /// are absent or empty are skipped with what would stand between. The nickname shows only in the short style or
    /// when it is the one part chosen; the alias only when it is. An empty text when nothing is left to show.
    ///
    /// The long style loses none of the chosen parts, and the medium style neither first nor last name. A part that
    /// people of the locale leave out stands in its usual place: the prefix in front, the middle name behind the first,
    /// the suffix behind the name. A part that is left alone shows as it is, and parts of which the style shows none,
    /// such as prefix and suffix, show as in the long style. White space around a part is left out.
    ///
    /// A name in the script of the locale has the order of the locale: in Hungarian the last name comes first. One in
    /// another script is written as in the language of that script: "Ada Lovelace" in Japanese, too.
    ///
    /// The locale is one of BCP 47 or POSIX, such as "de-AT" or "ja_JP.UTF-8"; an empty one stands for the current
    /// language of the user. Those without patterns of their own use those of the nearest parent, and at last of
    /// English.
    [[nodiscard]] std::string localized(Components components = Components::all, Style style = Style::medium,
                                        std::string_view locale = {}) const;
    /// The same as attributed text: every part of the name that shows is marked with its `namePart`.
    [[nodiscard]] AttributedString annotated(Components components = Components::all, Style style = Style::medium,
                                             std::string_view locale = {}) const;
    /// The long form of all parts.
    [[nodiscard]] std::string localizedFull(std::string_view locale = {}) const;
    /// First and last name, those of them that are present and not empty, with a space between; absent when neither is.
    [[nodiscard]] std::optional<std::string> composedFirstLast() const;

    friend bool operator==(const Name&, const Name&) = default;
};
extern template struct Codec<Name>;

}  // namespace kestrel
