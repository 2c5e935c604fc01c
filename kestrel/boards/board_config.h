#pragma once

#include <kestrel/boards/board_filter.h>
#include <kestrel/boards/sort_descriptor.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/choice.h>
#include <optional>

namespace kestrel {

/// How a board of opportunities was left: filter and order. Keys "_0" and "_1".
struct OpportunityBoardConfig {
    using Coded = void;

    /// Absent when the board was never narrowed.
    std::optional<OpportunityBoardFilter> filter{};
    /// By default the earliest forecast close first.
    PipelineBoardSortDescriptor sortDescriptor = PipelineBoardSortDescriptor::opportunityDefault();

    friend bool operator==(const OpportunityBoardConfig&, const OpportunityBoardConfig&) = default;
};
extern template struct Codec<OpportunityBoardConfig>;

/// How a board of projects was left: filter and order. Keys "_0" and "_1".
struct ProjectBoardConfig {
    using Coded = void;

    /// Absent when the board was never narrowed.
    std::optional<ProjectBoardFilter> filter{};
    /// By default the earliest due date first.
    PipelineBoardSortDescriptor sortDescriptor = PipelineBoardSortDescriptor::projectDefault();

    friend bool operator==(const ProjectBoardConfig&, const ProjectBoardConfig&) = default;
};
extern template struct Codec<ProjectBoardConfig>;

/// A board's saved state. In keyed form one key, "opportunity" or "project", holding the filter under "_0", left out
/// when absent, and the sort descriptor under "_1".
class BoardConfig : public Choice<BoardConfig, OpportunityBoardConfig, ProjectBoardConfig> {
  public:
    using Coded = void;

    /// Of a board of opportunities.
    [[nodiscard]] static BoardConfig opportunity(std::optional<OpportunityBoardFilter> filter,
                                                 PipelineBoardSortDescriptor sortDescriptor) {
        return BoardConfig(OpportunityBoardConfig{std::move(filter), sortDescriptor});
    }
    /// Of a board of projects.
    [[nodiscard]] static BoardConfig project(std::optional<ProjectBoardFilter> filter,
                                             PipelineBoardSortDescriptor sortDescriptor) {
        return BoardConfig(ProjectBoardConfig{std::move(filter), sortDescriptor});
    }

    [[nodiscard]] std::optional<OpportunityBoardConfig> opportunity() const {
        return payload<OpportunityBoardConfig>();
    }
    [[nodiscard]] std::optional<ProjectBoardConfig> project() const { return payload<ProjectBoardConfig>(); }

    friend bool operator==(const BoardConfig&, const BoardConfig&) = default;

  private:
    friend CodingAccess;
    explicit BoardConfig(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<BoardConfig>;

}  // namespace kestrel
