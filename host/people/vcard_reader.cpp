#include <fmt/format.h>
#include <host/people/date_text.h>
#include <host/people/file_text.h>
#include <host/people/geo_text.h>
#include <host/people/library_objects.h>
#include <host/people/vcard_reader.h>
#include <kestrel/coding/utf8.h>
#include <libebook-contacts/libebook-contacts.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace kestrel::host {
namespace {

/// A property with its continuation lines joined, and the line on which it starts.
struct ContentLine {
    std::size_t number{};
    std::string text{};

    /// What stands in front of the value: the name with its group and parameters.
    [[nodiscard]] std::string_view head() const { return std::string_view(text).substr(0, text.find(':')); }
    [[nodiscard]] bool headHas(std::string_view word) const { return inUpperCase(head()).contains(word); }
    /// The component that the value begins, when the property is an agent, in upper case.
    [[nodiscard]] std::string begunByAgent() const {
        const std::string_view start = head();
        const bool isAgent = isSameWord(start.substr(0, start.find(';')), "AGENT") && start.size() < text.size();
        return isAgent ? begunBy(trimmed(std::string_view(text).substr(start.size() + 1))) : std::string();
    }
    /// The name with its group.
    [[nodiscard]] std::string_view name() const { return std::string_view(text).substr(0, text.find_first_of(":;")); }
    /// Whether it is a name, perhaps in a group, with a value: for other lines the library keeps memory that nobody
    /// gets back.
    [[nodiscard]] bool hasForm() const {
        const auto isNameCharacter = [](char c) {
            return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
                   c == '.';
        };
        bool isQuoted = false;
        const bool hasValue = std::ranges::any_of(text, [&](char c) {
            isQuoted ^= c == '"';
            return c == ':' && !isQuoted;
        });
        return hasValue && std::ranges::all_of(name(), isNameCharacter) && std::ranges::count(name(), '.') < 2 &&
               !name().empty() && !name().starts_with('.') && !name().ends_with('.');
    }
};

/// A card that has begun.
struct OpenCard {
    std::size_t line{};
    std::vector<ContentLine> lines{};
    /// The places of the cards that stand in it.
    std::vector<std::size_t> agents{};
    bool awaitsAgent{};
};

/// A property of a card as the library parsed it.
struct Property {
    std::string group{};
    std::string name{};
    std::size_t line{};
    /// Names in upper case.
    std::vector<std::pair<std::string, std::string>> parameters{};
    /// What stands between semicolons, and for categories between commas.
    std::vector<std::string> values{};
    /// Has bytes, once decoded, that are of no character set.
    bool isDamaged{};

    [[nodiscard]] std::string parameter(std::string_view wanted) const {
        for (const auto& [key, value] : parameters) {
            if (key == wanted) return value;
        }
        return {};
    }
    /// The words of its TYPE parameters, in upper case.
    [[nodiscard]] std::vector<std::string> types() const {
        std::vector<std::string> words;
        for (const auto& [key, value] : parameters) {
            if (key != "TYPE") continue;
            for (const std::string_view word : split(value, ','))
                words.push_back(inUpperCase(trimmed(word)));
        }
        return words;
    }
    [[nodiscard]] bool hasType(std::string_view wanted) const {
        const auto words = types();
        return std::ranges::find(words, wanted) != words.end();
    }
    /// 1 for the most preferred; 101 without a preference.
    [[nodiscard]] int preference() const {
        constexpr int none = 101;
        int number = none;
        const std::string text = parameter("PREF");
        std::from_chars(text.data(), text.data() + text.size(), number);
        return hasType("PREF") ? 1 : number;
    }
    /// A text with its semicolons.
    [[nodiscard]] std::string text() const { return std::string(trimmed(fmt::format("{}", fmt::join(values, ";")))); }
    [[nodiscard]] std::string component(std::size_t index) const {
        return index < values.size() ? std::string(trimmed(values[index])) : std::string();
    }
};

/// "Home Page" for "HomePage" and "_$!<HomePage>!$_".
std::string labelOfOwnMaking(std::string_view text) {
    if (text.starts_with("_$!<") && text.ends_with(">!$_")) text = text.substr(4, text.size() - 8);
    std::string label;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool startsWord = i > 0 && text[i] >= 'A' && text[i] <= 'Z' && text[i - 1] >= 'a' && text[i - 1] <= 'z';
        if (startsWord) label += ' ';
        label += text[i];
    }
    return label;
}

