#pragma once

#include <host/serve/http_message.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/runtime/runtime.h>
#include <string>

namespace kestrel::host {

/// The board that the query of a request asks for, as its page draws it: the pipelines to choose from, the pickers of
/// filter and order, the filter in words, and the columns with their first cards. Each card carries what it is dragged
/// as. See QueriedBoard for the query.
[[nodiscard]] std::string boardJSON(const HTTPRequest& request, Runtime& runtime, const CalendarMoment& at);

/// More cards of one column of that board: those of the stage with the key "stage", from the one with the number
/// "from".
[[nodiscard]] std::string columnJSON(const HTTPRequest& request, Runtime& runtime, const CalendarMoment& at);

}  // namespace kestrel::host
