#include <fmt/format.h>
#include <host/people/card_importer.h>
#include <host/people/file_text.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace kestrel::host {
namespace {

/// The text in which names are compared.
std::string nameKey(std::string_view name) {
    return foldedCase(trimmed(name));
}

/// What a card calls a relation, and the type of relationship that it is: from the card's person to the other one, or
/// the other way round.
struct RelationRule {
    std::string_view word;
    std::string_view forwardName;
    std::string_view reverseName;
    bool isReversed{};

    [[nodiscard]] bool isSymmetric() const { return forwardName == reverseName; }
};
constexpr std::array<RelationRule, 16> relationRules{{{"spouse", "Spouse", "Spouse"},
                                                      {"partner", "Partner", "Partner"},
                                                      {"wife", "Spouse", "Spouse"},
                                                      {"husband", "Spouse", "Spouse"},
                                                      {"friend", "Friend", "Friend"},
                                                      {"sibling", "Sibling", "Sibling"},
                                                      {"brother", "Sibling", "Sibling"},
                                                      {"sister", "Sibling", "Sibling"},
                                                      {"colleague", "Colleague", "Colleague"},
                                                      {"co-worker", "Colleague", "Colleague"},
                                                      {"child", "Child", "Parent"},
                                                      {"parent", "Child", "Parent", true},
                                                      {"mother", "Child", "Parent", true},
                                                      {"father", "Child", "Parent", true},
                                                      {"assistant", "Assistant", "Principal"},
                                                      {"manager", "Manager", "Direct Report"}}};

/// The people and companies that cards mean by an identifier or a name.
class KnownNames {
  public:
    explicit KnownNames(ImportStore& store) : store_(store) {}

    void addContact(const ContactCard& card, std::int64_t key) {
        std::vector<std::string> names{card.formattedName};
        if (const auto name = card.name.composedFirstLast()) names.push_back(*name);
        contactsOfCards_.emplace_back(std::move(names), key);
        if (!card.uid.empty()) byUID_[inLowerCase(card.uid)] = key;
    }
    /// The one contact of that identifier or name.
    std::optional<std::int64_t> contact(const std::string& who) {
        if (const auto found = byUID_.find(inLowerCase(who)); found != byUID_.end()) return found->second;
        if (const auto key = store_.sources().find(entityNameOf<Contact>, "uid:" + who)) return key;
        loadContacts();
        const auto found = contacts_.find(nameKey(who));
        if (found == contacts_.end() || found->second.size() != 1) return std::nullopt;
        return *found->second.begin();
    }

    [[nodiscard]] std::optional<std::int64_t> company(const std::string& name) {
        if (!areCompaniesLoaded_) {
            areCompaniesLoaded_ = true;
            SQLite::Statement rows(store_.database(),
                                   "SELECT id, record ->> '$.name' FROM \"Organization\" ORDER BY id");
            while (rows.executeStep())
                companies_.emplace(nameKey(textOf(rows.getColumn(1))), rows.getColumn(0).getInt64());
        }
        const auto found = companies_.find(nameKey(name));
        return found == companies_.end() ? std::nullopt : std::optional(found->second);
    }
    void addCompany(const std::string& name, std::int64_t key) { companies_.emplace(nameKey(name), key); }

  private:
    /// Only when somebody is meant by name.
    void loadContacts() {
        if (areContactsLoaded_) return;
        areContactsLoaded_ = true;
        SQLite::Statement rows(store_.database(),
                               "SELECT id, trim(coalesce(record ->> '$.firstName', '') || ' ' || "
                               "coalesce(record ->> '$.lastName', '')) FROM \"Contact\"");
        while (rows.executeStep())
            contacts_[nameKey(textOf(rows.getColumn(1)))].insert(rows.getColumn(0).getInt64());
        for (const auto& [names, key] : contactsOfCards_) {
            for (const std::string& name : names)
                contacts_[nameKey(name)].insert(key);
        }
    }