/// The line without the backslashes that some programs put in front of signs that need none.
std::string withoutIdleEscapes(const ContentLine& line) {
    if (!line.text.contains('\\') || line.headHas("QUOTED-PRINTABLE")) return line.text;
    std::string plain;
    for (std::size_t i = 0; i < line.text.size(); ++i) {
        const char next = i + 1 < line.text.size() ? line.text[i + 1] : '\0';
        const bool isEscape = line.text[i] == '\\' && next != '\0';
        const bool isIdle = isEscape && (next == ':' || next == '"');
        if (!isIdle) plain += line.text[i];
        if (isEscape) plain += line.text[++i];
    }
    return plain;
}

/// Words of TYPE that say nothing of what the user calls something.
constexpr std::array<std::string_view, 14> technicalTypes{"PREF", "INTERNET",  "VOICE", "POSTAL", "PARCEL",
                                                          "DOM",  "INTL",      "TEXT",  "VIDEO",  "MSG",
                                                          "X400", "TEXTPHONE", "",      "USER"};

std::string labelOfTypes(const std::vector<std::string>& types) {
    const auto has = [&](std::string_view word) { return std::ranges::find(types, word) != types.end(); };
    if (has("FAX")) return has("WORK") ? "Work Fax" : has("HOME") ? "Home Fax" : "Fax";
    if (has("CELL") || has("MOBILE")) return "Mobile";
    if (has("PAGER")) return "Pager";
    if (has("IPHONE")) return "iPhone";
    if (has("WORK")) return "Work";
    if (has("HOME")) return "Home";
    for (const std::string& word : types) {
        if (std::ranges::find(technicalTypes, word) != technicalTypes.end()) continue;
        const std::string plain = inLowerCase(word.starts_with("X-") ? std::string_view(word).substr(2) : word);
        return plain.empty() ? plain : inUpperCase(plain.substr(0, 1)) + plain.substr(1);
    }
    return {};
}

/// What a property of a network's name calls the network.
struct Network {
    std::string_view word;
    std::string_view name;
};
constexpr std::array<Network, 22> networks{{{"AIM", "AIM"},
                                            {"FACEBOOK", "Facebook"},
                                            {"GADUGADU", "Gadu-Gadu"},
                                            {"GOOGLE-TALK", "Google Talk"},
                                            {"GOOGLETALK", "Google Talk"},
                                            {"GROUPWISE", "GroupWise"},
                                            {"GTALK", "Google Talk"},
                                            {"ICQ", "ICQ"},
                                            {"IRC", "IRC"},
                                            {"JABBER", "Jabber"},
                                            {"LINKEDIN", "LinkedIn"},
                                            {"MATRIX", "Matrix"},
                                            {"MASTODON", "Mastodon"},
                                            {"MSN", "MSN"},
                                            {"QQ", "QQ"},
                                            {"SIP", "SIP"},
                                            {"SKYPE", "Skype"},
                                            {"SKYPE-USERNAME", "Skype"},
                                            {"TWITTER", "Twitter"},
                                            {"XMPP", "XMPP"},
                                            {"YAHOO", "Yahoo"},
                                            {"YMSGR", "Yahoo"}}};

const Network* networkOf(std::string_view word) {
    const auto* const found = std::ranges::find_if(networks, [&](const auto& n) { return isSameWord(n.word, word); });
    return found == networks.end() ? nullptr : found;
}

/// The identifier without the prefix that some programs write and some do not.
std::string plainUID(std::string_view text) {
    constexpr std::string_view prefix = "urn:uuid:";
    text = trimmed(text);
    return startsWithWord(text, prefix) ? inLowerCase(text.substr(prefix.size())) : std::string(text);
}

/// A parameter with the signs that stand for line ends and quotes.
std::string unescapedParameter(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        const bool isSign = (text[i] == '^' && (next == 'n' || next == '\'' || next == '^')) ||
                            (text[i] == '\\' && (next == 'n' || next == 'N' || next == ',' || next == ';'));
        if (isSign) ++i;
        plain += !isSign ? text[i] : next == 'n' || next == 'N' ? '\n' : next == '\'' ? '"' : next;
    }
    return plain;
}

/// What the first bytes of a picture say it is.
std::string pictureTypeOf(std::string_view bytes) {
    struct Format {
        std::string_view start, type;
    };
    constexpr std::array<Format, 5> formats{{{"\xff\xd8\xff", "image/jpeg"},
                                             {"\x89PNG", "image/png"},
                                             {"GIF8", "image/gif"},
                                             {"BM", "image/bmp"},
                                             {"II*", "image/tiff"}}};
    for (const auto& [start, type] : formats) {
        if (bytes.starts_with(start)) return std::string(type);
    }
    return bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP") ? "image/webp" : "";
}

/// Makes a card of its lines.
class CardBuilder {
  public:
    CardBuilder(FilePlace place, const std::vector<ContentLine>& lines, ImportProblems& problems,
                RepeatedWarning& damages)
        : lines_(lines), problems_(problems), damages_(damages) {
        card_.place = std::move(place);
    }

