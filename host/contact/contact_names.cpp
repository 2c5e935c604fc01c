#include <host/contact/contact_names.h>
#include <host/terminal/text.h>
#include <kestrel/localization/person_name_formatter.h>

#include <algorithm>

namespace kestrel::host {
namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isLetterOrDigit(char c) {
    return isLetter(c) || (c >= '0' && c <= '9');
}

std::string textOr(const std::optional<std::string>& text, std::string_view other) {
    return text && !text->empty() ? *text : std::string(other);
}

/// What a contact is called that has neither first nor last name.
std::string otherName(const ObjectID<Contact>& id, const Name& name) {
    return textOr(name.nickname, textOr(name.alias, id.stringValue()));
}

}  // namespace

bool isLocale(std::string_view text) {
    if (text == "C") return true;
    constexpr std::size_t longestSubtag = 8;
    // What POSIX puts behind: an encoding, and a variant.
    const std::string_view tags = text.substr(0, text.find_first_of(".@"));
    const std::string_view behind = text.substr(tags.size());
    const auto isPlain = [](char c) { return isLetterOrDigit(c) || c == '-' || c == '_' || c == '.' || c == '@'; };
    if (!std::ranges::all_of(behind, isPlain)) return false;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = std::min(tags.find_first_of("-_", start), tags.size());
        const std::string_view subtag = tags.substr(start, end - start);
        if (subtag.empty() || subtag.size() > longestSubtag || !std::ranges::all_of(subtag, isLetterOrDigit)) {
            return false;
        }
        if (start == 0 && (subtag.size() == 1 || !std::ranges::all_of(subtag, isLetter))) return false;
        if (end == tags.size()) return true;
        start = end + 1;
    }
}

std::string shownName(const ObjectID<Contact>& id, const Name& name, std::string_view locale) {
    const std::string text =
        name.localized(Name::Components::first | Name::Components::last, NameStyle::medium, locale);
    return text.empty() ? otherName(id, name) : text;
}

std::string shownName(const Contact& contact, std::string_view locale) {
    return shownName(contact.objectID(), contact.name(), locale);
}

std::string fullName(const Contact& contact, std::string_view locale) {
    const std::string text = contact.name().localizedFull(locale);
    return text.empty() ? otherName(contact.objectID(), contact.name()) : text;
}

std::string sortingName(const ObjectID<Contact>& id, const Name& name, std::string_view locale) {
    const PersonName person{.given = name.first ? *name.first : std::string_view(),
                            .surname = name.last ? *name.last : std::string_view()};
    const PersonNameOptions options{.length = PersonNameLength::medium,
                                    .order = PersonNameOrder::sorting,
                                    .required = PersonNameField::given | PersonNameField::surname,
                                    .keepsSpacesOfFields = true};
    const std::string text = PersonNameFormatter(locale).format(person, options).text;
    return text.empty() ? otherName(id, name) : text;
}

std::vector<std::string> foldedNames(const Name& name, std::string_view locale) {
    std::vector<std::string> names;
    const auto add = [&](const std::string& text) {
        if (!text.empty()) names.push_back(foldedCase(text));
    };
    const std::string first = textOr(name.first, "");
    const std::string last = textOr(name.last, "");
    add(name.localizedFull(locale));
    if (!first.empty() && !last.empty()) {
        add(first + ' ' + last);
        add(last + ' ' + first);
        add(last + ", " + first);
    } else {
        add(first + last);
    }
    add(textOr(name.nickname, ""));
    add(textOr(name.alias, ""));
    return names;
}

std::optional<std::string> textIn(const std::optional<std::string>& text) {
    return text && !text->empty() ? text : std::nullopt;
}

}  // namespace kestrel::host
