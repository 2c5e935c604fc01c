#pragma once

#include <host/store/readable_records.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/identity/pipeline_board_object_id.h>
#include <kestrel/records/company.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrel::host {

/// What is behind a card of a board: the record, where it stands, and how it came there.
struct DealDetails {
    std::variant<Opportunity, Project> record;
    /// The names of the pipeline and of the stage that it is in; absent when it is in none.
    std::optional<std::string> pipelineName{};
    std::optional<std::string> stageName{};
    std::optional<std::string> typeName{};
    /// Who it is assigned to.
    std::optional<std::string> assigneeName{};
    /// Those that the user may read, in the order of their keys. A database keeps none of projects.
    std::vector<Company> companies{};
    /// Its stays in stages, the latest first.
    std::vector<PipelineStageHistory> history{};
};

/// A Failure when there is no such record, or the user may not read it.
[[nodiscard]] DealDetails dealDetailsOf(ReadableRecords& records, const PipelineBoardObjectID& id);

}  // namespace kestrel::host
