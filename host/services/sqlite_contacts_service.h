#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/contacts_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The contacts of a database.
///
/// What the signed-in user may not read is left out of lists and pages, and asking for it is refused. A contact that is
/// stored keeps its dates of creation and deletion whatever it is given as, and is dated with the change; nothing is
/// written when it says what is there already. Phones, addresses and the picture get identifiers of their own when they
/// have none that is saved. A new contact is owned by the user, who created it.
class SQLiteContactsService final : public ContactsService {
  public:
    explicit SQLiteContactsService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<Contact, ReadError> fetchContact(const ObjectID<Contact>& id) override;
    [[nodiscard]] AnyPublisher<ContactInfo, ReadError> fetchContactInfo(const ObjectID<Contact>& id) override;
    [[nodiscard]] AnyPublisher<ContactInfo, ReadError> observeContactInfo(const ObjectID<Contact>& id) override;
    [[nodiscard]] AnyPublisher<ContactList, ReadError> fetchContacts(const ContactListQuery& query) override;
    [[nodiscard]] AnyPublisher<std::vector<LinkedContact>, ReadError> fetchLinks(
        const ContactLinkQuery& query) override;
    [[nodiscard]] AnyPublisher<Contact, UpdateError> updateContact(const Contact& contact) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteContact(const ObjectID<Contact>& id) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
