#include <fmt/format.h>
#include <host/board/board_changes.h>
#include <host/board/board_query.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_pipeline_board_service.h>
#include <host/store/record_lists.h>
#include <host/terminal/coded_json.h>

namespace kestrel::host {
namespace {

BoardKind kindOf(const BoardConfig& config) {
    return config.project() ? BoardKind::projects : BoardKind::opportunities;
}

BoardConfig usualConfig(BoardKind kind) {
    return kind == BoardKind::projects
               ? BoardConfig::project(std::nullopt, PipelineBoardSortDescriptor::projectDefault())
               : BoardConfig::opportunity(std::nullopt, PipelineBoardSortDescriptor::opportunityDefault());
}

std::optional<ObjectID<PipelineDefinition>> pipelineOf(const BoardConfig& config) {
    return config.match([](const auto& board) {
        return board.filter.transform([](const auto& filter) { return filter.pipelineDefinitionID; });
    });
}

/// The name of the preference that holds how a user left the boards of a kind.
std::string preferenceName(const HostContext& context, BoardKind kind, const User& user) {
    return fmt::format("Board:{}:{}:{}", caseName(kind), user.objectID().stringValue(),
                       std::filesystem::absolute(context.file()).lexically_normal().native());
}

/// What `change` refuses, if anything. Without a database there is no record to change; in one that cannot be written,
/// and without a user who is known to it, nothing may be. Leaves in `failure` what the error does not say.
template <class Error, class Change>
std::optional<Error> refusalOf(HostContext& context, std::optional<Failure>& failure, Error notFound,
                               const Change& change) {
    failure.reset();
    try {
        return context.write(change);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const DatabaseMissing&) {
        return notFound;
    } catch (const RecordMissing&) {
        return notFound;
    } catch (const Refusal&) {
        return Error::noWritePermission;
    } catch (const std::exception& problem) {
        failure.emplace(problem.what());
        return Error::noWritePermission;
    }
}

}  // namespace

AnyPublisher<Void> SQLitePipelineBoardService::boardDidChange() const {
    return context_->changes();
}

AnyPublisher<std::vector<PipelineDefinition>, ReadError> SQLitePipelineBoardService::fetchPipelines(BoardKind kind) {
    return reading([context = context_, kind] {
        return context->read([&](ReadableRecords& records, const Directory&) { return pipelinesOf(records, kind); });
    });
}

AnyPublisher<std::vector<PipelineStageDefinition>, ReadError> SQLitePipelineBoardService::fetchStages(
    const ObjectID<PipelineDefinition>& id) {
    return reading([context = context_, id] {
        return context->read([&](ReadableRecords& records, const Directory&) {
            (void)records.required(id);
            auto stages = listedBy(records, &PipelineStageDefinition::order);
            std::erase_if(stages, [&](const auto& stage) { return stage.pipelineDefinitionID != id.value(); });
            return stages;
        });
    });
}

AnyPublisher<BoardConfig, ReadError> SQLitePipelineBoardService::fetchBoardConfig(BoardKind kind) {
    return reading([context = context_, preferences = preferences_, kind] {
        return context->read([&](ReadableRecords& records, const Directory&) {
            const auto text = preferences->read<std::string>(preferenceName(*context, kind, records.user()));
            if (!text) return usualConfig(kind);
            const auto config = decodeJSON<BoardConfig>(*text);
            if (!config || kindOf(*config) != kind) return usualConfig(kind);
            const auto pipeline = pipelineOf(*config);
            return pipeline && !records.find(*pipeline) ? usualConfig(kind) : *config;
        });
    });
}

AnyPublisher<Never, UpdateError> SQLitePipelineBoardService::storeBoardConfig(const BoardConfig& config) {
    return completing([context = context_, preferences = preferences_, config = config] {
        const std::string name = context->read([&](ReadableRecords& records, const Directory&) {
            return preferenceName(*context, kindOf(config), records.user());
        });
        const auto written = preferences->write(coded(config), name);
        if (!written) throw Failure(written.error().localizedDescription);
    });
}

AnyPublisher<BoardData, ReadError> SQLitePipelineBoardService::fetchBoard(const BoardConfig& config,
                                                                          const CalendarMoment& at) {
    return reading([context = context_, config = config, at] {
        return context->read([&](ReadableRecords& records, const Directory& directory) {
            return boardOf(records, directory, config, at);
        });
    });
}

AnyPublisher<Never, ChangeStageError> SQLitePipelineBoardService::changeStage(const ChangeStageOptions& options) {
    return finishing<ChangeStageError>([context = context_, failure = changeFailure_, options] {
        return refusalOf(*context, *failure, ChangeStageError::objectiveNotFound,
                         [&](RecordWriter& records) { return moveToStage(records, options); });
    });
}

AnyPublisher<Never, ChangeStateError> SQLitePipelineBoardService::changeState(const ObjectID<Opportunity>& id,
                                                                              const ChangeStateOptions& options) {
    return finishing<ChangeStateError>([context = context_, failure = changeFailure_, id, options] {
        return refusalOf(*context, *failure, ChangeStateError::opportunityNotFound,
                         [&](RecordWriter& records) { return setState(records, id, options); });
    });
}

AnyPublisher<Never, ChangeStatusError> SQLitePipelineBoardService::changeStatus(const ObjectID<Project>& id,
                                                                                std::int64_t statusCode) {
    return finishing<ChangeStatusError>([context = context_, failure = changeFailure_, id, statusCode] {
        return refusalOf(*context, *failure, ChangeStatusError::projectNotFound,
                         [&](RecordWriter& records) { return setStatus(records, id, statusCode); });
    });
}

}  // namespace kestrel::host
