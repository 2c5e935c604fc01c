#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/lookups/user.h>
#include <kestrel/records/contact.h>
#include <kestrel/relationships/contact_role.h>
#include <kestrel/relationships/relationship.h>
#include <optional>
#include <vector>

namespace kestrel {

/// A user with the contact that stands for that user, if any. The user's members are read through the arrow:
/// `userContact->username`.
struct UserContact {
    ReadOnly<User, UserContact> user;
    ReadOnly<std::optional<Contact>, UserContact> contact{};

    [[nodiscard]] static UserContact make(User user, std::optional<Contact> contact);

    [[nodiscard]] const ObjectID<User>& id() const noexcept { return user->id(); }
    [[nodiscard]] const ObjectID<User>& objectID() const noexcept { return user->objectID(); }
    [[nodiscard]] const User* operator->() const noexcept { return &user.get(); }

    friend bool operator==(const UserContact&, const UserContact&) = default;
};

/// A contact with all its roles, its relationships in both directions, and the users who own and created it. The
/// contact's members are read and written through the arrow: `info->firstName`.
struct ContactInfo {
    Contact contact;
    std::vector<ContactRole> allRoles{};
    std::vector<ToRelationship> allToRelationships{};
    std::vector<FromRelationship> allFromRelationships{};
    std::optional<UserContact> owner{};
    ReadOnly<std::optional<UserContact>, ContactInfo> creator{};

    [[nodiscard]] static ContactInfo make(Contact contact, std::vector<ContactRole> allRoles,
                                          std::vector<ToRelationship> allToRelationships,
                                          std::vector<FromRelationship> allFromRelationships,
                                          std::optional<UserContact> owner, std::optional<UserContact> creator);

    [[nodiscard]] const ObjectID<Contact>& id() const noexcept { return contact.id(); }
    [[nodiscard]] const ObjectID<Contact>& objectID() const noexcept { return contact.objectID(); }
    [[nodiscard]] Contact* operator->() noexcept { return &contact; }
    [[nodiscard]] const Contact* operator->() const noexcept { return &contact; }
    /// The contact's.
    [[nodiscard]] const Permissions& permissions() const noexcept { return contact.permissions; }

    // The roles whose destination is of that kind, in the order of `allRoles`.
    [[nodiscard]] std::vector<ContactCompanyRole> companyRoles() const;
    [[nodiscard]] std::vector<ContactOpportunityRole> opportunityRoles() const;
    [[nodiscard]] std::vector<ContactProjectRole> projectRoles() const;

    // The relationships whose other end is a contact, in order.
    [[nodiscard]] std::vector<ToContactRelationship> toRelationships() const;
    [[nodiscard]] std::vector<FromContactRelationship> fromRelationships() const;
    /// All of them in one list: those to other contacts before those from others. One that stands in both directions,
    /// or twice, is there once, as it comes first. Linear in the relationships.
    [[nodiscard]] std::vector<ContactRelationship> joinedRelationships() const;

    /// The contact's default role, if it has one and that is a role at a company.
    [[nodiscard]] std::optional<ContactCompanyRole> defaultRole() const;
    /// Makes that role the default: the marks of all roles at companies are taken away, and if the role is one at a
    /// company it is marked. Without such a role nothing changes.
    void setDefaultRole(const ObjectID<AnyRole>& roleID);

    friend bool operator==(const ContactInfo&, const ContactInfo&) = default;
};
static_assert(AuthorizedAccess<ContactInfo>);

}  // namespace kestrel