    /// Absent, and refused, when it says too little.
    std::optional<ContactCard> build() {
        parse();
        for (const Property& property : properties_)
            take(property);
        takeInOrderOfPreference();
        takeName();
        takeEmployments();
        finish();
        const bool isEmpty = card_.name == Name::empty() && card_.formattedName.empty() && card_.employments.empty() &&
                             card_.emails.empty() && card_.phones.empty();
        if (!isEmpty) return std::move(card_);
        problems_.refuse(EntryKind::card, card_.place,
                         "the card has no name, organisation, e-mail address or phone number");
        return std::nullopt;
    }

  private:
    void warn(std::size_t line, std::string message) { problems_.warn(card_.place.at(line), std::move(message)); }
    void warnUnusable(const Property& property, std::string_view reason) {
        constexpr std::size_t longest = 60;
        std::string text = property.text();
        if (text.size() > longest) text = text.substr(0, longest) + "...";
        warn(property.line, fmt::format("{} \"{}\" {}; left out", property.name, text, reason));
    }

    /// The library reads the card with the number of each line as the group of its property, so that what it drops is
    /// known, and where.
    void parse() {
        std::string text = "BEGIN:VCARD\r\n";
        std::string digested;
        for (const ContentLine& line : lines_) {
            if (!line.hasForm()) continue;
            const std::string_view name = line.name();
            text += fmt::format("l{}{}{}\r\n", line.number, name.contains('.') ? '-' : '.', withoutIdleEscapes(line));
        }
        for (const ContentLine& line : lines_) {
            if (!startsWithWord(line.text, "REV")) digested.append(line.text).append("\n");
        }
        text += "END:VCARD\r\n";
        card_.digest = digestOf(digested);
        const Owned<EVCard, g_object_unref> parsed(e_vcard_new_from_string(text.c_str()));
        std::set<std::size_t> seen;
        for (GList* item = e_vcard_get_attributes(parsed.get()); item != nullptr; item = item->next) {
            if (auto property = propertyOf(static_cast<EVCardAttribute*>(item->data))) {
                seen.insert(property->line);
                if (property->isDamaged) {
                    damages_.warn(property->line,
                                  fmt::format("{} has bytes that are not UTF-8; replaced", property->name));
                }
                takeOfGroup(*property);
                properties_.push_back(*std::move(property));
            }
        }
        for (const ContentLine& line : lines_) {
            if (seen.contains(line.number)) continue;
            constexpr std::size_t longest = 40;
            const std::string start = line.text.substr(0, longest) + (line.text.size() > longest ? "..." : "");
            warn(line.number, fmt::format("\"{}\" cannot be read as a property; left out", start));
        }
    }

    static std::optional<Property> propertyOf(EVCardAttribute* attribute) {
        const char* const group = e_vcard_attribute_get_group(attribute);
        if (group == nullptr || *group == '\0') return std::nullopt;
        Property property;
        const std::string_view tag = group + 1;
        const auto [stop, problem] = std::from_chars(tag.data(), tag.data() + tag.size(), property.line);
        if (problem != std::errc()) return std::nullopt;
        if (*stop == '-') property.group = inLowerCase(stop + 1);
        property.name = inUpperCase(e_vcard_attribute_get_name(attribute));
        for (GList* item = e_vcard_attribute_get_params(attribute); item != nullptr; item = item->next) {
            auto* const parameter = static_cast<EVCardAttributeParam*>(item->data);
            const std::string name = inUpperCase(e_vcard_attribute_param_get_name(parameter));
            for (GList* value = e_vcard_attribute_param_get_values(parameter); value != nullptr; value = value->next)
                property.parameters.emplace_back(name, inUTF8(static_cast<const char*>(value->data)));
        }
        const std::string encoding = inUpperCase(property.parameter("ENCODING"));
        // So may be a key or a sound, of which nothing is taken.
        const bool isText = (takerOf(property.name) != nullptr && property.name != "PHOTO") ||
                            property.name == "X-ABLABEL" || property.name == "X-ABADR";
        const bool isBinary = !isText && (encoding == "B" || encoding == "BASE64");
        for (GList* item = e_vcard_attribute_get_values_decoded(attribute); item != nullptr; item = item->next) {
            const auto* const value = static_cast<const GString*>(item->data);
            if (value == nullptr) continue;
            std::string bytes(value->str, value->len);
            if (isBinary) {
                property.values.push_back(std::move(bytes));
                continue;
            }
            property.isDamaged |= !isValidUTF8(bytes);
            property.values.push_back(withLineFeeds(inUTF8(plainBytes(std::move(bytes)))));
        }
        return property;
    }

