#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/records/contact.h>
#include <optional>
#include <utility>

namespace kestrel {

class EmailLinkRecord;

/// What an email is linked to: a contact. In keyed form one key, "contact", holding the identifier under "_0".
class EmailLink : public Choice<EmailLink, ObjectID<Contact>> {
  public:
    using Coded = void;
    /// The same with the whole record.
    using Record = EmailLinkRecord;

    /// To that contact.
    [[nodiscard]] static EmailLink contact(ObjectID<Contact> id) { return EmailLink(id); }

    [[nodiscard]] std::optional<ObjectID<Contact>> contact() const { return payload<ObjectID<Contact>>(); }

    friend bool operator==(const EmailLink&, const EmailLink&) = default;

  private:
    friend CodingAccess;
    explicit EmailLink(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<EmailLink>;

/// The same with the whole record.
class EmailLinkRecord : public Choice<EmailLinkRecord, Contact> {
  public:
    /// To that contact.
    [[nodiscard]] static EmailLinkRecord contact(Contact contact) { return EmailLinkRecord(std::move(contact)); }

    /// Never null: there is no other case.
    [[nodiscard]] const Contact* contact() const noexcept { return payloadIf<Contact>(); }

    friend bool operator==(const EmailLinkRecord&, const EmailLinkRecord&) = default;

  private:
    explicit EmailLinkRecord(Variant value) : Choice(std::move(value)) {}
};

}  // namespace kestrel
