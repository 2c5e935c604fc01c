#include <fmt/format.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_rendering.h>
#include <host/store/directory.h>
#include <host/terminal/coded_json.h>
#include <host/terminal/day_text.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace kestrel::host {
namespace {

constexpr std::string_view defaultMark = "default";
constexpr std::string_view missing = "(not available)";

std::string labelText(const std::optional<AnyLabel>& label) {
    return label ? textIn(label->name).value_or("") : "";
}

/// The name of a company, a deal or a project, else its identifier's text.
template <class Record>
std::string nameOf(const Record& record) {
    return textIn(record.name).value_or(record.objectID().stringValue());
}

/// The lines of a text; an empty line at its end is none.
std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
    }
    return lines;
}

/// Where a role is, as far as it is known.
struct Place {
    std::string name;
    std::string identifier;
    /// The identifier in keyed form; empty for a missing one.
    std::string idJSON;
};

template <class Record>
Place placeOf(const Record& record) {
    return {.name = nameOf(record), .identifier = record.objectID().stringValue(), .idJSON = coded(record.objectID())};
}

Place placeOf(const ContactRole& role) {
    if (const Company* company = role.company()) return placeOf(*company);
    if (const Opportunity* deal = role.opportunity()) return placeOf(*deal);
    if (const Project* project = role.project()) return placeOf(*project);
    return {.name = std::string(missing), .identifier = "", .idJSON = ""};
}

/// The role's title; for one at a company with the department.
std::string titleOf(const ContactRole& role) {
    if (const auto atCompany = ContactCompanyRole::from(role)) return atCompany->nameAndDepartment().value_or("");
    return role.name().value_or("");
}

std::string userText(const UserContact& user) {
    const std::string name = shownName(*user.user);
    const auto& contact = user.contact.get();
    return contact ? fmt::format("{} ({})", name, contact->objectID().stringValue()) : name;
}

/// What the far end of a relationship is called, and what it is to the contact.
struct Relation {
    const AnyRelationship* record;
    std::string name;
    Place other;
};

template <class Relationship>
void addCompanies(std::vector<Relation>& relations, const std::vector<Relationship>& relationships,
                  const ReadOnly<std::optional<std::string>, RelationshipType> RelationshipType::* direction) {
    for (const Relationship& relationship : relationships) {
        const Company* company = relationship.company();
        if (company == nullptr) continue;
        const auto& type = relationship.relationshipType();
        const std::optional<std::string> name = type ? ((*type).*direction).get() : std::nullopt;
        relations.push_back(
            {.record = &relationship.backingRelationship, .name = name.value_or(""), .other = placeOf(*company)});
    }
}

const AnyRelationship& recordOf(const ContactRelationship& relationship) {
    if (const auto* to = relationship.to()) return to->toRelationshipRecord().backingRelationship;
    return relationship.from()->fromRelationshipRecord().backingRelationship;
}

/// The relationships to people, joined, and then those to companies. They point into both arguments.
std::vector<Relation> relationsOf(const ContactPage& page, const std::vector<ContactRelationship>& joined) {
    std::vector<Relation> relations;
    for (const ContactRelationship& relationship : joined) {
        const Contact& other = relationship.relatedContact();
        relations.push_back({.record = &recordOf(relationship),
                             .name = relationship.directionalName().value_or(""),
                             .other = {.name = shownName(other, page.locale),
                                       .identifier = other.objectID().stringValue(),
                                       .idJSON = coded(other.objectID())}});
    }
    addCompanies(relations, page.info.allToRelationships, &RelationshipType::forwardName);
    addCompanies(relations, page.info.allFromRelationships, &RelationshipType::reverseName);
    return relations;
}

/// How many relationships have no far end that could be shown.
std::size_t missingRelations(const ContactInfo& info) {
    const auto to = std::ranges::count_if(
        info.allToRelationships, [](const ToRelationship& one) { return one.destination.isMissingDestination(); });
    const auto from = std::ranges::count_if(info.allFromRelationships,
                                            [](const FromRelationship& one) { return one.source.isMissingSource(); });
    return static_cast<std::size_t>(to + from);
}

// ---------------------------------------------------------------------------------------------------------------
// in sections

class SectionWriter {
  public:
    explicit SectionWriter(const ContactPage& page) : page_(&page), contact_(&page.info.contact) {}

    std::vector<PageSection> sections() {
        addSummary();
        addPhones();
        addElectronicAddresses();
        addGeoAddresses();
        addRoles();
        addRelationships();
        addExtraFields();
        addDetails();
        addRecord();
        return std::move(sections_);
    }

  private:
    void add(PageSection section) {
        if (!section.isEmpty()) sections_.push_back(std::move(section));
    }
    static void addRow(PageSection& section, std::string label, const std::optional<std::string>& text) {
        if (textIn(text)) section.rows.push_back({.cells = {std::move(label), *text}});
    }

