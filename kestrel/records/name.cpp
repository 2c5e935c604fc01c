#include <kestrel/coding/wire_form.h>
#include <kestrel/foundation/unicode.h>
#include <kestrel/localization/person_name_formatter.h>
#include <kestrel/records/name.h>

#include <algorithm>
#include <array>
#include <span>

namespace kestrel {

KESTREL_FIELDS(Name, prefix, first, middle, last, suffix, nickname, alias);

namespace {

// The chosen parts that have a text, without white space around it.
struct Parts {
    Parts(const Name& name, NameComponents components) {
        const auto take = [&](NamePart part, NameComponents component, const std::optional<std::string>& text) {
            if (text && components.contains(component))
                texts[static_cast<std::size_t>(part)] = trimmedWhiteSpace(*text);
        };
        take(NamePart::prefix, NameComponents::prefix, name.prefix);
        take(NamePart::first, NameComponents::first, name.first);
        take(NamePart::middle, NameComponents::middle, name.middle);
        take(NamePart::last, NameComponents::last, name.last);
        take(NamePart::suffix, NameComponents::suffix, name.suffix);
        take(NamePart::nickname, NameComponents::nickname, name.nickname);
        take(NamePart::alias, NameComponents::alias, name.alias);
    }

    [[nodiscard]] std::string_view operator[](NamePart part) const { return texts[static_cast<std::size_t>(part)]; }
    void drop(NamePart part) { texts[static_cast<std::size_t>(part)] = {}; }
    [[nodiscard]] std::size_t count() const {
        return static_cast<std::size_t>(std::ranges::count_if(texts, [](auto text) { return !text.empty(); }));
    }
    // The one that people go by most: first, last, middle, and then the others.
    [[nodiscard]] std::optional<NamePart> foremost() const {
        using enum NamePart;
        for (const NamePart part : {first, last, middle, nickname, alias, prefix, suffix}) {
            if (!(*this)[part].empty()) return part;
        }
        return std::nullopt;
    }

    std::array<std::string_view, 7> texts{};
};

PersonNameOptions optionsOf(NameStyle style) {
    using enum PersonNameField;
    using Length = PersonNameLength;
    using Usage = PersonNameUsage;
    using Formality = PersonNameFormality;
    PersonNameOptions options{.length = Length::long_, .formality = Formality::formal, .keepsSpacesOfFields = true};
    switch (style) {
        case NameStyle::short_:
            options.length = Length::short_;
            options.usage = Usage::addressing;
            options.formality = Formality::informal;
            break;
        case NameStyle::medium:
            options.length = Length::medium;
            options.formality = Formality::informal;
            options.required = given | surname;
            break;
        case NameStyle::long_: options.required = PersonNameFields::all(); break;
        case NameStyle::abbreviated:
            options.usage = Usage::monogram;
            options.formality = Formality::informal;
            break;
    }
    return options;
}

struct Shown {
    FormattedPersonName name{};
    // The parts that the fields were filled with, by field.
    std::array<NamePart, 7> parts{};
};

Shown shown(const Name& name, NameComponents components, NameStyle style, std::string_view locale) {
    using enum NamePart;
    using Field = PersonNameField;
    components = components & NameComponents::all;
    Parts parts(name, components);
    if (components != NameComponents::nickname && style != NameStyle::short_) parts.drop(nickname);
    if (components != NameComponents::alias) parts.drop(alias);
    if (style == NameStyle::short_ || style == NameStyle::medium) {
        // Some locales have longer patterns for these; but what the styles leave out they leave out everywhere.
        if (!parts[first].empty() || !parts[last].empty() || !parts[nickname].empty()) {
            for (const NamePart part : {prefix, middle, suffix})
                parts.drop(part);
        }
    }
    const auto foremost = parts.foremost();
    if (!foremost) return {};

    constexpr auto fields = [](NamePart given) {
        return std::array{prefix, given, middle, last, last, suffix, suffix};
    };
    // A part that stands alone stands for the whole.
    const auto alone = [&](const PersonNameFormatter& formatter, NamePart part) {
        auto options = optionsOf(style);
        options.required = style == NameStyle::abbreviated ? PersonNameFields{} : Field::given;
        return Shown{formatter.format({.given = parts[part]}, options), fields(part)};
    };
    const PersonNameFormatter formatter{locale};
    if (parts.count() == 1) return alone(formatter, *foremost);

    const NamePart given = parts[nickname].empty() ? first : nickname;
    const PersonName person{.title = parts[prefix],
                            .given = parts[given],
                            .given2 = parts[middle],
                            .surname = parts[last],
                            .generation = parts[suffix]};
    auto formatted = formatter.format(person, optionsOf(style));
    // The style shows nothing of what was chosen, such as a prefix and a suffix alone.
    if (formatted.text.empty()) {
        if (style == NameStyle::abbreviated) return alone(formatter, *foremost);
        formatted = formatter.format(person, optionsOf(NameStyle::long_));
    }
    return {std::move(formatted), fields(given)};
}

}  // namespace

std::string Name::localized(Components components, Style style, std::string_view locale) const {
    return shown(*this, components, style, locale).name.text;
}

AttributedString Name::annotated(Components components, Style style, std::string_view locale) const {
    const auto [name, parts] = shown(*this, components, style, locale);
    const std::string_view text = name.text;
    AttributedString result;
    std::size_t end = 0;
    for (const auto& run : name.runs) {
        result.append(text.substr(end, run.start - end));
        end = run.start + run.length;
        result.append(text.substr(run.start, run.length), {.namePart = parts[static_cast<std::size_t>(run.field)]});
    }
    result.append(text.substr(end));
    return result;
}

std::string Name::localizedFull(std::string_view locale) const {
    return localized(Components::all, Style::long_, locale);
}

std::optional<std::string> Name::composedFirstLast() const {
    const bool hasFirst = first && !first->empty();
    const bool hasLast = last && !last->empty();
    if (!hasFirst && !hasLast) return std::nullopt;
    if (!hasLast) return first;
    if (!hasFirst) return last;
    return *first + ' ' + *last;
}

}  // namespace kestrel