    ImportStore& store_;
    std::vector<std::pair<std::vector<std::string>, std::int64_t>> contactsOfCards_;
    std::map<std::string, std::int64_t> byUID_;
    std::map<std::string, std::set<std::int64_t>> contacts_;
    std::map<std::string, std::int64_t> companies_;
    bool areContactsLoaded_ = false;
    bool areCompaniesLoaded_ = false;
};

class CardImporter {
  public:
    CardImporter(const std::vector<ContactCard>& cards, ImportStore& store)
        : cards_(cards),
          store_(store),
          names_(store),
          contacts_(store.database()),
          companies_(store.database()),
          roles_(store.database()),
          relationships_(store.database()),
          keys_(cards.size()) {}

    void run() {
        choose();
        for (std::size_t i = 0; i < cards_.size(); ++i) {
            if (keys_[i]) names_.addContact(cards_[i], *keys_[i]);
        }
        for (std::size_t i = 0; i < cards_.size(); ++i) {
            if (cards_[i].kind == ContactCard::Kind::organization && !choices_[i].isSuperseded) mergeCompany(i);
        }
        for (std::size_t i = 0; i < cards_.size(); ++i) {
            if (keys_[i]) mergeContact(i);
        }
        for (std::size_t i = 0; i < cards_.size(); ++i) {
            if (keys_[i]) relate(i);
            if (cards_[i].kind == ContactCard::Kind::group && !choices_[i].isSuperseded) mergeGroup(i);
        }
    }

  private:
    /// Gives every card of a person the key of its contact.
    void choose() {
        std::vector<EntryIdentity> identities;
        for (const ContactCard& card : cards_) {
            std::string substitute =
                nameKey(card.formattedName.empty() ? card.name.composedFirstLast().value_or("") : card.formattedName);
            if (!card.emails.empty()) {
                substitute += "\n" + inLowerCase(card.emails.front().value);
            } else if (!card.phones.empty()) {
                substitute += "\n" + card.phones.front().value;
            }
            identities.push_back(
                {.place = card.place, .uid = card.uid, .substitute = std::move(substitute), .digest = card.digest});
        }
        choices_ = chosenEntries(
            identities,
            [&](std::size_t later, std::size_t earlier) { return !(cards_[later].revised < cards_[earlier].revised); },
            "card", store_.problems());
        for (std::size_t i = 0; i < cards_.size(); ++i) {
            if (choices_[i].isSuperseded) {
                ++store_.counts(EntryKind::card).superseded;
            } else if (cards_[i].kind == ContactCard::Kind::person) {
                keys_[i] = store_.keyOf(choices_[i].source, contacts_);
            }
        }
    }

    const AnyLabel& label(const std::string& name) {
        return labels_.at(store_.database(), name, [](std::int64_t key, const std::string& called, std::int64_t place) {
            return AnyLabel{.labelID = key,
                            .isForElectronicAddress = true,
                            .isForGeoAddress = true,
                            .isForPhone = true,
                            .name = called,
                            .order = place};
        });
    }
    void setLabel(std::optional<AnyLabel>& member, const std::string& name) {
        if (!name.empty()) member = label(name);
    }

    // What the card lists comes first, each entry with the identifier that it had; the others stay behind it.

    template <class Entry, class IsSame, class Make, class Change, class Item>
    void mergeList(std::vector<Entry>& entries, const std::vector<Item>& items, IsSame&& isSame, Make&& make,
                   Change&& change) {
        std::vector<Entry> merged;
        for (const Item& item : items) {
            if (std::ranges::any_of(merged, [&](const Entry& entry) { return isSame(entry, item); })) continue;
            const auto found = std::ranges::find_if(entries, [&](const Entry& entry) { return isSame(entry, item); });
            if (found == entries.end()) {
                merged.push_back(make(item));
            } else {
                merged.push_back(std::move(*found));
                entries.erase(found);
            }
            change(merged.back(), item);
        }
        std::ranges::move(entries, std::back_inserter(merged));
        entries = std::move(merged);
    }

