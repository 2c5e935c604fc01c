#include <fmt/format.h>
#include <host/board/board_options.h>
#include <host/board/board_rendering.h>
#include <host/command/board_command.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>
#include <kestrel/services/pipeline_board_filter_service.h>
#include <kestrel/services/pipeline_board_service.h>

#include <algorithm>
#include <utility>

namespace kestrel::host {
namespace {

constexpr std::size_t usualLimit = 10;

/// The board with the first cards of each column; the counts stay those of all cards.
BoardData limited(BoardData board, std::size_t limit) {
    for (BoardColumnData& column : board.columns) {
        if (column.cards.size() > limit)
            column.cards.erase(column.cards.begin() + static_cast<std::ptrdiff_t>(limit), column.cards.end());
    }
    return board;
}

template <class Record>
std::vector<Record> byKey(std::vector<Record> records) {
    std::ranges::sort(records, {}, &Record::objectID);
    return records;
}

BoardLists listsOf(Runtime& runtime) {
    PipelineBoardFilterService& filters = runtime[ServiceKey<PipelineBoardFilterService>{}];
    return {.directory = valueOf(runtime[host_services::records].fetchDirectory()),
            .categories = byKey(valueOf(filters.fetchCategories())),
            .types = byKey(valueOf(filters.fetchOpportunityTypes())),
            .keywords = byKey(valueOf(filters.fetchKeywords())),
            .definitions = byKey(valueOf(runtime[services::pipelineBoard].fetchPipelines(BoardKind::opportunities)))};
}

BoardPicture pictureOf(const BoardOptions& options) {
    Runtime runtime = makeUserRuntime(options.database, options.user);
    const User user = valueOf(runtime[host_services::records].fetchUser());
    BoardPicture picture{.userName = shownName(user), .limit = options.limit.value_or(usualLimit)};
    if (options.at) picture.at.now = momentOf(*options.at, picture.at.calendar);
    const auto saved = options.config ? readBoardConfig(*options.config) : std::nullopt;
    const BoardLists lists = listsOf(runtime);
    const BoardView view = boardView(lists, saved, options.filters, options.sort);
    picture.board = valueOf(
        runtime[services::pipelineBoard].fetchBoard(BoardConfig::opportunity(view.filter, view.sort), picture.at));
    const auto definition =
        std::ranges::find(lists.definitions, view.filter.pipelineDefinitionID, &PipelineDefinition::objectID);
    picture.pipelineName = definition->name.value_or(definition->objectID().stringValue());
    picture.filterText = valueOf(runtime[ServiceKey<PipelineBoardFilterService>{}].describeFilter(view.filter));
    picture.sortText = fmt::format("{}, {}", localizedName(view.sort.key), localizedName(view.sort.order));
    if (options.config) writeBoardConfig(*options.config, configOf(view));
    return picture;
}

}  // namespace

void boardCommand(const BoardOptions& options, Output& output, const Terminal& terminal) {
    BoardPicture picture = pictureOf(options);
    if (!options.isJSON) {
        output.write(rendered(picture, terminal));
        return;
    }
    if (options.limit.value_or(0) != 0) picture.board = limited(std::move(picture.board), *options.limit);
    const auto json = encodeJSON(picture.board);
    if (!json) throw Failure(json.error().message());
    writeJSONLine(*json, output, terminal);
}

}  // namespace kestrel::host
