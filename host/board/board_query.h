#pragma once

#include <host/store/readable_records.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/board_user.h>
#include <kestrel/foundation/calendar.h>
#include <span>
#include <string>
#include <vector>

namespace kestrel::host {

/// The board that a configuration describes, of the opportunities or projects that the user may read and that the
/// filter lets through, as of a moment. What the user may not read is neither shown nor counted; the names of companies
/// count as read. Cards name the people with a role on the record, and what comes next for it, its companies and the
/// people of both: see DealLinks. A database keeps neither companies nor keywords of projects.
///
/// Without a filter, of the pipeline that such boards usually show; a Refusal when there is none. RecordMissing when
/// there is no such pipeline.
[[nodiscard]] BoardData boardOf(ReadableRecords& records, const Directory& directory, const BoardConfig& config,
                                const CalendarMoment& at);

/// The pipeline templates that boards of a kind can show, retired ones included, which records may still be in, by
/// name and key.
[[nodiscard]] std::vector<PipelineDefinition> pipelinesOf(ReadableRecords& records, BoardKind kind);
/// The one that boards show when nobody has chosen: the active one with the least key. Null when there is none.
[[nodiscard]] const PipelineDefinition* usualDefinition(std::span<const PipelineDefinition> definitions);
[[nodiscard]] std::string noPipelineText(BoardKind kind);

/// The users whom records of a pipeline are assigned to that the user may read, with how many, by name and key.
[[nodiscard]] std::vector<BoardUser> usersOnBoard(ReadableRecords& records, const Directory& directory, BoardKind kind,
                                                  const ObjectID<PipelineDefinition>& pipeline);

/// Everybody whom a filter can name.
[[nodiscard]] std::vector<BoardUser> boardUsers(const Directory& directory);

}  // namespace kestrel::host