    void mergeAddresses(Contact& contact, const ContactCard& card) {
        mergeList(
            contact.phones, card.phones,
            [](const Phone& phone, const auto& item) { return phone.number == item.value; },
            [&](const auto& item) { return Phone{.phoneID = store_.embeddedKey<Phone>(), .number = item.value}; },
            [&](Phone& phone, const auto& item) { setLabel(phone.label, item.label); });
        struct Electronic {
            ElectronicAddressKind kind;
            const std::string& address;
            const std::string& label;
            std::string service;
        };
        std::vector<Electronic> electronic;
        for (const auto& item : card.emails)
            electronic.push_back({ElectronicAddressKind::email, item.value, item.label, {}});
        for (const auto& item : card.urls)
            electronic.push_back({ElectronicAddressKind::url, item.value, item.label, {}});
        for (const auto& item : card.profiles)
            electronic.push_back({ElectronicAddressKind::socialProfile, item.address, item.label, item.service});
        mergeList(
            contact.electronicAddresses, electronic,
            [](const AnyElectronicAddress& entry, const Electronic& item) {
                return entry.kind == item.kind && entry.address == item.address &&
                       entry.serviceName.value_or("") == item.service;
            },
            [&](const Electronic& item) {
                return AnyElectronicAddress{.electronicAddressID = store_.embeddedKey<AnyElectronicAddress>(),
                                            .address = item.address,
                                            .kind = item.kind,
                                            .serviceName = present(item.service)};
            },
            [&](AnyElectronicAddress& entry, const Electronic& item) { setLabel(entry.label, item.label); });
        mergeList(
            contact.geoAddresses, card.addresses,
            [](const GeoAddress& entry, const ContactCard::PostalAddress& item) {
                return entry.street.value_or("") == item.street && entry.city.value_or("") == item.city &&
                       entry.postalCode.value_or("") == item.postalCode && entry.state.value_or("") == item.state &&
                       entry.country.value_or("") == item.country;
            },
            [&](const ContactCard::PostalAddress& item) {
                return GeoAddress{.geoAddressID = store_.embeddedKey<GeoAddress>(),
                                  .city = present(item.city),
                                  .country = present(item.country),
                                  .postalCode = present(item.postalCode),
                                  .state = present(item.state),
                                  .street = present(item.street)};
            },
            [&](GeoAddress& entry, const ContactCard::PostalAddress& item) {
                setLabel(entry.label, item.label);
                if (!item.countryCode.empty()) entry.countryCode = item.countryCode;
                if (!item.position) return;
                entry.latitude = item.position->first;
                entry.longitude = item.position->second;
            });
    }

    static void mergeName(Contact& contact, const ContactCard& card) {
        const Name& name = card.name;
        if (name.first || name.last || name.middle) {
            contact.firstName = name.first;
            contact.lastName = name.last;
            contact.middleName = name.middle;
            contact.prefix = name.prefix;
            contact.suffix = name.suffix;
        }
        if (name.nickname) contact.nickname = name.nickname;
    }

    /// The card's note with a line for everybody who is related and not known.
    std::string detailsOf(const ContactCard& card) {
        std::string details = card.note;
        std::string lines;
        for (const ContactCard::Related& related : card.related) {
            if (names_.contact(related.who)) continue;
            lines += fmt::format("{}{}: {}", lines.empty() ? "" : "\n",
                                 related.relation.empty() ? "Related" : related.relation, related.who);
        }
        if (!details.empty() && !lines.empty()) details += "\n\n";
        return details + lines;
    }

