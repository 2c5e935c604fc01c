#include <host/contact/contact_names.h>
#include <host/contact/contact_query.h>
#include <host/contact/link_query.h>

#include <type_traits>
#include <utility>

namespace kestrel::host {
namespace {

/// The records that links of contacts point at. Those of other types are what contacts were part of: their activity.
template <class... Records>
struct Targets {
    /// Calls `visit.operator()<Record>()` for every type.
    template <class Visitor>
    static void forEach(Visitor&& visit) {
        (visit.template operator()<Records>(), ...);
    }
};
using LinkTargets = Targets<Contact, Company, Opportunity, Project, Email>;

template <class Record>
LinkTarget targetOf(const ObjectID<Record>& id) {
    if constexpr (std::is_same_v<Record, Contact>) return LinkTarget::contact(id);
    if constexpr (std::is_same_v<Record, Company>) return LinkTarget::company(id);
    if constexpr (std::is_same_v<Record, Opportunity>) return LinkTarget::opportunity(id);
    if constexpr (std::is_same_v<Record, Project>) return LinkTarget::project(id);
    if constexpr (std::is_same_v<Record, Email>) return LinkTarget::email(id);
}

/// The contact that a role or a relationship is of, when the user may see it.
std::optional<Contact> sourceOf(ReadableRecords& records, const AnyObjectID& id) {
    const auto contact = records.links().target<Contact>(id, LinkKind::source);
    return contact ? records.find(*contact) : std::nullopt;
}

/// The links of the contacts with a role at a destination, which `Role` is the view of.
template <class Role, class Destination>
std::vector<LinkedContact> roleLinks(ReadableRecords& records, const ObjectID<Destination>& id,
                                     ContactLinkRecord (*link)(Role)) {
    std::vector<LinkedContact> found;
    for (const auto& roleID : records.links().linked<AnyRole>(LinkKind::destination, id)) {
        auto record = records.find(roleID);
        if (!record) continue;
        auto contact = sourceOf(records, roleID);
        if (!contact) continue;
        auto role = Role::from(contactRoleOf(records, *std::move(record)));
        if (!role) continue;
        auto name = textIn(role->name());
        found.push_back({.contact = *std::move(contact), .link = link(*std::move(role)), .name = std::move(name)});
    }
    return found;
}

std::vector<LinkedContact> relationshipLinks(ReadableRecords& records, const ObjectID<Contact>& id,
                                             const Contact& destination) {
    std::vector<LinkedContact> found;
    for (const auto& relationshipID : records.links().linked<AnyRelationship>(LinkKind::destination, id)) {
        auto record = records.find(relationshipID);
        if (!record) continue;
        auto contact = sourceOf(records, relationshipID);
        if (!contact) continue;
        const FromRelationship seenFromHere(*record, RelationshipSource::contact(*contact));
        auto name = ContactRelationship::from(FromContactRelationship::from(seenFromHere).value()).directionalName();
        const ToRelationship relationship(*std::move(record), RelationshipDestination::contact(destination));
        found.push_back({.contact = *std::move(contact),
                         .link = ContactLinkRecord::relationship(ToContactRelationship::from(relationship).value()),
                         .name = textIn(name)});
    }
    return found;
}

std::vector<LinkedContact> emailLinks(ReadableRecords& records, const Email& email) {
    std::vector<LinkedContact> found;
    for (const AnyObjectID& target : records.links().targets(email.objectID(), LinkKind::subject)) {
        const auto id = target.as<Contact>();
        if (!id) continue;
        if (auto contact = records.find(*id)) {
            found.push_back({.contact = *std::move(contact), .link = ContactLinkRecord::email(email), .name = {}});
        }
    }
    return found;
}

}  // namespace

std::optional<LinkTarget> linkTargetOf(const AnyObjectID& id) {
    std::optional<LinkTarget> target;
    LinkTargets::forEach([&]<class Record>() {
        if (const auto typed = id.as<Record>()) target = targetOf(*typed);
    });
    return target;
}

std::vector<std::string> linkTargetEntities() {
    std::vector<std::string> entities;
    LinkTargets::forEach([&]<class Record>() { entities.emplace_back(entityNameOf<Record>); });
    return entities;
}

std::vector<LinkedContact> answer(ReadableRecords& records, const ContactLinkQuery& query) {
    const auto target = query.destination();
    if (!target) return {};
    return target->match([](const AppointmentOccurrenceTarget&) { return std::vector<LinkedContact>(); },
                         [&]<class Record>(const ObjectID<Record>& id) {
                             // Whatever it is: nobody is told who is linked to a record that is not to be read.
                             [[maybe_unused]] const Record record = records.required(id);
                             if constexpr (std::is_same_v<Record, Contact>) {
                                 return relationshipLinks(records, id, record);
                             } else if constexpr (std::is_same_v<Record, Company>) {
                                 return roleLinks<ContactCompanyRole>(records, id, &ContactLinkRecord::companyRole);
                             } else if constexpr (std::is_same_v<Record, Opportunity>) {
                                 return roleLinks<ContactOpportunityRole>(records, id,
                                                                          &ContactLinkRecord::opportunityRole);
                             } else if constexpr (std::is_same_v<Record, Project>) {
                                 return roleLinks<ContactProjectRole>(records, id, &ContactLinkRecord::projectRole);
                             } else if constexpr (std::is_same_v<Record, Email>) {
                                 return emailLinks(records, record);
                             } else {
                                 return std::vector<LinkedContact>();
                             }
                         });
}

}  // namespace kestrel::host