    void addSummary() {
        PageSection section;
        addRow(section, "nickname", contact_->nickname);
        addRow(section, "alias", contact_->alias);
        if (const auto role = page_->info.defaultRole()) {
            addRow(section, "company", nameOf(role->company()));
            addRow(section, "title", role->nameAndDepartment());
        }
        addRow(section, "birthday", contact_->birthDate().transform(partialDateText));
        addRow(section, "anniversary", contact_->anniversaryDate().transform(partialDateText));
        addRow(section, "priority", displayName(contact_->priority));
        if (contact_->category) addRow(section, "category", contact_->category->name);
        std::vector<std::string> keywords;
        for (const Keyword& keyword : contact_->keywords) {
            if (const auto name = textIn(keyword.name)) keywords.push_back(*name);
        }
        addRow(section, "keywords", listed(keywords));
        if (contact_->isFlagged) addRow(section, "flagged", "yes");
        addRow(section, "credentials", contact_->creditation);
        addRow(section, "salutation", contact_->individualSalutation);
        addRow(section, "tagline", contact_->tagline);
        addRow(section, "hobbies", contact_->hobbies);
        addRow(section, "relationship to me", contact_->relationshipToMe);
        add(std::move(section));
    }

    void addPhones() {
        const auto first = contact_->defaultPhone();
        PageSection section{.title = "Phones"};
        for (const Phone& phone : contact_->phones) {
            if (phone.deletionDate || !textIn(phone.number)) continue;
            const bool isDefault = first && first->id() == phone.id();
            section.rows.push_back(
                {.cells = {labelText(phone.label), *phone.number, isDefault ? std::string(defaultMark) : ""}});
        }
        add(std::move(section));
    }

    void addElectronicAddresses() {
        const auto first = contact_->defaultEmailAddress();
        PageSection emails{.title = "E-mail"};
        PageSection urls{.title = "Web"};
        PageSection profiles{.title = "Social profiles"};
        for (const AnyElectronicAddress& address : contact_->electronicAddresses) {
            if (address.deletionDate || !textIn(address.address)) continue;
            const std::string label = labelText(address.label);
            switch (address.kind) {
                case ElectronicAddressKind::email: {
                    const bool isDefault = first && first->id() == address.id();
                    emails.rows.push_back(
                        {.cells = {label, *address.address, isDefault ? std::string(defaultMark) : ""}});
                    break;
                }
                case ElectronicAddressKind::url: urls.rows.push_back({.cells = {label, *address.address}}); break;
                case ElectronicAddressKind::socialProfile:
                    profiles.rows.push_back({.cells = {label, address.serviceName.value_or(""), *address.address}});
                    break;
            }
        }
        add(std::move(emails));
        add(std::move(urls));
        add(std::move(profiles));
    }

    void addGeoAddresses() {
        const auto first = contact_->defaultGeoAddress();
        PageSection section{.title = "Addresses"};
        for (const GeoAddress& address : contact_->geoAddresses) {
            if (address.deletionDate) continue;
            std::vector<std::string> lines;
            const std::string street = address.street.value_or("");
            for (const std::string_view line : linesOf(street))
                lines.emplace_back(line);
            std::vector<std::string> place;
            for (const auto* part : {&address.city, &address.state, &address.postalCode}) {
                if (textIn(*part)) place.push_back(**part);
            }
            if (!place.empty()) lines.push_back(listed(place));
            if (const auto country = textIn(address.country)) {
                lines.push_back(*country);
            } else if (const auto code = textIn(address.countryCode)) {
                lines.push_back(*code);
            }
            const bool isDefault = first && first->id() == address.id();
            for (std::size_t i = 0; i < lines.size(); ++i) {
                // Each address begins with something, so that it is told from the one above it.
                section.rows.push_back({.cells = {i == 0 ? textIn(labelText(address.label)).value_or("-") : "",
                                                  lines[i], i == 0 && isDefault ? std::string(defaultMark) : ""}});
            }
        }
        add(std::move(section));
    }

    void addRoles() {
        const auto standard = page_->info.defaultRole();
        PageSection section{.title = "Roles"};
        for (const ContactRole& role : page_->info.allRoles) {
            const Place place = placeOf(role);
            const bool isDefault = standard && standard->id() == role.id();
            section.rows.push_back({.cells = {place.name, titleOf(role), role.roleTypeName().value_or(""),
                                              place.identifier, isDefault ? std::string(defaultMark) : ""},
                                    .record = place.identifier});
        }
        add(std::move(section));
    }