    /// The label of the property: one of the user's own making, else what its types say.
    [[nodiscard]] std::string labelOf(const Property& property) const {
        const auto own = labels_.find(property.group);
        return own != labels_.end() ? own->second : labelOfTypes(property.types());
    }

    /// What a property says of the others of its group.
    void takeOfGroup(const Property& property) {
        constexpr std::size_t codeLength = 2;
        if (property.group.empty()) return;
        if (property.name == "X-ABLABEL") labels_.emplace(property.group, labelOfOwnMaking(property.text()));
        if (property.name == "X-ABADR" && property.text().size() == codeLength)
            countryCodes_[property.group] = inUpperCase(property.text());
    }

    using Take = void (CardBuilder::*)(const Property&);
    /// How a property is taken; null for those of which nothing is.
    static Take takerOf(const std::string& name) {
        struct Rule {
            std::string_view name;
            Take take;
        };
        static constexpr std::array<Rule, 36> rules{{
            {"ADR", &CardBuilder::addAddress},
            {"AGENT", &CardBuilder::addRelated},
            {"ANNIVERSARY", &CardBuilder::takeAnniversary},
            {"BDAY", &CardBuilder::takeBirthday},
            {"CATEGORIES", &CardBuilder::addCategories},
            {"CREATED", &CardBuilder::takeCreated},
            {"EMAIL", &CardBuilder::addToOrdered},
            {"FN", &CardBuilder::takeFormattedName},
            {"GEO", &CardBuilder::takePosition},
            {"IMPP", &CardBuilder::addToOrdered},
            {"KIND", &CardBuilder::takeKind},
            {"LABEL", &CardBuilder::takeAddressLabel},
            {"MEMBER", &CardBuilder::addMember},
            {"N", &CardBuilder::takeParts},
            {"NICKNAME", &CardBuilder::takeNickname},
            {"NOTE", &CardBuilder::addNote},
            {"ORG", &CardBuilder::addOrganization},
            {"PHOTO", &CardBuilder::takePicture},
            {"RELATED", &CardBuilder::addRelated},
            {"REV", &CardBuilder::takeRevision},
            {"ROLE", &CardBuilder::addRole},
            {"TEL", &CardBuilder::addToOrdered},
            {"TITLE", &CardBuilder::addTitle},
            {"UID", &CardBuilder::takeUID},
            {"URL", &CardBuilder::addToOrdered},
            {"X-ABRELATEDNAMES", &CardBuilder::addRelated},
            {"X-ABSHOWAS", &CardBuilder::takeKind},
            {"X-ADDRESSBOOKSERVER-KIND", &CardBuilder::takeKind},
            {"X-ADDRESSBOOKSERVER-MEMBER", &CardBuilder::addMember},
            {"X-ANNIVERSARY", &CardBuilder::takeAnniversary},
            {"X-ASSISTANT", &CardBuilder::addRelated},
            {"X-EVOLUTION-ANNIVERSARY", &CardBuilder::takeAnniversary},
            {"X-EVOLUTION-ASSISTANT", &CardBuilder::addRelated},
            {"X-EVOLUTION-MANAGER", &CardBuilder::addRelated},
            {"X-EVOLUTION-SPOUSE", &CardBuilder::addRelated},
            {"X-SOCIALPROFILE", &CardBuilder::addToOrdered},
        }};
        const auto* const rule = std::ranges::find(rules, name, &Rule::name);
        if (rule != rules.end()) return rule->take;
        if (name == "X-SPOUSE" || name == "X-MANAGER") return &CardBuilder::addRelated;
        const bool isNetwork = name.starts_with("X-") && networkOf(std::string_view(name).substr(2)) != nullptr;
        return isNetwork ? &CardBuilder::addToOrdered : nullptr;
    }
    void take(const Property& property) {
        if (const Take taker = takerOf(property.name); taker != nullptr) (this->*taker)(property);
    }

