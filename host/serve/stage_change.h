#pragma once

#include <kestrel/foundation/calendar.h>
#include <kestrel/runtime/runtime.h>
#include <string>
#include <string_view>

/// Cards that are dropped on a column, or moved there otherwise. What is asked for comes as a JSON object:
///
///     card    what the card is dragged as: the keyed form of PipelineBoardCardPasteboardData, as text
///     stage   the key of the column's stage
///     start, end, note
///             what the user entered in the sheet; "2017-03-14T09:30", by the clocks of the user's zone
namespace kestrel::host {

/// What the sheet of a change asks for: the options with which it begins, and what the stage demands. A RequestRefusal
/// when the card cannot be dropped there.
[[nodiscard]] std::string stageChangeJSON(std::string_view body, Runtime& runtime, const CalendarMoment& at);

/// Does the change. A RequestRefusal when something that is demanded is missing, or the board refuses it.
[[nodiscard]] std::string changeStage(std::string_view body, Runtime& runtime, const CalendarMoment& at);

}  // namespace kestrel::host
