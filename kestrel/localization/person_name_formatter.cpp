#include <kestrel/foundation/unicode.h>
#include <kestrel/localization/person_name_formatter.h>
#include <kestrel/localization/person_name_patterns.h>
#include <kestrel/localization/resource_bundle.h>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <utility>

namespace kestrel {

namespace localization {

namespace {

using Field = PersonNameField;
using enum PersonNameOrder;

// ---- Characters ----

UChar32 forICU(char32_t c) {
    return static_cast<UChar32>(c);
}

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Appends a text with another in the place of each sequence of white space; when that is a space, only longer sequences
// change: the first of them stays.
void appendWithSpaces(std::string& out, std::string_view text, std::string_view replacement) {
    bool inSpace = false;
    for (std::size_t at = 0; at < text.size();) {
        const auto [c, size] = codePointAt(text, at);
        const bool space = isWhiteSpace(c);
        if (!space)
            out.append(text, at, size);
        else if (!inSpace)
            out.append(replacement == " " ? text.substr(at, size) : replacement);
        inSpace = space;
        at += size;
    }
}

// ---- Locales ----

struct Tag {
    std::string language{"und"};
    std::string script{};
    std::string region{};
};

char lower(char c) {
    return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char upper(char c) {
    return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
bool isLetter(char c) {
    return 'a' <= lower(c) && lower(c) <= 'z';
}
bool isDigit(char c) {
    return '0' <= c && c <= '9';
}

template <class Entry>
const Entry* find(std::span<const Entry> table, std::string_view Entry::* key, std::string_view wanted) {
    const auto found = std::ranges::lower_bound(table, wanted, {}, key);
    return found != table.end() && (*found).*key == wanted ? &*found : nullptr;
}

/// Whether anything is known of a language by itself.
bool isKnownLanguage(std::string_view language) {
    return find(personNameRules, &PersonNameRulesKey::locale, language) != nullptr ||
           find(likelyScripts, &SubtagPair::from, language) != nullptr;
}

Tag parseTag(std::string_view text) {
    std::string_view modifier;
    if (const auto at = text.find('@'); at != std::string_view::npos) {
        modifier = text.substr(at + 1);
        text = text.substr(0, at);
    }
    text = text.substr(0, text.find('.'));
    if (text == "C" || text == "POSIX") return {.language = "en"};

    Tag tag;
    for (bool first = true; !text.empty(); first = false) {
        const auto end = std::min(text.find_first_of("-_"), text.size());
        std::string subtag{text.substr(0, end)};
        text.remove_prefix(std::min(end + 1, text.size()));
        std::ranges::transform(subtag, subtag.begin(), lower);
        const bool letters = std::ranges::all_of(subtag, isLetter);
        if (first) {
            if (!letters || subtag.size() < 2 || subtag.size() > 8) return tag;
            if (subtag != "root") tag.language = std::move(subtag);
        } else if (letters && subtag.size() == 3 && tag.script.empty() && tag.region.empty()) {
            // "zh-yue": the second names the language alone. Others, such as the country of "de-DEU", say nothing here.
            if (isKnownLanguage(subtag)) tag.language = std::move(subtag);
        } else if (letters && subtag.size() == 4 && tag.script.empty() && tag.region.empty()) {
            subtag.front() = upper(subtag.front());
            tag.script = std::move(subtag);
        } else if (((letters && subtag.size() == 2) || (subtag.size() == 3 && std::ranges::all_of(subtag, isDigit))) &&
                   tag.region.empty()) {
            std::ranges::transform(subtag, subtag.begin(), upper);
            tag.region = std::move(subtag);
        } else {
            break;  // variants and extensions change nothing here
        }
    }
    if (tag.script.empty() && modifier == "latin") tag.script = "Latn";
    if (tag.script.empty() && modifier == "cyrillic") tag.script = "Cyrl";

    if (const auto* replaced = find(replacedLanguages, &SubtagPair::from, tag.language)) {
        Tag today = parseTag(replaced->to);
        tag.language = std::move(today.language);
        if (tag.script.empty()) tag.script = std::move(today.script);
        if (tag.region.empty()) tag.region = std::move(today.region);
    }
    return tag;
}

std::string joined(std::string_view language, std::string_view script, std::string_view region) {
    std::string text{language};
    for (const auto subtag : {script, region}) {
        if (subtag.empty()) continue;
        text += '-';
        text += subtag;
    }
    return text;
}

// The script that the locale is written in; empty where that is not known.
std::string_view scriptOf(const Tag& tag) {
    if (!tag.script.empty()) return tag.script;
    if (!tag.region.empty()) {
        const auto* regional = find(likelyScripts, &SubtagPair::from, joined(tag.language, {}, tag.region));
        if (regional != nullptr) return regional->to;
    }
    const auto* usual = find(likelyScripts, &SubtagPair::from, tag.language);
    return usual == nullptr ? std::string_view{} : usual->to;
}

// The scripts that some codes stand for together.
std::span<const std::string_view> scriptsIn(const std::string_view& script) {
    using namespace std::literals;
    static constexpr std::array japanese{"Hani"sv, "Hira"sv, "Kana"sv};
    static constexpr std::array korean{"Hang"sv, "Hani"sv};
    static constexpr std::array chinese{"Hani"sv};
    static constexpr std::array bopomofo{"Hani"sv, "Bopo"sv};
    if (script == "Jpan") return japanese;
    if (script == "Hrkt") return std::span(japanese).subspan(1);
    if (script == "Kore") return korean;
    if (script == "Jamo") return std::span(korean).first(1);
    if (script == "Hans" || script == "Hant") return chinese;
    if (script == "Hanb") return bopomofo;
    return {&script, 1};
}

bool scriptsMatch(std::string_view a, std::string_view b) {
    if (a == b) return true;
    return std::ranges::find_first_of(scriptsIn(a), scriptsIn(b)) != scriptsIn(a).end();
}

// The rules that the locale or its nearest parent has; none for a language without, or in a script without.
const PersonNameRulesKey* rulesOf(const Tag& tag) {
    const auto* usual = find(likelyScripts, &SubtagPair::from, tag.language);
    if (usual == nullptr) return nullptr;
    // Simplified and traditional Chinese share their characters and not their rules; "Hani" alone means the usual ones.
    const auto script = scriptOf(tag);
    const bool apart = script == "Hans" || script == "Hant";
    const bool isUsual = script == usual->to || (!apart && scriptsMatch(script, usual->to));
    const auto named = isUsual ? std::string_view{} : script;
    const auto* regional = find(personNameRules, &PersonNameRulesKey::locale, joined(tag.language, named, tag.region));
    if (regional != nullptr) return regional;
    return find(personNameRules, &PersonNameRulesKey::locale, joined(tag.language, named, {}));
}

// Whether a list with spaces between has the word.
bool lists(std::string_view list, std::string_view word) {
    for (std::size_t at = list.find(word); at != std::string_view::npos; at = list.find(word, at + 1)) {
        const auto end = at + word.size();
        if ((at == 0 || list[at - 1] == ' ') && (end == list.size() || list[end] == ' ')) return true;
    }
    return false;
}

// Given or family name first, for names of a locale in the lists of another.
PersonNameOrder orderOf(const Tag& tag, const PersonNameRules& rules) {
    const auto decided = [&](std::string_view locale) -> std::optional<PersonNameOrder> {
        if (lists(rules.givenFirst, locale)) return givenFirst;
        if (lists(rules.surnameFirst, locale)) return surnameFirst;
        return std::nullopt;
    };
    const auto tried = [&](std::string_view script, std::string_view region) {
        const auto order = decided(joined(tag.language, script, region));
        return order ? order : decided(joined("und", script, region));
    };
    std::optional<PersonNameOrder> order;
    if (!tag.script.empty() && !tag.region.empty()) order = tried(tag.script, tag.region);
    if (!order && !tag.script.empty()) order = tried(tag.script, {});
    if (!order && !tag.region.empty()) order = tried({}, tag.region);
    if (!order) order = tried({}, {});
    return order.value_or(givenFirst);
}

// ---- The name ----

// What a name answers when a pattern asks for a field.
class Values {
  public:
    explicit Values(const PersonName& name)
        : plain_{trimmedWhiteSpace(name.title),      trimmedWhiteSpace(name.given),
                 trimmedWhiteSpace(name.given2),     trimmedWhiteSpace(name.surname),
                 trimmedWhiteSpace(name.surname2),   trimmedWhiteSpace(name.generation),
                 trimmedWhiteSpace(name.credentials)},
          informal_(trimmedWhiteSpace(name.givenInformal)),
          prefix_(trimmedWhiteSpace(name.surnamePrefix)),
          core_(trimmedWhiteSpace(name.surnameCore)) {
        auto& surname = plain_[index(Field::surname)];
        if (core_.empty()) {
            prefix_ = {};
            core_ = surname;
        } else if (surname.empty()) {
            whole_.assign(prefix_).append(prefix_.empty() ? "" : " ").append(core_);
            surname = whole_;
        }
        if (plain_[index(Field::given)].empty()) plain_[index(Field::given)] = informal_;
    }
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;

    [[nodiscard]] std::string_view operator[](Field field) const { return plain_[index(field)]; }
    [[nodiscard]] std::string_view informal() const {
        return informal_.empty() ? plain_[index(Field::given)] : informal_;
    }
    [[nodiscard]] std::string_view prefix() const { return prefix_; }
    [[nodiscard]] std::string_view core() const { return core_; }

    // The first script of the text that belongs to one; empty when none does.
    [[nodiscard]] std::string_view script() const {
        using enum PersonNameField;
        for (const Field field : {surname, given, given2, surname2, title, generation, credentials}) {
            for (std::size_t at = 0; at < (*this)[field].size();) {
                const auto [c, size] = codePointAt((*this)[field], at);
                at += size;
                if (c < 0x80) {
                    if (isLetter(static_cast<char>(c))) return "Latn";
                    continue;
                }
                UErrorCode error = U_ZERO_ERROR;
                const auto script = uscript_getScript(forICU(c), &error);
                if (U_FAILURE(error) || script == USCRIPT_COMMON || script == USCRIPT_INHERITED ||
                    script == USCRIPT_UNKNOWN) {
                    continue;
                }
                return uscript_getShortName(script);
            }
        }
        return {};
    }

  private:
    static std::size_t index(Field field) { return static_cast<std::size_t>(field); }

    std::array<std::string_view, 7> plain_;
    std::string_view informal_;
    std::string_view prefix_;
    std::string_view core_;
    std::string whole_;
};

// ---- Patterns ----

struct Modifiers {
    bool informal = false;
    bool prefix = false;
    bool core = false;
    bool initial = false;
    bool monogram = false;
    bool retain = false;
    bool allCaps = false;
    bool initialCap = false;
};

struct Element {
    // In front of the field.
    std::string_view literal{};
    Field field{};
    Modifiers modifiers{};
    std::string_view value{};
};

struct Pattern {
    // The nine that a pattern of the table may have, and the seven fields that it may lack.
    std::array<Element, 16> elements{};
    std::size_t count = 0;
    std::string_view end{};

    [[nodiscard]] std::span<Element> all() { return std::span(elements).first(count); }
    [[nodiscard]] std::span<const Element> all() const { return std::span(elements).first(count); }
    [[nodiscard]] Element* find(Field field) {
        const auto found = std::ranges::find(all(), field, &Element::field);
        return found == all().end() ? nullptr : &*found;
    }
    // In front of what is at the position.
    Element& insert(std::size_t position, const Element& element) {
        const auto rest = std::span(elements).subspan(position, count - position);
        std::ranges::move_backward(rest, elements.begin() + static_cast<std::ptrdiff_t>(count + 1));
        ++count;
        return elements[position] = element;
    }
    void erase(std::size_t position) {
        std::ranges::move(std::span(elements).subspan(position + 1, count - position - 1),
                          elements.begin() + static_cast<std::ptrdiff_t>(position));
        --count;
    }
};

template <class Value>
struct Named {
    std::string_view name;
    Value value;
};
constexpr std::array fieldNames{Named{"title", Field::title},
                                Named{"given", Field::given},
                                Named{"given2", Field::given2},
                                Named{"surname", Field::surname},
                                Named{"surname2", Field::surname2},
                                Named{"generation", Field::generation},
                                Named{"credentials", Field::credentials}};
// The cases of inflecting languages, vocative and genitive, are answered with the field itself, as no name has them.
constexpr std::array modifierNames{
    Named{"informal", &Modifiers::informal}, Named{"prefix", &Modifiers::prefix},
    Named{"core", &Modifiers::core},         Named{"initial", &Modifiers::initial},
    Named{"monogram", &Modifiers::monogram}, Named{"retain", &Modifiers::retain},
    Named{"allCaps", &Modifiers::allCaps},   Named{"initialCap", &Modifiers::initialCap}};

// The texts come from our table, whose writer checks them.
Pattern parsed(std::string_view text) {
    Pattern pattern;
    for (;;) {
        const auto open = text.find('{');
        if (open == std::string_view::npos) break;
        const auto close = text.find('}', open);
        Element& element = pattern.elements[pattern.count++];
        element.literal = text.substr(0, open);
        auto names = text.substr(open + 1, close - open - 1);
        auto dash = std::min(names.find('-'), names.size());
        for (const auto& [name, field] : fieldNames) {
            if (name == names.substr(0, dash)) element.field = field;
        }
        while (dash < names.size()) {
            names.remove_prefix(dash + 1);
            dash = std::min(names.find('-'), names.size());
            for (const auto& [name, modifier] : modifierNames) {
                if (name == names.substr(0, dash)) element.modifiers.*modifier = true;
            }
        }
        text.remove_prefix(close + 1);
    }
    pattern.end = text;
    return pattern;
}

std::string_view answer(const Values& values, const Element& element) {
    const bool isSurname = element.field == Field::surname;
    if (element.field == Field::given && element.modifiers.informal) return values.informal();
    if (element.modifiers.prefix) return isSurname ? values.prefix() : std::string_view{};
    return isSurname && element.modifiers.core ? values.core() : values[element.field];
}

std::string_view patternText(const PersonNameRules& rules, PersonNameOrder order, PersonNameLength length,
                             PersonNameUsage usage, PersonNameFormality formality) {
    const auto at = [](auto value) { return static_cast<std::size_t>(value); };
    const auto slot = order == sorting ? 36 + at(length) * 2 + at(formality)
                                       : at(order) * 18 + at(length) * 6 + at(usage) * 2 + at(formality);
    return personNamePatterns[(*rules.layout)[slot]];
}

// Of the alternatives the one with the most fields that the name has, and then the fewest that it lacks.
Pattern chosen(std::string_view alternatives, const Values& values) {
    const auto populate = [&](Pattern pattern) {
        for (Element& element : pattern.all())
            element.value = answer(values, element);
        return pattern;
    };
    const auto populated = [](const Pattern& pattern) {
        return std::ranges::count_if(pattern.all(), [](const Element& each) { return !each.value.empty(); });
    };
    auto bar = std::min(alternatives.find('|'), alternatives.size());
    std::string_view bestText = alternatives.substr(0, bar);
    Pattern best = populate(parsed(bestText));
    while (bar < alternatives.size()) {
        alternatives.remove_prefix(bar + 1);
        bar = std::min(alternatives.find('|'), alternatives.size());
        const auto text = alternatives.substr(0, bar);
        Pattern pattern = populate(parsed(text));
        const auto more = populated(pattern) - populated(best);
        if (more > 0 || (more == 0 && std::pair(pattern.count, text) < std::pair(best.count, bestText))) {
            best = pattern;
            bestText = text;
        }
    }
    return best;
}

// People with one name: where the pattern asks for the other, or would leave no more than an initial of the one, the
// one answers for both.
void showTheOnlyName(Pattern& pattern, const Values& values) {
    const auto fill = [&](Field lacking, Field present) {
        const auto showsInFull = [&](const Element& each) { return each.field == present && !each.modifiers.initial; };
        if (!values[lacking].empty() || std::ranges::any_of(pattern.all(), showsInFull)) return;
        for (Element& element : pattern.all()) {
            if (element.field == present) {
                element.value = {};
            } else if (element.field == lacking) {
                element.value = element.modifiers.prefix ? std::string_view{} : values[present];
                element.field = present;
            }
        }
    };
    fill(Field::surname, Field::given);
    fill(Field::given, Field::surname);
}

// Behind the last of some fields, or in front of everything.
std::size_t placeBehind(const Pattern& pattern, PersonNameFields fields) {
    std::size_t place = 0;
    for (std::size_t i = 0; i < pattern.count; ++i) {
        if (fields.contains(pattern.elements[i].field)) place = i + 1;
    }
    return place;
}

// Makes the required fields show unabridged.
void complete(Pattern& pattern, const Values& values, PersonNameFields required, PersonNameOrder order) {
    using enum PersonNameField;
    const auto show = [&](Field field, auto place) {
        if (!required.contains(field) || values[field].empty()) return;
        Element* element = nullptr;
        for (std::size_t i = 0; i < pattern.count;) {
            Element& each = pattern.elements[i];
            if (each.field != field || (each.value.empty() && !each.modifiers.prefix)) {
                ++i;
            } else if (element != nullptr) {
                pattern.erase(i);  // the prefix or the core apart: the whole shows at the first
            } else {
                element = &each;
                ++i;
            }
        }
        if (element == nullptr) {
            const std::size_t position = place();
            element = &pattern.insert(position, {.literal = position == 0 ? "" : " ", .field = field});
            if (position == 0 && pattern.count > 1) pattern.elements[1].literal = " ";
        }
        element->modifiers.prefix = element->modifiers.core = element->modifiers.informal = false;
        element->modifiers.initial = element->modifiers.monogram = false;
        element->value = values[field];
    };
    const bool familyFirst = order != givenFirst;
    show(surname, [&] { return familyFirst ? placeBehind(pattern, title) : placeBehind(pattern, given | given2); });
    show(given, [&] { return familyFirst ? placeBehind(pattern, surname | surname2) : placeBehind(pattern, title); });
    show(given2, [&] { return placeBehind(pattern, given); });
    show(surname2, [&] { return placeBehind(pattern, surname); });
    show(generation, [&] { return placeBehind(pattern, given | given2 | surname | surname2); });
    show(title, [] { return std::size_t{0}; });
    show(credentials, [&] { return pattern.count; });
}

// ---- Words, initials, capitals ----

struct CloseIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};
using BreakIterator = std::unique_ptr<UBreakIterator, CloseIterator>;

// A text under one of the iterators, which are made at their first use and belong to the thread. Without the Unicode
// data of the system there is none.
class Breaks {
  public:
    Breaks(UBreakIteratorType type, std::string_view text) {
        thread_local std::array<BreakIterator, 2> iterators;
        auto& iterator = iterators[type == UBRK_CHARACTER ? 0 : 1];
        UErrorCode error = U_ZERO_ERROR;
        if (!iterator) iterator.reset(ubrk_open(type, "", nullptr, 0, &error));
        utext_openUTF8(&text_, text.data(), static_cast<std::int64_t>(text.size()), &error);
        if (iterator) ubrk_setUText(iterator.get(), &text_, &error);
        if (U_SUCCESS(error)) iterator_ = iterator.get();
    }
    ~Breaks() { utext_close(&text_); }
    Breaks(const Breaks&) = delete;
    Breaks& operator=(const Breaks&) = delete;

    [[nodiscard]] UBreakIterator* get() const { return iterator_; }

  private:
    UText text_ = UTEXT_INITIALIZER;
    UBreakIterator* iterator_ = nullptr;
};

// What a reader takes for the first letter, with all its marks.
std::string_view firstLetter(std::string_view text) {
    const auto first = codePointAt(text, 0);
    if (first.size >= text.size()) return text;
    const auto second = codePointAt(text, first.size);
    const auto standsAlone = [](char32_t c) {
        if (c < 0x80) return c >= 0x20;
        return u_getIntPropertyValue(forICU(c), UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_OTHER;
    };
    if (standsAlone(first.value) && standsAlone(second.value)) return text.substr(0, first.size);

    const Breaks breaks(UBRK_CHARACTER, text);
    if (breaks.get() == nullptr) return text.substr(0, first.size);
    const auto end = ubrk_next(breaks.get());
    return end == UBRK_DONE ? text : text.substr(0, static_cast<std::size_t>(end));
}

// Where words follow one another without a space.
bool needsDictionary(char32_t c) {
    if (c < 0x0E00) return false;
    UErrorCode error = U_ZERO_ERROR;
    switch (uscript_getScript(forICU(c), &error)) {
        case USCRIPT_HAN:
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
        case USCRIPT_THAI:
        case USCRIPT_LAO:
        case USCRIPT_KHMER:
        case USCRIPT_MYANMAR: return true;
        default: return false;
    }
}

bool isWordCharacter(char32_t c) {
    return c < 0x80 ? isLetter(static_cast<char>(c)) || isDigit(static_cast<char>(c)) : u_isalnum(forICU(c)) != 0;
}

// The dash and the full stop divide words as white space does.
bool dividesWords(char32_t c) {
    if (c < 0x80) return c == U'-' || c == U'.' || isWhiteSpace(c);
    return isWhiteSpace(c) || u_charType(forICU(c)) == U_DASH_PUNCTUATION;
}

// From the first letter or digit on; everything where there is none.
std::string_view fromFirstWord(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto [c, size] = codePointAt(text, at);
        if (isWordCharacter(c)) return text.substr(at);
        at += size;
    }
    return text;
}

struct Word {
    // From its first letter or digit on.
    std::string_view text;
    // The dash that joins it to the word before; empty where there is none.
    std::string_view dash;
};

std::vector<Word> wordsOf(std::string_view text) {
    std::vector<Word> words;
    bool dictionary = false;
    bool inWord = false;
    std::string_view dash;
    for (std::size_t at = 0; at < text.size() && !dictionary;) {
        const auto [c, size] = codePointAt(text, at);
        if (dividesWords(c)) {
            inWord = false;
            if (c == U'-' || (c >= 0x80 && !isWhiteSpace(c)))
                dash = text.substr(at, size);
            else
                dash = {};
        } else if (!inWord && isWordCharacter(c)) {
            words.push_back({text.substr(at), words.empty() ? std::string_view{} : dash});
            inWord = true;
        }
        dictionary = needsDictionary(c);
        at += size;
    }
    if (dictionary) {
        const Breaks breaks(UBRK_WORD, text);
        if (auto* iterator = breaks.get()) {
            words.clear();
            auto begin = ubrk_first(iterator);
            for (auto end = ubrk_next(iterator); end != UBRK_DONE; begin = std::exchange(end, ubrk_next(iterator))) {
                if (ubrk_getRuleStatus(iterator) >= UBRK_WORD_NONE_LIMIT)
                    words.push_back({text.substr(static_cast<std::size_t>(begin)), {}});
            }
        }
    }
    if (words.empty()) words.push_back({text, {}});
    return words;
}

// Fills "{0}" in.
std::string filled(std::string_view pattern, std::string_view value) {
    const std::size_t at = pattern.find("{0}");
    return std::string(pattern.substr(0, at)).append(value).append(pattern.substr(at + 3));
}

std::string allCapitals(std::string_view text, std::string_view language) {
    const bool dotted = language == "tr" || language == "az";
    if (isASCII(text) && (!dotted || !text.contains('i'))) {
        std::string capitals{text};
        std::ranges::transform(capitals, capitals.begin(), upper);
        return capitals;
    }
    const std::string locale{language};
    UErrorCode error = U_ZERO_ERROR;
    std::u16string source(text.size() + 1, u'\0');
    std::int32_t length = 0;
    u_strFromUTF8WithSub(source.data(), static_cast<std::int32_t>(source.size()), &length, text.data(),
                         static_cast<std::int32_t>(text.size()), 0xFFFD, nullptr, &error);
    if (U_FAILURE(error)) return std::string{text};
    // A character has at most three capitals.
    std::u16string target(static_cast<std::size_t>(length) * 3 + 1, u'\0');
    length = u_strToUpper(target.data(), static_cast<std::int32_t>(target.size()), source.data(), length,
                          locale.c_str(), &error);
    std::string capitals(static_cast<std::size_t>(std::max(length, 0)) * 3 + 1, '\0');
    std::int32_t bytes = 0;
    u_strToUTF8(capitals.data(), static_cast<std::int32_t>(capitals.size()), &bytes, target.data(), length, &error);
    if (U_FAILURE(error)) return std::string{text};
    capitals.resize(static_cast<std::size_t>(bytes));
    return capitals;
}

std::string initialCapital(std::string_view text, std::string_view language) {
    const auto rest = text.substr(codePointAt(text, 0).size);
    const auto first = text.substr(0, text.size() - rest.size());
    if (language == "nl" && text.starts_with("ij")) return std::string{"IJ"}.append(text.substr(2));
    if (isASCII(first)) return allCapitals(first, language).append(rest);
    // Titles have their own forms of letters such as ǆ, which is why this is not the capital.
    const UChar32 title = u_totitle(forICU(codePointAt(text, 0).value));
    std::array<UChar, 2> units{};
    std::int32_t count = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF32(units.data(), static_cast<std::int32_t>(units.size()), &count, &title, 1, &error);
    std::array<char, 5> bytes{};
    std::int32_t size = 0;
    u_strToUTF8(bytes.data(), static_cast<std::int32_t>(bytes.size()), &size, units.data(), count, &error);
    if (U_FAILURE(error)) return std::string{text};
    return std::string{bytes.data(), static_cast<std::size_t>(size)}.append(rest);
}

std::string initials(std::string_view text, bool retain, const PersonNameRules& rules) {
    // What stands between two: the sequence is "{0}", that, and "{1}".
    const std::string_view separator = rules.initialSequence.substr(3, rules.initialSequence.size() - 6);
    std::string result;
    for (const auto& word : wordsOf(text)) {
        const auto initial = filled(rules.initial, firstLetter(word.text));
        if (result.empty())
            result = initial;
        else if (retain && !word.dash.empty())
            result.append(word.dash).append(initial);
        else
            result.append(separator).append(initial);
    }
    return result;
}

// ---- Putting together ----

// What stands between two fields when those between them are gone: `a` stood behind the first, `b` in front of the
// second.
std::string coalesced(std::string_view a, std::string_view b) {
    // Brackets around a field go with it, and with them all up to the next space.
    if (a.ends_with('(')) a = a.substr(0, a.rfind(' ') + 1);
    if (b.starts_with(')')) b = b.substr(std::min(b.find(' '), b.size()));
    if (a.empty()) return std::string{b};
    if (b.empty() || a.ends_with(b)) return std::string{a};
    // A sign that belongs to the second field, such as a comma, takes the place of what led to the lost one; a sign
    // that belongs to the first field stays with it.
    if (!isWhiteSpace(codePointAt(b, 0).value)) a = a.substr(0, std::min(a.find(' '), a.size()));
    std::string text;
    appendWithSpaces(text, std::string{a}.append(b), " ");
    return text;
}

FormattedPersonName assembled(const Pattern& pattern, const PersonNameRules& rules, std::string_view nameLanguage,
                              std::string_view space, bool keepsSpacesOfFields) {
    FormattedPersonName result;
    const auto elements = pattern.all();
    const Element* previous = nullptr;
    std::ptrdiff_t openBrackets = 0;
    const auto appendLiteral = [&](std::string_view literal) {
        openBrackets += std::ranges::count(literal, '(') - std::ranges::count(literal, ')');
        appendWithSpaces(result.text, literal, space);
    };
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Element& element = elements[i];
        if (element.value.empty()) continue;
        if (previous == nullptr) {
            if (i == 0) appendLiteral(element.literal);
        } else if (previous + 1 == &element) {
            appendLiteral(element.literal);
        } else {
            appendLiteral(coalesced((previous + 1)->literal, element.literal));
        }
        previous = &element;

        const std::size_t start = result.text.size();
        const auto& modifiers = element.modifiers;
        const bool abridged = modifiers.initial || modifiers.monogram;
        std::string changed;
        std::string_view text = element.value;
        if (modifiers.initial) {
            changed = initials(text, modifiers.retain, rules);
            text = changed;
        } else if (modifiers.monogram) {
            text = firstLetter(fromFirstWord(text));
        }
        if (modifiers.allCaps) {
            changed = allCapitals(text, nameLanguage);
            text = changed;
        } else if (modifiers.initialCap) {
            changed = initialCapital(text, nameLanguage);
            text = changed;
        }
        if (keepsSpacesOfFields && !abridged)
            result.text.append(text);
        else
            appendWithSpaces(result.text, text, space);
        const std::size_t length = result.text.size() - start;
        if (length > 0) result.runs.push_back({element.field, start, length});
    }
    // What follows the last field goes with it, except for brackets, which stay in pairs.
    const bool endsWithBracket = pattern.end == ")";
    if (endsWithBracket ? openBrackets > 0 : previous != nullptr && previous == &elements.back())
        appendLiteral(pattern.end);
    return result;
}

bool sharesSpaces(std::string_view a, std::string_view b) {
    const auto isHan = [](std::string_view language) {
        return language == "ja" || language == "zh" || language == "yue";
    };
    return a == b || (isHan(a) && isHan(b));
}

const PersonNameRulesKey& english() {
    return *find(personNameRules, &PersonNameRulesKey::locale, "en");
}

const PersonNameRulesKey& rulesFor(std::string_view locale) {
    if (!locale.empty()) {
        const auto* key = rulesOf(parseTag(locale));
        return key == nullptr ? english() : *key;
    }
    for (const auto& preferred : ResourceBundle::preferredLanguages()) {
        if (const auto* key = rulesOf(parseTag(preferred))) return *key;
    }
    return english();
}

}  // namespace

}  // namespace localization

using namespace localization;

PersonNameFormatter::PersonNameFormatter(std::string_view locale) {
    const auto& key = rulesFor(locale);
    rules_ = key.rules;
    patternsLocale_ = key.locale;
    language_ = key.locale.substr(0, key.locale.find('-'));
    const auto tag = parseTag(key.locale);
    const auto* usual = find(likelyScripts, &SubtagPair::from, language_);
    script_ = tag.script.empty() ? usual->to : key.locale.substr(language_.size() + 1, 4);
}

FormattedPersonName PersonNameFormatter::format(const PersonName& name, const PersonNameOptions& options) const {
    const Values values(name);
    const auto nameScript = values.script();

    // The language of the name, and whose patterns it takes.
    const PersonNameRules* rules = rules_;
    std::string language{language_};
    const bool readable = nameScript.empty() || scriptsMatch(nameScript, script_);
    const auto* likely = readable ? nullptr : find(likelyLocales, &ScriptLocale::script, nameScript);
    Tag tag{.language = std::string{language_}};
    if (!name.locale.empty())
        tag = parseTag(name.locale);
    else if (likely != nullptr)
        tag = {.language = std::string{likely->language},
               .script = std::string{nameScript},
               .region = std::string{likely->region}};
    if (!readable) {
        Tag written = tag;
        if (!scriptsMatch(nameScript, scriptOf(tag))) written.script = nameScript;
        const auto* key = rulesOf(written);
        if (key == nullptr && likely != nullptr) {
            written = {.language = std::string{likely->language}, .region = tag.region};
            key = rulesOf(written);
        }
        if (key != nullptr) {
            rules = key->rules;
            language = written.language;
        }
    }

    const auto order = options.order         ? *options.order
                       : name.preferredOrder ? *name.preferredOrder
                                             : orderOf(tag, *rules);
    const auto usage = order == sorting ? PersonNameUsage::referring : options.usage;
    auto pattern = chosen(patternText(*rules, order, options.length.value_or(rules->usualLength), usage,
                                      options.formality.value_or(rules->usualFormality)),
                          values);
    showTheOnlyName(pattern, values);
    complete(pattern, values, options.required, order);
    const auto space = sharesSpaces(language, tag.language) ? rules->nativeSpace : rules->foreignSpace;
    return assembled(pattern, *rules, tag.language, space, options.keepsSpacesOfFields);
}

}  // namespace kestrel