    void takeParts(const Property& property) {
        card_.name.last = present(property.component(0));
        card_.name.first = present(property.component(1));
        card_.name.middle = present(property.component(2));
        card_.name.prefix = present(property.component(3));
        card_.name.suffix = present(property.component(4));
    }
    void takeFormattedName(const Property& property) {
        if (card_.formattedName.empty()) card_.formattedName = property.text();
    }
    void takeNickname(const Property& property) {
        if (!card_.name.nickname) card_.name.nickname = present(property.text());
    }
    void takeUID(const Property& property) { card_.uid = plainUID(property.text()); }
    void takeCreated(const Property& property) { takeMoment(property, card_.created); }
    void takeRevision(const Property& property) { takeMoment(property, card_.revised); }
    void takeMoment(const Property& property, std::optional<Date>& moment) {
        if (property.text().empty()) return;
        moment = momentOf(property.text());
        if (!moment) warnUnusable(property, "is no date");
    }
    void takeBirthday(const Property& property) { takeDay(property, card_.birthday); }
    void takeAnniversary(const Property& property) { takeDay(property, card_.anniversary); }
    void takeDay(const Property& property, std::optional<PartialDate>& day) {
        if (property.text().empty()) return;
        auto read = partialDateOf(property.text());
        if (!read) {
            warnUnusable(property, "is no day of a calendar");
            return;
        }
        // Some programs write a year that stands for none, and say so.
        if (read->year && property.parameter("X-APPLE-OMIT-YEAR") == std::to_string(*read->year)) read->year.reset();
        day = read;
    }
    void takeKind(const Property& property) {
        const std::string text = property.text();
        if (isSameWord(text, "group")) card_.kind = ContactCard::Kind::group;
        if (isSameWord(text, "org") || isSameWord(text, "organization") || isSameWord(text, "company"))
            card_.kind = ContactCard::Kind::organization;
    }
    void addMember(const Property& property) {
        if (std::string member = plainUID(property.text()); !member.empty()) card_.members.push_back(std::move(member));
    }
    void addCategories(const Property& property) {
        for (const std::string& value : property.values) {
            std::string category(trimmed(value));
            if (!category.empty() && std::ranges::find(card_.categories, category) == card_.categories.end())
                card_.categories.push_back(std::move(category));
        }
    }
    void addNote(const Property& property) {
        const std::string text = property.text();
        if (text.empty()) return;
        if (!card_.note.empty()) card_.note += "\n\n";
        card_.note += text;
    }
    void addTitle(const Property& property) { titles_.push_back(property.text()); }
    void addRole(const Property& property) { roles_.push_back(property.text()); }
    void addOrganization(const Property& property) {
        ContactCard::Employment employment{.company = property.component(0), .department = property.component(1)};
        for (std::size_t i = 2; i < property.values.size(); ++i) {
            if (const std::string more = property.component(i); !more.empty())
                employment.department += (employment.department.empty() ? "" : ", ") + more;
        }
        if (!employment.company.empty() || !employment.department.empty()) organizations_.push_back(employment);
    }
    void addRelated(const Property& property) {
        ContactCard::Related related{.who = plainUID(property.text()), .line = property.line};
        if (related.who.empty()) return;
        if (property.name == "RELATED") {
            related.relation = labelOfTypes(property.types());
        } else if (property.name == "X-ABRELATEDNAMES") {
            related.relation = labelOf(property);
        } else {
            const std::string word = inLowerCase(property.name.substr(property.name.rfind('-') + 1));
            related.relation = inUpperCase(word.substr(0, 1)) + word.substr(1);
        }
        card_.related.push_back(std::move(related));
    }
    void takePosition(const Property& property) {
        if (property.text().empty()) return;
        position_ = positionOf(property.text());
        if (!position_) warnUnusable(property, "is no position");
    }
    void takeAddressLabel(const Property& property) {
        if (wholeAddress_.street.empty())
            wholeAddress_ = {.street = property.text(), .label = labelOfTypes(property.types())};
    }
    void takePicture(const Property& property) {
        constexpr std::size_t largest = std::size_t{16} * 1024 * 1024;
        const std::string encoding = inUpperCase(property.parameter("ENCODING"));
        const std::string text = fmt::format("{}", fmt::join(property.values, ";"));
        ContactCard::Picture picture;
        if (encoding == "B" || encoding == "BASE64") {
            picture.data = Data::fromText(text);
        } else if (startsWithWord(text, "data:")) {
            const auto comma = text.find(',');
            const std::string head = text.substr(0, comma);
            picture.mimeType = inLowerCase(trimmed(head.substr(5, head.find(';') - 5)));
            std::string digits = comma == text.npos ? std::string() : text.substr(comma + 1);
            std::erase_if(digits, [](char c) { return c == ' ' || c == '\n'; });
            if (auto data = Data::fromBase64(digits); data && inLowerCase(head).ends_with("base64"))
                picture.data = *std::move(data);
        } else {
            if (!trimmed(text).empty()) warnUnusable(property, "is no picture in the card itself");
            return;
        }
        if (picture.data.bytes.empty()) {
            if (!trimmed(text).empty()) warnUnusable(property, "is no picture in the card itself");
            return;
        }
        if (picture.data.bytes.size() > largest) {
            warn(property.line, fmt::format("{} is larger than 16 MiB; left out", property.name));
            return;
        }
        if (const std::string type = pictureTypeOf(picture.data.text()); !type.empty()) {
            picture.mimeType = type;
        } else if (const auto types = property.types(); picture.mimeType.empty() && !types.empty()) {
            const std::string word = inLowerCase(types.front());
            picture.mimeType = word.contains('/') ? word : "image/" + (word == "jpg" ? "jpeg" : word);
        }
        if (!card_.picture) card_.picture = std::move(picture);
    }
    void addAddress(const Property& property) {
        ContactCard::PostalAddress address{.city = property.component(3),
                                           .state = property.component(4),
                                           .postalCode = property.component(5),
                                           .country = property.component(6),
                                           .countryCode = inUpperCase(property.parameter("CC")),
                                           .label = labelOf(property)};
        // The street, what is behind its number, and the post-office box, each on a line of its own.
        for (const std::size_t part : {2U, 1U, 0U}) {
            if (const std::string text = property.component(part); !text.empty())
                address.street += (address.street.empty() ? "" : "\n") + text;
        }
        if (const auto code = countryCodes_.find(property.group); code != countryCodes_.end())
            address.countryCode = code->second;
        if (const std::string position = property.parameter("GEO"); !position.empty()) {
            address.position = positionOf(position);
            if (!address.position) warn(property.line, fmt::format("GEO \"{}\" is no position; left out", position));
        }
        const bool isEmpty = address.street.empty() && address.city.empty() && address.state.empty() &&
                             address.postalCode.empty() && address.country.empty();
        if (isEmpty) {
            address.street = trimmed(unescapedParameter(property.parameter("LABEL")));
            if (address.street.empty()) return;
        }
        addresses_.emplace(std::pair(property.preference(), addresses_.size()), std::move(address));
    }
    void addToOrdered(const Property& property) { ordered_.push_back(&property); }

