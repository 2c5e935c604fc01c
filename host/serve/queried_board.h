#pragma once

#include <host/serve/http_message.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/runtime/runtime.h>
#include <string>
#include <vector>

namespace kestrel::host {

/// A board as the query of an address asks for it:
///
///     kind       "opportunities", which is what is meant without it, or "projects"
///     pipeline   the key of the pipeline; without it the usual one
///     user, category, type, keyword
///                the key of what the cards are narrowed to; a type only of opportunities
///     created, closes, due
///                the name of a range of dates; "closes" only of opportunities, "due" only of projects
///     sort, order
///                the name of a sort key, and "forward" or "reverse"; what is usual without them
struct QueriedBoard {
    BoardKind kind{};
    PipelineDefinition definition;
    BoardConfig config;
    PipelineBoardSortDescriptor sort;
    bool isFiltered{};
};

/// WrongUsage for a value that means nothing, RecordMissing for a pipeline that there is not, and a Refusal when there
/// is none to show.
[[nodiscard]] QueriedBoard queriedBoard(const HTTPRequest& request, Runtime& runtime);

/// A whole number of a query; absent when it is not given. WrongUsage for anything else.
[[nodiscard]] std::optional<std::int64_t> numberIn(const HTTPRequest& request, const std::string& key);

}  // namespace kestrel::host