    void mergeContact(std::size_t index) {
        const ContactCard& card = cards_[index];
        const std::int64_t key = *keys_[index];
        const std::optional<Contact> before = contacts_.find(key);
        Contact contact = before ? *before
                                 : Contact{.contactID = key,
                                           .createDate = card.created ? card.created : card.revised,
                                           .modifyDate = card.revised ? card.revised : card.created,
                                           // A card says nothing of it: neither inactive nor high.
                                           .priority = ContactPriority::p5};
        mergeName(contact, card);
        mergeAddresses(contact, card);
        if (card.birthday) contact.setBirthDate(card.birthday);
        if (card.anniversary) contact.setAnniversaryDate(card.anniversary);
        if (const std::string details = detailsOf(card); !details.empty()) contact.details = details;
        store_.addKeywords(contact.keywords, card.categories);
        if (card.picture) {
            const bool isSame = contact.imageAsset && contact.imageAsset->data == card.picture->data;
            if (!isSame) {
                contact.imageAsset = ImageAsset{.imageAssetID = store_.embeddedKey<ImageAsset>(),
                                                .data = card.picture->data,
                                                .mimeType = present(card.picture->mimeType)};
            }
        }
        for (const ContactCard::Employment& employment : card.employments) {
            const std::string& title = employment.title.empty() ? employment.role : employment.title;
            if (employment.company.empty() && !title.empty()) contact.tagline = title;
        }
        const auto written = contacts_.write(contact, before);
        const bool hasNewRoles = mergeRoles(key, card, !before.has_value());
        using Written = RecordStore<Contact>::Written;
        store_.count(EntryKind::card, written == Written::unchanged && hasNewRoles ? Written::changed : written);
        store_.addresses().set(contact);
    }

    std::int64_t companyOf(const std::string& name) {
        if (const auto known = names_.company(name)) return *known;
        const std::int64_t key = companies_.newKey();
        // The name is also how an import of deals finds it again.
        companies_.write(Company{.organizationID = key, .name = name, .sourceImportID = name}, std::nullopt);
        names_.addCompany(name, key);
        return key;
    }

    const AnyRoleType& roleType(const std::string& name) {
        return roleTypes_.at(store_.database(), name, [](std::int64_t key, const std::string& called, std::int64_t) {
            return AnyRoleType{.roleTypeID = key,
                               .appliesTo = RoleTypeAppliesTo::contact,
                               .isForCompany = true,
                               .isForContact = true,
                               .name = called};
        });
    }

    /// A role of a contact at a company.
    struct RoleAt {
        AnyRole role;
        std::int64_t company;
    };
    std::vector<RoleAt> rolesOf(std::int64_t contact) {
        std::vector<RoleAt> roles;
        for (const ObjectID<AnyRole>& id :
             store_.links().linked<AnyRole>(LinkKind::source, ObjectID<Contact>(contact))) {
            auto role = roles_.find(*id.value());
            const auto company = store_.links().target<Company>(id, LinkKind::destination);
            if (role && company) roles.push_back({.role = *std::move(role), .company = *company->value()});
        }
        return roles;
    }

    /// Whether a role was added or changed.
    bool mergeRoles(std::int64_t contact, const ContactCard& card, bool isNewContact) {
        std::vector<RoleAt> before = isNewContact ? std::vector<RoleAt>() : rolesOf(contact);
        bool hasDefault = std::ranges::any_of(before, [](const RoleAt& at) { return at.role.isDefaultForContact; });
        bool isChanged = false;
        for (const ContactCard::Employment& employment : card.employments) {
            if (employment.company.empty()) continue;
            const std::int64_t company = companyOf(employment.company);
            const std::string& title = employment.title.empty() ? employment.role : employment.title;
            auto found = std::ranges::find_if(
                before, [&](const RoleAt& at) { return at.company == company && at.role.name.value_or("") == title; });
            if (found == before.end()) found = std::ranges::find(before, company, &RoleAt::company);
            std::optional<AnyRole> known;
            if (found != before.end()) {
                known = found->role;
                before.erase(found);
            }
            AnyRole role = known ? *known : AnyRole{.roleID = roles_.newKey(), .isDefaultForContact = !hasDefault};
            hasDefault = true;
            if (!title.empty()) role.name = title;
            if (!employment.department.empty()) role.department = employment.department;
            if (!employment.title.empty() && !employment.role.empty() && employment.title != employment.role)
                role.roleType = roleType(employment.role);
            isChanged |= roles_.write(role, known) != RecordStore<AnyRole>::Written::unchanged;
            if (known) continue;
            store_.links().add(role.objectID(), LinkKind::source, ObjectID<Contact>(contact));
            store_.links().add(role.objectID(), LinkKind::destination, ObjectID<Company>(company));
        }
        return isChanged;
    }

