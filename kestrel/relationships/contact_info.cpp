#include <kestrel/relationships/contact_info.h>
#include <algorithm>
#include <boost/unordered/unordered_flat_set.hpp>
#include <cstddef>
#include <utility>

namespace kestrel {

namespace {

/// The elements that convert to `View`, in order.
template <class View, class Element>
std::vector<View> viewsOf(const std::vector<Element>& elements) {
    std::vector<View> views;
    for (const Element& element : elements) {
        if (auto view = View::from(element)) views.push_back(*std::move(view));
    }
    return views;
}

}  // namespace

UserContact UserContact::make(User user, std::optional<Contact> contact) {
    return {.user = std::move(user), .contact = std::move(contact)};
}

ContactInfo ContactInfo::make(Contact contact, std::vector<ContactRole> allRoles,
                              std::vector<ToRelationship> allToRelationships,
                              std::vector<FromRelationship> allFromRelationships, std::optional<UserContact> owner,
                              std::optional<UserContact> creator) {
    return {.contact = std::move(contact),
            .allRoles = std::move(allRoles),
            .allToRelationships = std::move(allToRelationships),
            .allFromRelationships = std::move(allFromRelationships),
            .owner = std::move(owner),
            .creator = std::move(creator)};
}

std::vector<ContactCompanyRole> ContactInfo::companyRoles() const {
    return viewsOf<ContactCompanyRole>(allRoles);
}

std::vector<ContactOpportunityRole> ContactInfo::opportunityRoles() const {
    return viewsOf<ContactOpportunityRole>(allRoles);
}

std::vector<ContactProjectRole> ContactInfo::projectRoles() const {
    return viewsOf<ContactProjectRole>(allRoles);
}

std::vector<ToContactRelationship> ContactInfo::toRelationships() const {
    return viewsOf<ToContactRelationship>(allToRelationships);
}

std::vector<FromContactRelationship> ContactInfo::fromRelationships() const {
    return viewsOf<FromContactRelationship>(allFromRelationships);
}

std::vector<ContactRelationship> ContactInfo::joinedRelationships() const {
    std::vector<ContactRelationship> joined;
    joined.reserve(allToRelationships.size() + allFromRelationships.size());
    boost::unordered_flat_set<ObjectID<AnyRelationship>, std::hash<ObjectID<AnyRelationship>>> seen;
    seen.reserve(joined.capacity());
    for (const ToRelationship& relationship : allToRelationships) {
        if (relationship.contact() == nullptr || !seen.insert(relationship.id()).second) continue;
        joined.push_back(ContactRelationship::to(*ToContactRelationship::from(relationship)));
    }
    for (const FromRelationship& relationship : allFromRelationships) {
        if (relationship.contact() == nullptr || !seen.insert(relationship.id()).second) continue;
        joined.push_back(ContactRelationship::from(*FromContactRelationship::from(relationship)));
    }
    return joined;
}

std::optional<ContactCompanyRole> ContactInfo::defaultRole() const {
    const ContactRole* role = Contact::defaultRole(allRoles);
    return role != nullptr ? ContactCompanyRole::from(*role) : std::nullopt;
}

void ContactInfo::setDefaultRole(const ObjectID<AnyRole>& roleID) {
    const auto found = std::ranges::find(allRoles, roleID, &ContactRole::id);
    if (found == allRoles.end()) return;
    const std::ptrdiff_t index = found - allRoles.begin();
    allRoles = Contact::setDefaultRole(index, std::move(allRoles));
}

}  // namespace kestrel