    void addRelationships() {
        PageSection section{.title = "Relationships"};
        const auto joined = page_->info.joinedRelationships();
        for (const Relation& relation : relationsOf(*page_, joined)) {
            section.rows.push_back({.cells = {textIn(relation.name).value_or("-"), relation.other.name,
                                              relation.other.identifier, relation.record->details.value_or("")},
                                    .record = relation.other.identifier,
                                    .nameCell = 1});
        }
        if (const std::size_t hidden = missingRelations(page_->info); hidden != 0) {
            section.lines.push_back(hidden == 1 ? "1 with a record that is not available"
                                                : fmt::format("{} with records that are not available", hidden));
        }
        add(std::move(section));
    }

    void addExtraFields() {
        PageSection section{.title = "Extra fields"};
        for (const NamedExtraField& field : page_->extraFields.namedFields(*contact_))
            addRow(section, field.name, field.value);
        for (const NamedExtraDate& field : page_->extraFields.namedDates(*contact_))
            addRow(section, field.name, dayText(field.date, page_->calendar));
        add(std::move(section));
    }

    void addDetails() {
        if (!textIn(contact_->details)) return;
        PageSection section{.title = "Details"};
        for (const std::string_view line : linesOf(*contact_->details))
            section.lines.emplace_back(line);
        add(std::move(section));
    }

    void addRecord() {
        PageSection section{.title = "Record"};
        const auto moment = [&](const Date& date) { return momentText(date, page_->calendar); };
        addRow(section, "visibility", page_->visibility);
        addRow(section, "owner", page_->info.owner.transform(userText));
        addRow(section, "creator", page_->info.creator.get().transform(userText));
        addRow(section, "created", contact_->createDate.get().transform(moment));
        addRow(section, "modified", contact_->modifyDate.get().transform(moment));
        add(std::move(section));
    }

    const ContactPage* page_;
    const Contact* contact_;
    std::vector<PageSection> sections_;
};

// ---------------------------------------------------------------------------------------------------------------
// as JSON

JSONObject placeJSON(const Place& place) {
    JSONObject json;
    json.addJSON("id", place.idJSON).add("name", place.name);
    return json;
}

JSONObject userJSON(const UserContact& user) {
    JSONObject json;
    json.addJSON("id", coded(user.id())).add("name", shownName(*user.user));
    if (const auto& contact = user.contact.get()) json.addJSON("contactID", coded(contact->objectID()));
    return json;
}

void addText(JSONObject& json, std::string_view key, const std::optional<std::string>& text) {
    if (text) json.add(key, *text);
}

}  // namespace

std::vector<PageSection> contactSections(const ContactPage& page) {
    return SectionWriter(page).sections();
}

std::string rendered(const ContactPage& page, const Terminal& terminal) {
    const Contact& contact = page.info.contact;
    std::string text = styled(printable(fullName(contact, page.locale)), boldStyle, terminal) + '\n' +
                       styled(contact.objectID().stringValue(), dimStyle, terminal) + '\n';
    for (const PageSection& section : contactSections(page))
        text += rendered(section, terminal);
    return text;
}

std::string pageJSON(const ContactPage& page) {
    const ContactInfo& info = page.info;
    JSONObject json;
    json.addJSON("id", coded(info.id())).add("name", fullName(info.contact, page.locale));
    json.addJSON("contact", coded(info.contact));
    std::vector<std::string> roles;
    const auto standard = info.defaultRole();
    for (const ContactRole& role : info.allRoles) {
        JSONObject one;
        one.addJSON("role", coded(role.backingRole));
        const Place place = placeOf(role);
        if (!place.idJSON.empty()) one.add("destination", placeJSON(place));
        addText(one, "typeName", role.roleTypeName());
        one.add("isDefault", standard && standard->id() == role.id());
        roles.push_back(one.json());
    }
    json.addJSON("roles", JSONObject::array(roles));
    std::vector<std::string> relationships;
    const auto joined = info.joinedRelationships();
    for (const Relation& relation : relationsOf(page, joined)) {
        JSONObject one;
        one.addJSON("relationship", coded(*relation.record)).add("name", relation.name);
        one.add("other", placeJSON(relation.other));
        relationships.push_back(one.json());
    }
    json.addJSON("relationships", JSONObject::array(relationships));
    json.add("unavailableRelationships", missingRelations(info));
    std::vector<std::string> fields;
    for (const NamedExtraField& field : page.extraFields.namedFields(info.contact))
        fields.push_back(JSONObject().add("name", field.name).add("value", field.value).json());
    json.addJSON("extraFields", JSONObject::array(fields));
    std::vector<std::string> dates;
    for (const NamedExtraDate& field : page.extraFields.namedDates(info.contact))
        dates.push_back(JSONObject().add("name", field.name).addJSON("date", coded(field.date)).json());
    json.addJSON("extraDates", JSONObject::array(dates));
    json.add("visibility", page.visibility);
    if (info.owner) json.add("owner", userJSON(*info.owner));
    if (const auto& creator = info.creator.get()) json.add("creator", userJSON(*creator));
    return json.json();
}

}  // namespace kestrel::host
