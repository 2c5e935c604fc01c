#pragma once

#include <kestrel/services/contacts_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// A ContactsService that answers as a test prepares it, and keeps what it is asked.
class RecordingContactsService final : public ContactsService {
  public:
    struct Stubs {
        Stub<AnyPublisher<Contact, ReadError>(const ObjectID<Contact>&)> fetchContact;
        Stub<AnyPublisher<ContactInfo, ReadError>(const ObjectID<Contact>&)> fetchContactInfo;
        Stub<AnyPublisher<ContactInfo, ReadError>(const ObjectID<Contact>&)> observeContactInfo;
        Stub<AnyPublisher<ContactList, ReadError>(const ContactListQuery&)> fetchContacts;
        Stub<AnyPublisher<std::vector<LinkedContact>, ReadError>(const ContactLinkQuery&)> fetchLinks;
        Stub<AnyPublisher<Contact, UpdateError>(const Contact&)> updateContact;
        Stub<AnyPublisher<Never, UpdateError>(const ObjectID<Contact>&)> deleteContact;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<Contact, ReadError> fetchContact(const ObjectID<Contact>& id) override {
        return on.fetchContact(id);
    }
    [[nodiscard]] AnyPublisher<ContactInfo, ReadError> fetchContactInfo(const ObjectID<Contact>& id) override {
        return on.fetchContactInfo(id);
    }
    [[nodiscard]] AnyPublisher<ContactInfo, ReadError> observeContactInfo(const ObjectID<Contact>& id) override {
        return on.observeContactInfo(id);
    }
    [[nodiscard]] AnyPublisher<ContactList, ReadError> fetchContacts(const ContactListQuery& query) override {
        return on.fetchContacts(query);
    }
    [[nodiscard]] AnyPublisher<std::vector<LinkedContact>, ReadError> fetchLinks(
        const ContactLinkQuery& query) override {
        return on.fetchLinks(query);
    }
    [[nodiscard]] AnyPublisher<Contact, UpdateError> updateContact(const Contact& contact) override {
        return on.updateContact(contact);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteContact(const ObjectID<Contact>& id) override {
        return on.deleteContact(id);
    }
};

}  // namespace kestrel
