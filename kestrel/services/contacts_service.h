#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/relationships/contact_info.h>
#include <kestrel/relationships/contact_link.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/services/contact_list.h>
#include <kestrel/session/service_errors.h>
#include <memory>
#include <vector>

namespace kestrel {

/// Contacts as the signed-in user may see them.
class ContactsService : public ServiceProtocol {
  public:
    /// As it is now.
    [[nodiscard]] virtual AnyPublisher<Contact, ReadError> fetchContact(const ObjectID<Contact>& id) = 0;
    /// With roles, relationships and owner.
    [[nodiscard]] virtual AnyPublisher<ContactInfo, ReadError> fetchContactInfo(const ObjectID<Contact>& id) = 0;
    /// The same, now and after every change.
    [[nodiscard]] virtual AnyPublisher<ContactInfo, ReadError> observeContactInfo(const ObjectID<Contact>& id) = 0;
    /// Those that a query finds, by name.
    [[nodiscard]] virtual AnyPublisher<ContactList, ReadError> fetchContacts(const ContactListQuery& query) = 0;
    /// The contacts that are linked to a record.
    [[nodiscard]] virtual AnyPublisher<std::vector<LinkedContact>, ReadError> fetchLinks(
        const ContactLinkQuery& query) = 0;
    /// Stores it as it is given, a new one under an identifier of its own; what was stored.
    [[nodiscard]] virtual AnyPublisher<Contact, UpdateError> updateContact(const Contact& contact) = 0;
    /// Deletes it softly; it is found no more.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> deleteContact(const ObjectID<Contact>& id) = 0;
};

template <>
class Forwarding<ContactsService> : public ContactsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<ContactsService> target() const = 0;

    [[nodiscard]] AnyPublisher<Contact, ReadError> fetchContact(const ObjectID<Contact>& id) override {
        return target()->fetchContact(id);
    }
    [[nodiscard]] AnyPublisher<ContactInfo, ReadError> fetchContactInfo(const ObjectID<Contact>& id) override {
        return target()->fetchContactInfo(id);
    }
    [[nodiscard]] AnyPublisher<ContactInfo, ReadError> observeContactInfo(const ObjectID<Contact>& id) override {
        return target()->observeContactInfo(id);
    }
    [[nodiscard]] AnyPublisher<ContactList, ReadError> fetchContacts(const ContactListQuery& query) override {
        return target()->fetchContacts(query);
    }
    [[nodiscard]] AnyPublisher<std::vector<LinkedContact>, ReadError> fetchLinks(
        const ContactLinkQuery& query) override {
        return target()->fetchLinks(query);
    }
    [[nodiscard]] AnyPublisher<Contact, UpdateError> updateContact(const Contact& contact) override {
        return target()->updateContact(contact);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteContact(const ObjectID<Contact>& id) override {
        return target()->deleteContact(id);
    }
};

namespace services {
inline constexpr ServiceKey<ContactsService> contacts;
}

}  // namespace kestrel