    void mergeCompany(std::size_t index) {
        const ContactCard& card = cards_[index];
        const std::string name = !card.employments.empty() && !card.employments.front().company.empty()
                                     ? card.employments.front().company
                                     : card.formattedName;
        const auto known = store_.sources().find(entityNameOf<Company>, choices_[index].source);
        std::int64_t key = 0;
        std::optional<Company> before;
        if (known) before = companies_.find(*known);
        if (before) {
            key = *known;
        } else {
            const auto sameName = names_.company(name);
            key = sameName ? *sameName : companies_.newKey();
            if (sameName) before = companies_.find(key);
            store_.sources().add(entityNameOf<Company>, choices_[index].source, key);
        }
        Company company = before ? *before
                                 : Company{.organizationID = key,
                                           .createDate = card.created ? card.created : card.revised,
                                           .sourceImportID = name};
        company.name = name;
        store_.count(EntryKind::card, companies_.write(company, before));
        names_.addCompany(name, key);
        std::vector<std::string> left;
        const auto addLeft = [&](bool isThere, const char* what) {
            if (isThere) left.emplace_back(what);
        };
        addLeft(!card.phones.empty(), "phone numbers");
        addLeft(!card.emails.empty(), "e-mail addresses");
        addLeft(!card.urls.empty() || !card.profiles.empty(), "web addresses");
        addLeft(!card.addresses.empty(), "postal addresses");
        addLeft(!card.note.empty(), "the note");
        addLeft(card.picture.has_value(), "the picture");
        addLeft(!card.categories.empty(), "categories");
        if (!left.empty()) {
            store_.problems().warn(
                card.place,
                fmt::format("the card is of a company, which takes its name only; left out: {}", listed(left)));
        }
    }

    void mergeGroup(std::size_t index) {
        const ContactCard& card = cards_[index];
        const std::string name = card.formattedName.empty() ? card.name.last.value_or("Group") : card.formattedName;
        const bool isKnown = store_.sources().find(entityNameOf<Keyword>, choices_[index].source).has_value();
        const Keyword& keyword = store_.keyword(name);
        if (!isKnown) store_.sources().add(entityNameOf<Keyword>, choices_[index].source, *keyword.objectID().value());
        bool isChanged = false;
        std::size_t unknown = 0;
        for (const std::string& member : card.members) {
            const auto key = names_.contact(member);
            const auto before = key ? contacts_.find(*key) : std::nullopt;
            if (!before) {
                ++unknown;
                continue;
            }
            const bool hasKeyword = std::ranges::any_of(
                before->keywords, [&](const Keyword& there) { return there.objectID() == keyword.objectID(); });
            if (hasKeyword) continue;
            Contact contact = *before;
            contact.keywords.push_back(keyword);
            contacts_.write(contact, before);
            isChanged = true;
        }
        if (unknown > 0) {
            store_.problems().warn(card.place, fmt::format("{} of the group's {} members are not known; left out",
                                                           unknown, card.members.size()));
        }
        using Written = RecordStore<Contact>::Written;
        store_.count(EntryKind::card, !isKnown ? Written::added : isChanged ? Written::changed : Written::unchanged);
    }

    /// Relates the contact of a card with the contacts that it names, and with those that name it as their agent.
    void relate(std::size_t index) {
        const ContactCard& card = cards_[index];
        const std::int64_t contact = *keys_[index];
        for (const ContactCard::Related& related : card.related) {
            const auto other = names_.contact(related.who);
            if (other && *other != contact) relate(contact, *other, related.relation);
        }
        if (card.agentOf && keys_[*card.agentOf] && *keys_[*card.agentOf] != contact)
            relate(*keys_[*card.agentOf], contact, "Agent");
    }

