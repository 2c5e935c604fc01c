#pragma once

#include <kestrel/services/pipeline_board_filter_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// A PipelineBoardFilterService that answers as a test prepares it, and keeps what it is asked.
class RecordingPipelineBoardFilterService final : public PipelineBoardFilterService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::vector<BoardUser>, ReadError>(BoardKind, const ObjectID<PipelineDefinition>&)>
            fetchUsers;
        Stub<AnyPublisher<std::vector<Category>, ReadError>()> fetchCategories;
        Stub<AnyPublisher<std::vector<OpportunityType>, ReadError>()> fetchOpportunityTypes;
        Stub<AnyPublisher<std::vector<Keyword>, ReadError>()> fetchKeywords;
        Stub<AnyPublisher<std::string, ReadError>(const OpportunityBoardFilter&)> describeFilter;
        Stub<AnyPublisher<std::string, ReadError>(const ProjectBoardFilter&)> describeProjectFilter;
        Stub<AnyPublisher<Void>()> observeChanges;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::vector<BoardUser>, ReadError> fetchUsers(
        BoardKind kind, const ObjectID<PipelineDefinition>& pipeline) override {
        return on.fetchUsers(kind, pipeline);
    }
    [[nodiscard]] AnyPublisher<std::vector<Category>, ReadError> fetchCategories() override {
        return on.fetchCategories();
    }
    [[nodiscard]] AnyPublisher<std::vector<OpportunityType>, ReadError> fetchOpportunityTypes() override {
        return on.fetchOpportunityTypes();
    }
    [[nodiscard]] AnyPublisher<std::vector<Keyword>, ReadError> fetchKeywords() override { return on.fetchKeywords(); }
    [[nodiscard]] AnyPublisher<std::string, ReadError> describeFilter(const OpportunityBoardFilter& filter) override {
        return on.describeFilter(filter);
    }
    [[nodiscard]] AnyPublisher<std::string, ReadError> describeProjectFilter(
        const ProjectBoardFilter& filter) override {
        return on.describeProjectFilter(filter);
    }
    [[nodiscard]] AnyPublisher<Void> observeChanges() override { return on.observeChanges(); }
};

}  // namespace kestrel
