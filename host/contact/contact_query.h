#pragma once

#include <host/store/readable_records.h>
#include <kestrel/records/extra_fields_namer.h>
#include <kestrel/relationships/contact_info.h>
#include <string_view>

namespace kestrel::host {

/// The contact that a text means: "Contact/12", its key "12" alone, or a name that exactly one contact has that the
/// user may read, whatever the case of its letters. WrongUsage for the identifier of another record or of none; a
/// Failure for a name that nobody has, with those that may have been meant, or that several have, with their
/// identifiers. Whether there is a contact of an identifier is not asked.
[[nodiscard]] ObjectID<Contact> contactCalled(ReadableRecords& records, std::string_view text,
                                              std::string_view locale = {});

/// The contact with its roles, its relationships in both directions, its owner and its creator. A Failure when the user
/// may not see it.
///
/// Roles and relationships that are deleted are left out. Where the record at the other end is gone, or the user may
/// not read it, the role or the relationship is there without it: its destination or source is missing. A user's
/// contact is absent when it may not be read; the names of users are everybody's.
[[nodiscard]] ContactInfo contactInfoOf(ReadableRecords& records, const ObjectID<Contact>& id);

/// A role with its destination, as `contactInfoOf` resolves it.
[[nodiscard]] ContactRole contactRoleOf(ReadableRecords& records, AnyRole role);

/// The names that the database gives to the extra fields of contacts.
[[nodiscard]] ExtraFieldsNamer contactFieldsNamer(ReadableRecords& records);

}  // namespace kestrel::host
