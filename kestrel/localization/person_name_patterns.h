#pragma once

#include <kestrel/localization/person_name_formatter.h>

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace kestrel::localization {

// The data behind PersonNameFormatter, written by scripts/update-person-names. Tables that are looked up by a
// text are sorted by it.

/// Which pattern serves which order, length, usage and formality, as indices into `personNamePatterns`: 18 for given
/// name first, 18 for family name first, 6 for sorting. Within an order the lengths come long, medium, short, within a
/// length the usages referring, addressing, monogram (of which sorting has only the first), within a usage formal and
/// informal.
using PersonNameLayout = std::array<std::uint16_t, 42>;

/// How names are written in a locale.
struct PersonNameRules {
    /// The locales of names that have the given name in front here, separated by spaces; one of the two lists has
    /// "und", which stands for all others.
    std::string_view givenFirst;
    /// Those that have the family name in front.
    std::string_view surnameFirst;
    /// What an initial looks like: "{0}."
    std::string_view initial;
    /// How two initials of one field stand together: "{0} {1}"
    std::string_view initialSequence;
    /// What stands for a space in names of the locale's own language.
    std::string_view nativeSpace;
    /// What stands for a space in all other names.
    std::string_view foreignSpace;
    PersonNameLength usualLength;
    PersonNameFormality usualFormality;
    const PersonNameLayout* layout;
};

struct PersonNameRulesKey {
    /// "de", "en-GB", "zh-Hant-HK": with the script only where it is not the likely one of the language.
    std::string_view locale;
    const PersonNameRules* rules;
};

struct SubtagPair {
    std::string_view from;
    std::string_view to;
};

struct ScriptLocale {
    std::string_view script;
    std::string_view language;
    std::string_view region;
};

/// The texts of patterns. Where one has alternatives, they are separated by a vertical bar.
extern const std::span<const std::string_view> personNamePatterns;
extern const std::span<const PersonNameRulesKey> personNameRules;
/// The script that a language, or a language in a region ("zh-TW"), is written in. Regions only where they differ.
extern const std::span<const SubtagPair> likelyScripts;
/// The language, and its region, that a text in a script most likely is in.
extern const std::span<const ScriptLocale> likelyLocales;
/// Codes of languages that are no longer used.
extern const std::span<const SubtagPair> replacedLanguages;

}  // namespace kestrel::localization