    void relate(std::int64_t from, std::int64_t to, const std::string& relation) {
        const auto* const rule =
            std::ranges::find_if(relationRules, [&](const RelationRule& r) { return isSameWord(r.word, relation); });
        const bool isKnown = rule != relationRules.end();
        const std::string forward = isKnown ? std::string(rule->forwardName) : relation;
        const std::string reverse = isKnown ? std::string(rule->reverseName) : relation + " of";
        if (isKnown && rule->isReversed) std::swap(from, to);
        std::optional<RelationshipType> type;
        if (!forward.empty()) {
            type = relationshipTypes_.at(
                store_.database(), forward, [&](std::int64_t key, const std::string& called, std::int64_t) {
                    return RelationshipType{
                        .relationshipTypeID = key, .forwardName = called, .isForContact = true, .reverseName = reverse};
                });
        }
        if (areRelated(from, to, type) || (isKnown && rule->isSymmetric() && areRelated(to, from, type))) return;
        related_.emplace(from, to, keyOf(type));
        const AnyRelationship relationship{.relationID = relationships_.newKey(), .relationshipType = type};
        relationships_.write(relationship, std::nullopt);
        store_.links().add(relationship.objectID(), LinkKind::source, ObjectID<Contact>(from));
        store_.links().add(relationship.objectID(), LinkKind::destination, ObjectID<Contact>(to));
    }

    static std::optional<std::int64_t> keyOf(const std::optional<RelationshipType>& type) {
        return type ? type->objectID().value() : std::nullopt;
    }

    bool areRelated(std::int64_t from, std::int64_t to, const std::optional<RelationshipType>& type) {
        loadRelationships();
        if (const auto pair = unreadRelationships_.find({from, to}); pair != unreadRelationships_.end()) {
            for (const std::int64_t key : pair->second) {
                if (const auto relationship = relationships_.find(key))
                    related_.emplace(from, to, keyOf(relationship->relationshipType));
            }
            unreadRelationships_.erase(pair);
        }
        return related_.contains({from, to, keyOf(type)});
    }

    /// Only when somebody is related: once, for somebody may be related to everybody.
    void loadRelationships() {
        if (areRelationshipsLoaded_) return;
        areRelationshipsLoaded_ = true;
        SQLite::Statement rows(store_.database(),
                               "SELECT source.targetID, destination.targetID, source.id FROM \"RecordLink\" source "
                               "JOIN \"RecordLink\" destination ON destination.entity = source.entity "
                               "AND destination.id = source.id AND destination.kind = 'destination' "
                               "AND destination.targetEntity = ?2 "
                               "WHERE source.entity = ?1 AND source.kind = 'source' AND source.targetEntity = ?2");
        rows.bind(1, std::string(entityNameOf<AnyRelationship>));
        rows.bind(2, std::string(entityNameOf<Contact>));
        while (rows.executeStep()) {
            const std::pair pair(rows.getColumn(0).getInt64(), rows.getColumn(1).getInt64());
            unreadRelationships_[pair].push_back(rows.getColumn(2).getInt64());
        }
    }

    const std::vector<ContactCard>& cards_;
    ImportStore& store_;
    KnownNames names_;
    RecordStore<Contact> contacts_;
    RecordStore<Company> companies_;
    RecordStore<AnyRole> roles_;
    RecordStore<AnyRelationship> relationships_;
    NamedRecords<AnyLabel> labels_;
    NamedRecords<AnyRoleType> roleTypes_;
    NamedRecords<RelationshipType> relationshipTypes_;
    std::vector<EntryChoice> choices_;
    /// The contact of each card that counts and is of a person.
    std::vector<std::optional<std::int64_t>> keys_;
    /// The keys of the relationships that the database has from one contact to another, and that nobody asked for yet.
    std::map<std::pair<std::int64_t, std::int64_t>, std::vector<std::int64_t>> unreadRelationships_;
    /// From whom to whom, and the type.
    std::set<std::tuple<std::int64_t, std::int64_t, std::optional<std::int64_t>>> related_;
    bool areRelationshipsLoaded_ = false;
};

}  // namespace

void importCards(const std::vector<ContactCard>& cards, ImportStore& store) {
    CardImporter(cards, store).run();
}

}  // namespace kestrel::host
