#pragma once

#include <SQLiteCpp/Database.h>
#include <host/board/board_options.h>
#include <kestrel/access/permission_checker.h>
#include <kestrel/boards/board.h>
#include <kestrel/foundation/calendar.h>

namespace kestrel::host {

/// The board of the opportunities that a user may read and that the view's filter lets through, as of a moment. What
/// the user may not read is neither shown nor counted; the names of companies count as read. Cards name the people with
/// a role on the deal, and what comes next for the deal, its companies and the people of both: see DealLinks.
[[nodiscard]] BoardData boardOf(SQLite::Database& database, const BoardLists& lists, const PermissionChecker& checker,
                                const BoardView& view, const CalendarMoment& at);

/// What the view's filter narrows to, in one line in the user's language; empty when it narrows nothing.
[[nodiscard]] std::string filterText(const BoardLists& lists, const BoardView& view);

}  // namespace kestrel::host
