#include <host/board/board_query.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_pipeline_board_filter_service.h>
#include <host/store/record_lists.h>

namespace kestrel::host {

AnyPublisher<std::vector<BoardUser>, ReadError> SQLitePipelineBoardFilterService::fetchUsers(
    BoardKind kind, const ObjectID<PipelineDefinition>& pipeline) {
    return reading([context = context_, kind, pipeline] {
        return context->read([&](ReadableRecords& records, const Directory& directory) {
            return usersOnBoard(records, directory, kind, pipeline);
        });
    });
}

AnyPublisher<std::vector<Category>, ReadError> SQLitePipelineBoardFilterService::fetchCategories() {
    return reading([context = context_] {
        return context->read(
            [](ReadableRecords& records, const Directory&) { return listedBy(records, &Category::order); });
    });
}

AnyPublisher<std::vector<OpportunityType>, ReadError> SQLitePipelineBoardFilterService::fetchOpportunityTypes() {
    return reading([context = context_] {
        return context->read(
            [](ReadableRecords& records, const Directory&) { return listedBy(records, &OpportunityType::order); });
    });
}

AnyPublisher<std::vector<Keyword>, ReadError> SQLitePipelineBoardFilterService::fetchKeywords() {
    return reading([context = context_] {
        return context->read(
            [](ReadableRecords& records, const Directory&) { return listedBy(records, &Keyword::name); });
    });
}

AnyPublisher<std::string, ReadError> SQLitePipelineBoardFilterService::describeFilter(
    const OpportunityBoardFilter& filter) {
    return reading([context = context_, filter] {
        return context->read([&](ReadableRecords& records, const Directory& directory) {
            return filter.filterString(boardUsers(directory), listedBy(records, &Category::order),
                                       listedBy(records, &OpportunityType::order));
        });
    });
}

AnyPublisher<std::string, ReadError> SQLitePipelineBoardFilterService::describeProjectFilter(
    const ProjectBoardFilter& filter) {
    return reading([context = context_, filter] {
        return context->read([&](ReadableRecords& records, const Directory& directory) {
            return filter.filterString(boardUsers(directory), listedBy(records, &Category::order));
        });
    });
}

AnyPublisher<Void> SQLitePipelineBoardFilterService::observeChanges() {
    return context_->changes();
}

}  // namespace kestrel::host
