#pragma once

#include <kestrel/foundation/calendar.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/runtime/runtime.h>
#include <string>

/// The pages of records, as the page draws them.
namespace kestrel::host {

/// A contact, a company, an opportunity or a project: what there is to say about it in sections, and what happened
/// around it. RecordMissing, or a Failure that says why, when the user may not see it; WrongType for other records.
[[nodiscard]] std::string recordJSON(const AnyObjectID& id, Runtime& runtime, const CalendarMoment& at);

/// The contacts that a search finds, by name.
[[nodiscard]] std::string contactsJSON(const std::string& search, Runtime& runtime);

}  // namespace kestrel::host
