#pragma once

#include <kestrel/activity/email.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/identity/link_target.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/relationships/contact_role.h>
#include <kestrel/relationships/relationship.h>
#include <optional>
#include <utility>

namespace kestrel {

class ContactLinkRecord;
class ContactLinkQuery;

/// One connection of a contact to something else. In keyed form one key, the case's name, holding the identifier under
/// "_0".
class ContactLink : public Choice<ContactLink, ObjectID<Contact>, ObjectID<Company>, ObjectID<Opportunity>,
                                  ObjectID<Project>, ObjectID<Email>> {
  public:
    using Coded = void;
    /// The same with the record that makes it.
    using Record = ContactLinkRecord;
    /// Asks for such connections.
    using Query = ContactLinkQuery;

    /// The other contact of a relationship between contacts.
    [[nodiscard]] static ContactLink relationship(ObjectID<Contact> id) { return ContactLink(id); }
    /// A role at that company.
    [[nodiscard]] static ContactLink companyRole(ObjectID<Company> id) { return ContactLink(id); }
    /// A role on that opportunity.
    [[nodiscard]] static ContactLink opportunityRole(ObjectID<Opportunity> id) { return ContactLink(id); }
    /// A role on that project.
    [[nodiscard]] static ContactLink projectRole(ObjectID<Project> id) { return ContactLink(id); }
    /// That email.
    [[nodiscard]] static ContactLink email(ObjectID<Email> id) { return ContactLink(id); }

    [[nodiscard]] std::optional<ObjectID<Contact>> relationship() const { return payload<ObjectID<Contact>>(); }
    [[nodiscard]] std::optional<ObjectID<Company>> companyRole() const { return payload<ObjectID<Company>>(); }
    [[nodiscard]] std::optional<ObjectID<Opportunity>> opportunityRole() const {
        return payload<ObjectID<Opportunity>>();
    }
    [[nodiscard]] std::optional<ObjectID<Project>> projectRole() const { return payload<ObjectID<Project>>(); }
    [[nodiscard]] std::optional<ObjectID<Email>> email() const { return payload<ObjectID<Email>>(); }

    friend bool operator==(const ContactLink&, const ContactLink&) = default;

  private:
    friend CodingAccess;
    explicit ContactLink(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<ContactLink>;

/// The same connection with the record that makes it. The readers' pointers are null for the other cases.
class ContactLinkRecord : public Choice<ContactLinkRecord, ToContactRelationship, ContactCompanyRole,
                                        ContactOpportunityRole, ContactProjectRole, Email> {
  public:
    /// A relationship to another contact.
    [[nodiscard]] static ContactLinkRecord relationship(ToContactRelationship record) {
        return ContactLinkRecord(std::move(record));
    }
    /// A role at a company.
    [[nodiscard]] static ContactLinkRecord companyRole(ContactCompanyRole record) {
        return ContactLinkRecord(std::move(record));
    }
    /// A role on an opportunity.
    [[nodiscard]] static ContactLinkRecord opportunityRole(ContactOpportunityRole record) {
        return ContactLinkRecord(std::move(record));
    }
    /// A role on a project.
    [[nodiscard]] static ContactLinkRecord projectRole(ContactProjectRole record) {
        return ContactLinkRecord(std::move(record));
    }
    /// An email.
    [[nodiscard]] static ContactLinkRecord email(Email record) { return ContactLinkRecord(std::move(record)); }

    [[nodiscard]] const ToContactRelationship* relationship() const noexcept {
        return payloadIf<ToContactRelationship>();
    }
    [[nodiscard]] const ContactCompanyRole* companyRole() const noexcept { return payloadIf<ContactCompanyRole>(); }
    [[nodiscard]] const ContactOpportunityRole* opportunityRole() const noexcept {
        return payloadIf<ContactOpportunityRole>();
    }
    [[nodiscard]] const ContactProjectRole* projectRole() const noexcept { return payloadIf<ContactProjectRole>(); }
    [[nodiscard]] const Email* email() const noexcept { return payloadIf<Email>(); }

    /// The connection by identifiers: of the contact at the other end, of the role's company, opportunity or project,
    /// or of the email.
    [[nodiscard]] ContactLink contactLink() const;

    friend bool operator==(const ContactLinkRecord&, const ContactLinkRecord&) = default;

  private:
    explicit ContactLinkRecord(Variant value) : Choice(std::move(value)) {}
};

/// Asks for the connections of contacts that point at a record. The host's store answers.
class ContactLinkQuery : public Choice<ContactLinkQuery, LinkTarget> {
  public:
    /// All connections that point there.
    [[nodiscard]] static ContactLinkQuery destination(LinkTarget target) { return ContactLinkQuery(std::move(target)); }

    [[nodiscard]] std::optional<LinkTarget> destination() const { return payload<LinkTarget>(); }

    friend bool operator==(const ContactLinkQuery&, const ContactLinkQuery&) = default;

  private:
    explicit ContactLinkQuery(Variant value) : Choice(std::move(value)) {}
};

}  // namespace kestrel
