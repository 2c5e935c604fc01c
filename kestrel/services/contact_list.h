#pragma once

#include <kestrel/identity/object_id.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/name.h>
#include <kestrel/relationships/contact_link.h>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// Which contacts to list.
struct ContactListQuery {
    /// Only those that have this text; all when absent.
    std::optional<std::string> search{};
    /// At most so many of them, 0 for all.
    std::size_t limit{};

    friend bool operator==(const ContactListQuery&, const ContactListQuery&) = default;
};

/// A contact in a list.
struct ContactRow {
    /// The contact.
    ObjectID<Contact> id;
    /// The contact's name by its parts.
    Name name{};
    /// Of the default role, when the user may read it.
    std::optional<std::string> company{};
    /// The default one.
    std::optional<std::string> emailAddress{};
    /// The default one, as the user wrote it.
    std::optional<std::string> phone{};

    friend bool operator==(const ContactRow&, const ContactRow&) = default;
};

/// The contacts that a query finds, or the first of them.
struct ContactList {
    /// By name, as many as the query asks for.
    std::vector<ContactRow> rows{};
    /// How many there are, the ones beyond the limit included.
    std::size_t total{};

    friend bool operator==(const ContactList&, const ContactList&) = default;
};

/// A contact and how it is linked to the record that was asked for.
struct LinkedContact {
    /// The contact that has the link.
    Contact contact;
    /// The role, relationship or email that makes the link.
    ContactLinkRecord link;
    /// What the contact is to the record that the link points at: the title of its role, the relationship's name read
    /// in that direction. Absent for an untitled role, an untyped relationship and for an email.
    std::optional<std::string> name{};
};

}  // namespace kestrel
