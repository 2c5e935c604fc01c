#pragma once

#include <host/store/readable_records.h>
#include <host/terminal/output.h>
#include <kestrel/services/contact_list.h>
#include <optional>
#include <string>

namespace kestrel::host {

/// The contacts that a user may read, by family name, then given name, then key, whatever the case of the letters; one
/// with only one name stands by that, and those without any come last.
///
/// With a text to search for only those that have it, whatever the case of its letters, in one of their names, in the
/// name of a company where they have a role, or in an e-mail address. A text of digits and what people write between
/// them, "+49 (30) 1234-5", also finds the phone numbers that have these digits in a row.
[[nodiscard]] ContactList contactList(ReadableRecords& records, const ContactListQuery& query);

/// The list as an aligned table. `search` is what was searched for, if anything.
[[nodiscard]] std::string rendered(const ContactList& list, const std::optional<std::string>& search,
                                   const Terminal& terminal);
/// The list as a JSON object: "total", and under "contacts" an array.
[[nodiscard]] std::string listJSON(const ContactList& list);

}  // namespace kestrel::host
