#pragma once

#include <host/store/record_writer.h>
#include <kestrel/records/contact.h>

namespace kestrel::host {

/// Stores a contact as it is given, and gives back what is stored: a new one under an identifier of its own, owned and
/// created by the user; one that is there already with its dates of creation and deletion, and dated with the change,
/// unless it says nothing new. Phones, addresses and the picture get identifiers of their own when they have none that
/// is saved; labels, keywords and the category have to have one. From then on it is linked with the mail and
/// the events of its addresses.
///
/// A Failure when the user may not change the contact, or changes its permissions without the right to delete it;
/// RecordMissing when a saved phone, address or picture is none of this contact's.
Contact storeContact(RecordWriter& records, const Contact& contact);

/// Marks a contact as deleted by the user; what is linked to it stays, and nothing is linked to it by its addresses any
/// more. A Failure when the user may not delete it.
void markContactDeleted(RecordWriter& records, const ObjectID<Contact>& id);

}  // namespace kestrel::host
