#pragma once

#include <kestrel/boards/board.h>
#include <kestrel/boards/board_filter.h>
#include <kestrel/boards/board_user.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/reactive/void.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <memory>
#include <string>
#include <vector>

namespace kestrel {

/// What a board can be narrowed to.
class PipelineBoardFilterService : public ServiceProtocol {
  public:
    /// Who has something on the board, and how much.
    [[nodiscard]] virtual AnyPublisher<std::vector<BoardUser>, ReadError> fetchUsers(
        BoardKind kind, const ObjectID<PipelineDefinition>& pipeline) = 0;
    /// The categories, in their order.
    [[nodiscard]] virtual AnyPublisher<std::vector<Category>, ReadError> fetchCategories() = 0;
    /// The types of opportunities, in their order.
    [[nodiscard]] virtual AnyPublisher<std::vector<OpportunityType>, ReadError> fetchOpportunityTypes() = 0;
    /// The keywords, by name.
    [[nodiscard]] virtual AnyPublisher<std::vector<Keyword>, ReadError> fetchKeywords() = 0;
    /// The filter in one line, in the user's language.
    [[nodiscard]] virtual AnyPublisher<std::string, ReadError> describeFilter(const OpportunityBoardFilter& filter) = 0;
    /// The filter in one line, in the user's language.
    [[nodiscard]] virtual AnyPublisher<std::string, ReadError> describeProjectFilter(
        const ProjectBoardFilter& filter) = 0;
    /// A value whenever these lists may have changed.
    [[nodiscard]] virtual AnyPublisher<Void> observeChanges() = 0;
};

template <>
class Forwarding<PipelineBoardFilterService> : public PipelineBoardFilterService {
  public:
    [[nodiscard]] virtual std::shared_ptr<PipelineBoardFilterService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::vector<BoardUser>, ReadError> fetchUsers(
        BoardKind kind, const ObjectID<PipelineDefinition>& pipeline) override {
        return target()->fetchUsers(kind, pipeline);
    }
    [[nodiscard]] AnyPublisher<std::vector<Category>, ReadError> fetchCategories() override {
        return target()->fetchCategories();
    }
    [[nodiscard]] AnyPublisher<std::vector<OpportunityType>, ReadError> fetchOpportunityTypes() override {
        return target()->fetchOpportunityTypes();
    }
    [[nodiscard]] AnyPublisher<std::vector<Keyword>, ReadError> fetchKeywords() override {
        return target()->fetchKeywords();
    }
    [[nodiscard]] AnyPublisher<std::string, ReadError> describeFilter(const OpportunityBoardFilter& filter) override {
        return target()->describeFilter(filter);
    }
    [[nodiscard]] AnyPublisher<std::string, ReadError> describeProjectFilter(
        const ProjectBoardFilter& filter) override {
        return target()->describeProjectFilter(filter);
    }
    [[nodiscard]] AnyPublisher<Void> observeChanges() override { return target()->observeChanges(); }
};

}  // namespace kestrel