    void takeInOrderOfPreference() {
        // All of one list: their addresses are in the order of the card.
        std::ranges::sort(ordered_, {},
                          [](const Property* property) { return std::pair(property->preference(), property); });
        for (const Property* property : ordered_) {
            std::string value = property->text();
            const std::string_view scheme = property->name == "TEL"     ? "tel:"
                                            : property->name == "EMAIL" ? "mailto:"
                                                                        : "";
            if (!scheme.empty() && startsWithWord(value, scheme))
                value = std::string(trimmed(std::string_view(value).substr(scheme.size())));
            if (value.empty()) continue;
            const std::string label = labelOf(*property);
            if (property->name == "TEL") {
                card_.phones.push_back({.value = value, .label = label});
            } else if (property->name == "EMAIL") {
                card_.emails.push_back({.value = value, .label = label});
            } else if (property->name == "URL") {
                card_.urls.push_back({.value = value, .label = label});
            } else {
                addProfile(*property, std::move(value));
            }
        }
        for (auto& [rank, address] : addresses_)
            card_.addresses.push_back(std::move(address));
        if (card_.addresses.empty() && !wholeAddress_.street.empty()) card_.addresses.push_back(wholeAddress_);
        if (position_ && card_.addresses.empty()) card_.addresses.emplace_back();
        if (position_ && !card_.addresses.front().position) card_.addresses.front().position = position_;
    }

    void addProfile(const Property& property, std::string value) {
        ContactCard::Profile profile;
        std::vector<std::string> types = property.types();
        const bool isWebAddress = startsWithWord(value, "http:") || startsWithWord(value, "https:");
        std::string word = property.parameter("X-SERVICE-TYPE");
        if (word.empty()) word = property.parameter("SERVICE-TYPE");
        if (property.name == "X-SOCIALPROFILE" || (property.name == "IMPP" && word.empty())) {
            for (auto type = types.begin(); word.empty() && type != types.end(); ++type) {
                if (networkOf(*type) == nullptr && property.name != "X-SOCIALPROFILE") continue;
                if (std::ranges::find(technicalTypes, *type) != technicalTypes.end() || *type == "HOME" ||
                    *type == "WORK")
                    continue;
                word = *type;
                types.erase(type);
                break;
            }
        } else if (property.name != "IMPP") {
            word = property.name.substr(2);
        }
        if (const auto colon = value.find(':'); colon != value.npos && !isWebAddress) {
            const std::string scheme = value.substr(0, colon);
            if (word.empty()) word = scheme;
            if (networkOf(scheme) != nullptr || isSameWord(scheme, "x-apple")) value = value.substr(colon + 1);
        }
        if (value.empty()) return;
        const Network* const network = networkOf(word);
        profile.service = network != nullptr ? std::string(network->name)
                          : word.empty()     ? word
                                             : inUpperCase(word.substr(0, 1)) + inLowerCase(word.substr(1));
        profile.address = std::move(value);
        profile.label = labelOfTypes(types);
        card_.profiles.push_back(std::move(profile));
    }

