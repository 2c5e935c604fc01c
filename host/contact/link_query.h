#pragma once

#include <host/store/readable_records.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/link_target.h>
#include <kestrel/relationships/contact_link.h>
#include <kestrel/services/contact_list.h>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::host {

/// The target that links may have of that identifier; absent when contacts cannot be linked to such records.
[[nodiscard]] std::optional<LinkTarget> linkTargetOf(const AnyObjectID& id);
/// The entities of the records that links may point at.
[[nodiscard]] std::vector<std::string> linkTargetEntities();

/// The connections that point at the query's record. A Failure when the user may not see that record.
///
/// A company, an opportunity or a project has those of the contacts with a role there; a contact those of the
/// relationships that other contacts have to it, but not of those that it has itself; an email those of the contacts
/// that it is linked to. No connection points at a record of another kind, nor at a single occurrence of an
/// appointment. What is deleted, or not to be read by the user, is left out. In the order of the roles' and
/// relationships' keys.
[[nodiscard]] std::vector<LinkedContact> answer(ReadableRecords& records, const ContactLinkQuery& query);

}  // namespace kestrel::host
