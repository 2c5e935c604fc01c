#include <host/contact/contact_list.h>
#include <host/contact/contact_query.h>
#include <host/contact/link_query.h>
#include <host/contact/stored_contact.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_contacts_service.h>

namespace kestrel::host {
namespace {

ContactInfo infoOf(HostContext& context, const ObjectID<Contact>& id) {
    return context.read([&](ReadableRecords& records, const Directory&) { return contactInfoOf(records, id); });
}

}  // namespace

AnyPublisher<Contact, ReadError> SQLiteContactsService::fetchContact(const ObjectID<Contact>& id) {
    return reading([context = context_, id] {
        return context->read([&](ReadableRecords& records, const Directory&) { return records.required(id); });
    });
}

AnyPublisher<ContactInfo, ReadError> SQLiteContactsService::fetchContactInfo(const ObjectID<Contact>& id) {
    return reading([context = context_, id] { return infoOf(*context, id); });
}

AnyPublisher<ContactInfo, ReadError> SQLiteContactsService::observeContactInfo(const ObjectID<Contact>& id) {
    return observing(context_, [context = context_, id] { return infoOf(*context, id); }).removeDuplicates();
}

AnyPublisher<ContactList, ReadError> SQLiteContactsService::fetchContacts(const ContactListQuery& query) {
    return reading([context = context_, query] {
        return context->read([&](ReadableRecords& records, const Directory&) { return contactList(records, query); });
    });
}

AnyPublisher<std::vector<LinkedContact>, ReadError> SQLiteContactsService::fetchLinks(const ContactLinkQuery& query) {
    return reading([context = context_, query] {
        return context->read([&](ReadableRecords& records, const Directory&) { return answer(records, query); });
    });
}

AnyPublisher<Contact, UpdateError> SQLiteContactsService::updateContact(const Contact& contact) {
    return updating([context = context_, contact = contact] {
        return context->write([&](RecordWriter& records) { return storeContact(records, contact); });
    });
}

AnyPublisher<Never, UpdateError> SQLiteContactsService::deleteContact(const ObjectID<Contact>& id) {
    return completing([context = context_, id] {
        return context->write([&](RecordWriter& records) { return markContactDeleted(records, id); });
    });
}

}  // namespace kestrel::host