    void takeName() {
        Name& name = card_.name;
        const std::string& whole = card_.formattedName;
        if (name.first || name.last || name.middle || whole.empty()) return;
        const bool isOrganization = std::ranges::any_of(
            organizations_, [&](const ContactCard::Employment& employment) { return employment.company == whole; });
        if (isOrganization || card_.kind != ContactCard::Kind::person) return;
        if (const auto comma = whole.find(','); comma != whole.npos) {
            name.last = present(std::string(trimmed(std::string_view(whole).substr(0, comma))));
            name.first = present(std::string(trimmed(std::string_view(whole).substr(comma + 1))));
        } else if (const auto blank = whole.rfind(' '); blank != whole.npos) {
            name.last = whole.substr(blank + 1);
            name.first = std::string(trimmed(std::string_view(whole).substr(0, blank)));
        } else {
            name.last = whole;
        }
    }

    /// The n-th title belongs to the n-th organisation, and those that are more to the last one.
    void takeEmployments() {
        std::erase(titles_, std::string());
        std::erase(roles_, std::string());
        const std::size_t count = std::max({organizations_.size(), titles_.size(), roles_.size()});
        for (std::size_t i = 0; i < count; ++i) {
            ContactCard::Employment employment;
            if (!organizations_.empty()) employment = organizations_[std::min(i, organizations_.size() - 1)];
            if (i < titles_.size()) employment.title = titles_[i];
            if (i < roles_.size()) employment.role = roles_[i];
            card_.employments.push_back(std::move(employment));
        }
    }

    void finish() {
        const Name& name = card_.name;
        const bool hasPerson = name.first || name.last || name.middle || name.nickname;
        const bool hasOrganization = !card_.employments.empty() && !card_.employments.front().company.empty();
        if (card_.kind == ContactCard::Kind::person && !hasPerson && hasOrganization)
            card_.kind = ContactCard::Kind::organization;
    }

    const std::vector<ContentLine>& lines_;
    ImportProblems& problems_;
    RepeatedWarning& damages_;
    ContactCard card_;
    std::vector<Property> properties_;
    /// By group: the label of the user's own making, and the country.
    std::map<std::string, std::string> labels_;
    std::map<std::string, std::string> countryCodes_;
    /// Those that have an order of preference.
    std::vector<const Property*> ordered_;
    /// By preference, then as they were met.
    std::map<std::pair<int, std::size_t>, ContactCard::PostalAddress> addresses_;
    /// An address that stands in one text.
    ContactCard::PostalAddress wholeAddress_;
    std::optional<std::pair<double, double>> position_;
    std::vector<ContactCard::Employment> organizations_;
    std::vector<std::string> titles_;
    std::vector<std::string> roles_;
};

/// Frames a file into cards: their ends are looked for here, so that a broken one spoils no other.
class CardFramer {
  public:
    CardFramer(const std::string& file, std::string_view text, ImportProblems& problems,
               std::vector<ContactCard>& cards)
        : place_{.file = file},
          lines_(linesOf(text)),
          problems_(problems),
          cards_(cards),
          foreign_(problems, place_, {"line is", "lines are", "not UTF-8; taken as Windows-1252"}),
          damages_(problems, place_, {"property has", "properties have", "bytes that are not UTF-8; replaced"}),
          outside_(problems, place_, {"part stands", "parts stand", "outside of a card; left out"}) {}

    /// How many cards began, and parts of the file were refused for being none.
    std::size_t frame() {
        while (next_ < lines_.size()) {
            const TextLine& line = lines_[next_];
            // Within a card white space in front continues a property.
            const std::string_view text = open_.empty() ? trimmed(line.text) : line.text;
            if (begunBy(text) == "VCARD") {
                if (open_.empty()) unindentLike(lines_, next_);
                ++next_;
                begin(line.number);
            } else if (endedBy(text) == "VCARD") {
                ++next_;
                end(line.number);
            } else if (trimmed(line.text).empty()) {
                ++next_;
                isOutside_ = false;
            } else if (open_.empty()) {
                ++next_;
                if (!isOutside_) refuseOutside(line.number);
                isOutside_ = true;
            } else if (ContentLine{.text = std::string(line.text)}.begunByAgent() == "VCARD") {
                ++next_;
                open_.back().awaitsAgent = true;
                begin(line.number);
            } else {
                addLine();
            }
        }
        refuseOpen("is never ended");
        if (found_ == 0) refuseFile();
        for (RepeatedWarning* warning : {&foreign_, &damages_, &outside_})
            warning->finish();
        return found_;
    }

  private:
    void begin(std::size_t line) {
        constexpr std::size_t deepest = 10;
        ++found_;
        isOutside_ = false;
        if (!open_.empty() && (!open_.back().awaitsAgent || open_.size() == deepest))
            refuseOpen(fmt::format("is not ended before line {}, which begins another", line));
        if (!open_.empty()) open_.back().awaitsAgent = false;
        open_.push_back({.line = line});
    }

