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
    /// The user.
    ReadOnly<User, UserContact> user;
    /// Absent when no contact stands for the user.
    ReadOnly<std::optional<Contact>, UserContact> contact{};

    /// From both.
    [[nodiscard]] static UserContact make(User user, std::optional<Contact> contact);

    [[nodiscard]] const ObjectID<User>& id() const noexcept { return user->id(); }
    [[nodiscard]] const ObjectID<User>& objectID() const noexcept { return user->objectID(); }
    /// Reaches into the user.
    [[nodiscard]] const User* operator->() const noexcept { return &user.get(); }

    friend bool operator==(const UserContact&, const UserContact&) = default;
};

/// A contact with all its roles, its relationships in both directions, and the users who own and created it. The
/// contact's members are read and written through the arrow: `info->firstName`.
struct ContactInfo {
    /// The contact.
    Contact contact;
    /// At companies, on opportunities and on projects, in the user's order.
    std::vector<ContactRole> allRoles{};
    /// Those of which the contact is the source.
    std::vector<ToRelationship> allToRelationships{};
    /// Those of which the contact is the destination.
    std::vector<FromRelationship> allFromRelationships{};
    /// The user whose contact it is; absent when it is nobody's.
    std::optional<UserContact> owner{};
    /// The user who created it; absent when that is not known.
    ReadOnly<std::optional<UserContact>, ContactInfo> creator{};

    /// From all of its parts.
    [[nodiscard]] static ContactInfo make(Contact contact, std::vector<ContactRole> allRoles,
                                          std::vector<ToRelationship> allToRelationships,
                                          std::vector<FromRelationship> allFromRelationships,
                                          std::optional<UserContact> owner, std::optional<UserContact> creator);

    [[nodiscard]] const ObjectID<Contact>& id() const noexcept { return contact.id(); }
    [[nodiscard]] const ObjectID<Contact>& objectID() const noexcept { return contact.objectID(); }
    /// Reaches into the contact, also to change it.
    [[nodiscard]] Contact* operator->() noexcept { return &contact; }
    /// Reaches into the contact.
    [[nodiscard]] const Contact* operator->() const noexcept { return &contact; }
    /// The contact's.
    [[nodiscard]] const Permissions& permissions() const noexcept { return contact.permissions; }

    ///@{
    /// The roles whose destination is of that kind, in the order of `allRoles`. Copies, which share the records.
    [[nodiscard]] std::vector<ContactCompanyRole> companyRoles() const;
    [[nodiscard]] std::vector<ContactOpportunityRole> opportunityRoles() const;
    [[nodiscard]] std::vector<ContactProjectRole> projectRoles() const;
    ///@}

    ///@{
    /// The relationships in that direction whose other end is a contact, in order. Copies, which share the records.
    [[nodiscard]] std::vector<ToContactRelationship> toRelationships() const;
    [[nodiscard]] std::vector<FromContactRelationship> fromRelationships() const;
    ///@}
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
