#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/pipeline_board_filter_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// What the boards of a database can be narrowed to. The lists leave out what is deleted, and have what pick lists do
/// not offer any more: records may still be filed under it.
class SQLitePipelineBoardFilterService final : public PipelineBoardFilterService {
  public:
    explicit SQLitePipelineBoardFilterService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<std::vector<BoardUser>, ReadError> fetchUsers(
        BoardKind kind, const ObjectID<PipelineDefinition>& pipeline) override;
    [[nodiscard]] AnyPublisher<std::vector<Category>, ReadError> fetchCategories() override;
    [[nodiscard]] AnyPublisher<std::vector<OpportunityType>, ReadError> fetchOpportunityTypes() override;
    [[nodiscard]] AnyPublisher<std::vector<Keyword>, ReadError> fetchKeywords() override;
    [[nodiscard]] AnyPublisher<std::string, ReadError> describeFilter(const OpportunityBoardFilter& filter) override;
    [[nodiscard]] AnyPublisher<std::string, ReadError> describeProjectFilter(const ProjectBoardFilter& filter) override;
    [[nodiscard]] AnyPublisher<Void> observeChanges() override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
