#include <fmt/format.h>
#include <host/board/board_query.h>
#include <host/failure.h>
#include <host/serve/queried_board.h>
#include <host/services/value_of.h>
#include <kestrel/services/pipeline_board_service.h>

#include <algorithm>
#include <charconv>

namespace kestrel::host {
namespace {

template <class Record>
std::optional<ObjectID<Record>> identifierIn(const HTTPRequest& request, const std::string& key) {
    return numberIn(request, key).transform([](std::int64_t number) { return ObjectID<Record>(number); });
}

/// The case that a key of the query names.
template <Enumeration E>
std::optional<E> caseIn(const HTTPRequest& request, const std::string& key) {
    const auto name = request.parameter(key);
    if (!name || name->empty()) return std::nullopt;
    const auto found = fromCaseName<E>(*name);
    if (!found) throw WrongUsage(fmt::format("\"{}\" is no value of {}", *name, key));
    return found;
}

template <class Filter>
void narrow(Filter& filter, const HTTPRequest& request) {
    filter.userID = identifierIn<User>(request, "user");
    filter.categoryID = identifierIn<Category>(request, "category");
    filter.keywordID = identifierIn<Keyword>(request, "keyword");
    filter.createDate = caseIn<PipelineBoardDateRange>(request, "created");
}

PipelineDefinition definitionIn(const HTTPRequest& request, Runtime& runtime, BoardKind kind) {
    const auto definitions = valueOf(runtime[services::pipelineBoard].fetchPipelines(kind));
    if (const auto wanted = identifierIn<PipelineDefinition>(request, "pipeline")) {
        const auto found = std::ranges::find(definitions, *wanted, &PipelineDefinition::objectID);
        if (found == definitions.end()) throw RecordMissing(wanted->stringValue());
        return *found;
    }
    const PipelineDefinition* usual = usualDefinition(definitions);
    if (usual == nullptr) throw Refusal(noPipelineText(kind));
    return *usual;
}

}  // namespace

std::optional<std::int64_t> numberIn(const HTTPRequest& request, const std::string& key) {
    const auto text = request.parameter(key);
    if (!text || text->empty()) return std::nullopt;
    std::int64_t number = 0;
    const char* const start = &text->front();
    const char* const end = start + text->size();
    const auto [stop, problem] = std::from_chars(start, end, number);
    if (problem != std::errc() || stop != end || number < 0)
        throw WrongUsage(fmt::format("\"{}\" is no value of {}", *text, key));
    return number;
}

QueriedBoard queriedBoard(const HTTPRequest& request, Runtime& runtime) {
    const BoardKind kind = caseIn<BoardKind>(request, "kind").value_or(BoardKind::opportunities);
    PipelineDefinition definition = definitionIn(request, runtime, kind);
    const auto sortKey = caseIn<PipelineBoardSortKey>(request, "sort");
    const auto order = caseIn<PipelineBoardSortOrder>(request, "order");
    if (kind == BoardKind::projects) {
        ProjectBoardFilter filter{.pipelineDefinitionID = definition.objectID()};
        narrow(filter, request);
        filter.dueDate = caseIn<PipelineBoardDateRange>(request, "due");
        const PipelineBoardSortDescriptor sort(sortKey.value_or(PipelineBoardSortDescriptor::projectDefault().key),
                                               order);
        return {.kind = kind,
                .definition = std::move(definition),
                .config = BoardConfig::project(filter, sort),
                .sort = sort,
                .isFiltered = filter.isFiltered()};
    }
    OpportunityBoardFilter filter{.pipelineDefinitionID = definition.objectID()};
    narrow(filter, request);
    filter.opportunityTypeID = identifierIn<OpportunityType>(request, "type");
    filter.closeDate = caseIn<PipelineBoardDateRange>(request, "closes");
    const PipelineBoardSortDescriptor sort(sortKey.value_or(PipelineBoardSortDescriptor::opportunityDefault().key),
                                           order);
    return {.kind = kind,
            .definition = std::move(definition),
            .config = BoardConfig::opportunity(filter, sort),
            .sort = sort,
            .isFiltered = filter.isFiltered()};
}

}  // namespace kestrel::host