    void end(std::size_t line) {
        if (open_.empty()) {
            problems_.warn(place_.at(line), "ends a card that never began");
            return;
        }
        const OpenCard ended = std::move(open_.back());
        open_.pop_back();
        auto card = CardBuilder(place_.at(ended.line), ended.lines, problems_, damages_).build();
        if (!card) return;
        for (const std::size_t agent : ended.agents)
            cards_[agent].agentOf = cards_.size();
        if (!open_.empty()) open_.back().agents.push_back(cards_.size());
        cards_.push_back(*std::move(card));
    }

    void refuseOpen(const std::string& reason) {
        for (const OpenCard& card : open_)
            problems_.refuse(EntryKind::card, place_.at(card.line), "the card " + reason);
        open_.clear();
    }

    /// The first such part of a file fails it; of the others it is only told.
    void refuseOutside(std::size_t line) {
        constexpr const char* reason = "stands outside of a card; left out";
        if (hasRefusedOutside_) {
            outside_.warn(line, reason);
        } else {
            ++found_;
            hasRefusedOutside_ = true;
            problems_.refuse(EntryKind::card, place_.at(line), reason);
        }
    }

    void refuseFile() {
        const bool isEmpty = std::ranges::all_of(lines_, [](const auto& line) { return trimmed(line.text).empty(); });
        if (isEmpty) {
            problems_.warn(place_, "the file is empty");
        } else {
            ++found_;
            problems_.refuse(EntryKind::card, place_, "the file has no card");
        }
    }

    [[nodiscard]] bool isFrame(const TextLine& line) const {
        return begunBy(line.text) == "VCARD" || endedBy(line.text) == "VCARD";
    }

    /// Takes a property with the lines that continue it.
    void addLine() {
        ContentLine content{.number = lines_[next_].number, .text = std::string(lines_[next_].text)};
        ++next_;
        const bool isQuotedPrintable = content.headHas("QUOTED-PRINTABLE");
        const bool isBase64 = content.headHas("BASE64") || content.headHas("ENCODING=B");
        for (; next_ < lines_.size() && !isFrame(lines_[next_]); ++next_) {
            const TextLine& line = lines_[next_];
            const bool isSoftBreak = isQuotedPrintable && content.text.ends_with('=');
            const bool isMoreBase64 = isBase64 && !line.text.empty() && !line.text.contains(':');
            if (isSoftBreak) {
                content.text.pop_back();
                content.text += line.text;
            } else if (line.isContinuation()) {
                content.text += line.text.substr(1);
            } else if (isMoreBase64) {
                content.text += line.text;
            } else {
                break;
            }
        }
        if (isQuotedPrintable && content.text.ends_with('=')) content.text.pop_back();
        setInUTF8(content);
        const std::string_view head = content.head();
        if (startsWithWord(head, "AGENT") && trimmed(std::string_view(content.text).substr(head.size())) == ":") {
            open_.back().awaitsAgent = true;
            return;
        }
        if (startsWithWord(head, "AGENT") && content.text.contains("BEGIN:VCARD")) {
            problems_.warn(place_.at(content.number), "AGENT holds a card within its text; left out");
            return;
        }
        open_.back().awaitsAgent = false;
        open_.back().lines.push_back(std::move(content));
    }

    /// Text of another character set than UTF-8 becomes UTF-8, and its property says so.
    void setInUTF8(ContentLine& content) {
        const std::string plain = inUTF8(content.text);
        if (plain == content.text) return;
        constexpr std::string_view key = "CHARSET=";
        const auto at = inUpperCase(content.head()).find(key);
        if (at == std::string::npos) {
            foreign_.warn(content.number, "is not UTF-8; taken as Windows-1252");
            content.text = plain;
            return;
        }
        const auto start = at + key.size();
        const auto end = content.text.find_first_of(";:", start);
        content.text = inUTF8(content.text, content.text.substr(start, end - start));
        content.text.replace(start, end - start, "UTF-8");
    }

    FilePlace place_;
    std::vector<TextLine> lines_;
    ImportProblems& problems_;
    std::vector<ContactCard>& cards_;
    RepeatedWarning foreign_;
    RepeatedWarning damages_;
    RepeatedWarning outside_;
    std::size_t next_ = 0;
    std::size_t found_ = 0;
    bool isOutside_ = false;
    bool hasRefusedOutside_ = false;
    /// A card, the one that stands in it, and so on.
    std::vector<OpenCard> open_;
};

}  // namespace

void VCardReader::read(const std::string& file, std::string bytes) {
    const std::string text = plainBytes(std::move(bytes));
    found_ += CardFramer(file, text, *problems_, cards_).frame();
}

}  // namespace kestrel::host
