#pragma once

#include <host/store/record_writer.h>
#include <kestrel/boards/change_options.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>
#include <cstdint>
#include <optional>

/// What users do with the cards of boards, within a change of the database. Each gives back why it refuses, with
/// nothing written, or nothing. What the user may not read, or is deleted, is not there.
namespace kestrel::host {

/// Moves a card to another stage, or begins another stay in the one that it is in. What could refuse it is asked in
/// the order of the errors.
///
/// The stay begins at the date that is given, or now. The current row of the history ends where it does, though never
/// before its own start, unless it has ended already. A new row names both stages and both pipelines, the user, the
/// note, and an end if one is given; it becomes the record's current one. An opportunity's probability is brought into
/// the band of its stage.
///
/// A database keeps no sets of activities, so none are created, whatever is asked for; what a stage demands is for
/// whoever asks the user to see to.
[[nodiscard]] std::optional<ChangeStageError> moveToStage(RecordWriter& records, const ChangeStageOptions& options);

/// Changes the outcome of an opportunity and its reason; the outcome before is kept. One that is closed, but for
/// suspended ones, is complete from then on unless it was before; one that is opened again is not. Nothing is written
/// when outcome and reason are the same.
[[nodiscard]] std::optional<ChangeStateError> setState(RecordWriter& records, const ObjectID<Opportunity>& id,
                                                       const ChangeStateOptions& options);

/// Changes the status of a project; the status before is kept. Nothing is written when it is the same.
[[nodiscard]] std::optional<ChangeStatusError> setStatus(RecordWriter& records, const ObjectID<Project>& id,
                                                         std::int64_t statusCode);

}  // namespace kestrel::host
