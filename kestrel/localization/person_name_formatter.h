#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

namespace localization {
struct PersonNameRules;
}

// People's names as they are written in the languages of the world:
//
//     const PersonNameFormatter formatter{"en"};
//     const PersonName name{.given = "Ada", .surname = "Lovelace"};
//     formatter.format(name).text                                         "Ada Lovelace"
//     formatter.format(name, {.order = PersonNameOrder::sorting}).text    "Lovelace, Ada"
//
// `Name` in the records has simple styles on top of this; a host comes here for lists sorted by family name, for
// letters, and for names whose own language it knows.

/// A part of a name, as the patterns of all languages know it.
enum class PersonNameField : std::uint8_t {
    title,        ///< "Dr."
    given,        ///< "Ada"; the only name of people who have but one
    given2,       ///< further given names, or a patronymic: "Augusta"
    surname,      ///< "van den Berg"
    surname2,     ///< a second family name, where it may be left out: "Pérez"
    generation,   ///< "Jr."
    credentials,  ///< "PhD"
};

/// A choice of fields.
struct PersonNameFields {
    /// A bit for each field, that of the first one being the lowest.
    std::uint8_t bits{};

    /// None.
    constexpr PersonNameFields() noexcept = default;
    /// That one alone.
    // NOLINTNEXTLINE(google-explicit-constructor): a field is a choice of one.
    constexpr PersonNameFields(PersonNameField field) noexcept
        : bits(static_cast<std::uint8_t>(1U << static_cast<unsigned>(field))) {}
    /// Every field.
    [[nodiscard]] static constexpr PersonNameFields all() noexcept {
        PersonNameFields fields;
        fields.bits = 0x7F;
        return fields;
    }
    /// Whether the field is among them.
    [[nodiscard]] constexpr bool contains(PersonNameField field) const noexcept {
        return (bits & PersonNameFields(field).bits) != 0;
    }

    /// Those of either.
    friend constexpr PersonNameFields operator|(PersonNameFields a, PersonNameFields b) noexcept {
        a.bits |= b.bits;
        return a;
    }
    friend constexpr bool operator==(PersonNameFields, PersonNameFields) = default;
};
/// Both.
[[nodiscard]] constexpr PersonNameFields operator|(PersonNameField a, PersonNameField b) noexcept {
    return PersonNameFields(a) | PersonNameFields(b);
}

/// Which name comes first.
enum class PersonNameOrder : std::uint8_t {
    givenFirst,    ///< "Ada Lovelace"
    surnameFirst,  ///< "Lovelace Ada"
    sorting,       ///< "Lovelace, Ada": for lists in the order of family names
};
/// How much of a name is given.
enum class PersonNameLength : std::uint8_t {
    long_,   ///< all that the patterns know of
    medium,  ///< the usual form
    short_   ///< the shortest form, often with initials
};
/// What the name is for.
enum class PersonNameUsage : std::uint8_t {
    referring,   ///< speaking about the person
    addressing,  ///< speaking to the person; sorting has only `referring` and takes it for this
    monogram,    ///< "AL"; likewise
};
/// How the person is spoken of.
enum class PersonNameFormality : std::uint8_t {
    formal,   ///< with title and family name where the language does so
    informal  ///< as friends say
};

/// A name to be formatted, in UTF-8. Members that are empty are absent, and white space around a text does not count.
/// The texts are only looked at during the call.
struct PersonName {
    /// PersonNameField::title.
    std::string_view title{};
    /// PersonNameField::given.
    std::string_view given{};
    /// What friends say; informal patterns prefer it: "Bertie"
    std::string_view givenInformal{};
    /// PersonNameField::given2.
    std::string_view given2{};
    /// The whole family name. When it is absent it is made of its two parts.
    std::string_view surname{};
    /// The part of the family name that some languages leave out when they sort: "van den"
    std::string_view surnamePrefix{};
    /// The rest of it: "Berg"
    std::string_view surnameCore{};
    /// PersonNameField::surname2.
    std::string_view surname2{};
    /// PersonNameField::generation.
    std::string_view generation{};
    /// PersonNameField::credentials.
    std::string_view credentials{};
    /// The language of the name, as BCP 47 or POSIX: "ja", "de-AT". When it is absent, a name in a script of the
    /// formatter's language is taken for one of that language, and any other for one of the language that is mostly
    /// written in its script.
    std::string_view locale{};
    /// Given or family name first, whatever is usual for names of that language.
    std::optional<PersonNameOrder> preferredOrder{};
};

/// How a name is to be formatted. By default as the formatter's language finds usual when people are spoken of.
struct PersonNameOptions {
    /// Absent: what the formatter's language finds usual.
    std::optional<PersonNameLength> length{};
    /// What the name is for.
    PersonNameUsage usage = PersonNameUsage::referring;
    /// Absent: what the formatter's language finds usual.
    std::optional<PersonNameFormality> formality{};
    /// Absent: given or family name first, by the language of the name.
    std::optional<PersonNameOrder> order{};
    /// Fields that show unabridged wherever the name has them. A pattern may lack one or give only its initial; the
    /// field is then put in its usual place among the others.
    PersonNameFields required{};
    /// Leaves the spaces within a field alone in languages that write names without spaces or put dots in their place.
    bool keepsSpacesOfFields = false;
};

/// A name as a text, and which field each part of it came of.
struct FormattedPersonName {
    /// The text that came of one field: positions and lengths count bytes.
    struct Run {
        /// The field.
        PersonNameField field{};
        /// In bytes, from 0.
        std::size_t start{};
        /// In bytes; not 0.
        std::size_t length{};

        friend bool operator==(const Run&, const Run&) = default;
    };

    /// In UTF-8. Empty when the name has no field that the patterns show.
    std::string text{};
    /// In order, apart from each other, not empty. What lies between them came of the pattern.
    std::vector<Run> runs{};

    friend bool operator==(const FormattedPersonName&, const FormattedPersonName&) = default;
};

/// Formats names for the readers of one language, by the patterns of the Unicode Common Locale Data Repository.
///
/// A name in another script than that of the language is formatted as in the language that the name is in, or else the
/// one mostly written in that script: in German, 宮崎駿 remains as it is written in Japan, if the name says "ja".
///
/// A name with either no given name or no family name shows the one that it has.
///
/// Small and cheap to copy and make; every function may be called from any thread.
class PersonNameFormatter {
  public:
    /// For a locale as BCP 47 ("de-AT", "zh-Hant-TW") or POSIX names it ("ja_JP.UTF-8", "sr_RS@latin"). One without
    /// patterns of its own is served by its parent, and at last by English.
    ///
    /// An empty locale stands for the first of ResourceBundle::preferredLanguages() that has patterns, whether or not
    /// the library has texts in it; "C" and "POSIX" mean English.
    explicit PersonNameFormatter(std::string_view locale = {});

    /// The name as a text. Some microseconds; what is given is not looked at afterwards.
    [[nodiscard]] FormattedPersonName format(const PersonName& name, const PersonNameOptions& options = {}) const;

    /// What was found for the locale: "de" for "de-AT", "en" where there is nothing nearer.
    [[nodiscard]] std::string_view locale() const noexcept { return patternsLocale_; }

  private:
    const localization::PersonNameRules* rules_;
    // All three lie in tables of the library.
    std::string_view patternsLocale_;
    std::string_view language_;
    std::string_view script_;
};

}  // namespace kestrel
