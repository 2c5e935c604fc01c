#include <fmt/format.h>
#include <host/board/stage_change_message.h>
#include <host/serve/local_moment.h>
#include <host/serve/request_refusal.h>
#include <host/serve/stage_change.h>
#include <host/services/sqlite_pipeline_board_service.h>
#include <host/services/value_of.h>
#include <host/terminal/json_object.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/coding/json.h>
#include <kestrel/coding/wire_form.h>
#include <kestrel/services/pipeline_board_service.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kestrel {
namespace host {

/// What the page sends.
struct StageChangeRequest {
    using Coded = void;

    std::string card{};
    std::int64_t stage{};
    std::optional<std::string> start{};
    std::optional<std::string> end{};
    std::optional<std::string> note{};
};

}  // namespace host

KESTREL_FIELDS(host::StageChangeRequest, card, stage, start, end, note);

}  // namespace kestrel

namespace kestrel::host {
namespace {

/// A change that has been read: the card as it was when it was picked up, and where it is to go.
struct Drop {
    StageChangeRequest request;
    PipelineBoardCardPasteboardData card;
    ObjectID<PipelineStageDefinition> stageID;
    std::string stageName{};
};

RequestRefusal unreadable(const DecodingError& error) {
    return {HTTPStatus::badRequest, {"What was dropped cannot be read.", error.message()}};
}

RequestRefusal refused(ChangeStageError error) {
    return {HTTPStatus::conflict, userErrorMessage(error)};
}

/// The user may move the card; the database is busy, or its disk is full.
RequestRefusal unwritten(const Failure& failure) {
    return {HTTPStatus::conflict, {"The card could not be moved.", fmt::format("{}. Try again.", failure.what())}};
}

PipelineBoardCardPasteboardData droppedCard(const std::string& text) {
    const auto types = PipelineBoardCardPasteboardData::readableTypeIdentifiersForItemProvider();
    const auto card = PipelineBoardCardPasteboardData::object(Data::fromText(text), types.front());
    if (card) return **card;
    if (const auto* problem = std::get_if<DecodingError>(&card.error())) throw unreadable(*problem);
    throw RequestRefusal(HTTPStatus::badRequest, UserErrorMessage::titleOnly("What was dropped is no card."));
}

/// The stages that a card can go to are those of its pipeline's template.
std::string nameOfStage(const PipelineBoardCardPasteboardData& card, const ObjectID<PipelineStageDefinition>& id,
                        Runtime& runtime) {
    if (!card.pipelineId()) throw refused(ChangeStageError::noPipeline);
    const auto stages = valueOf(runtime[services::pipelineBoard].fetchStages(*card.pipelineId()), *card.pipelineId());
    const auto found = std::ranges::find(stages, id, &PipelineStageDefinition::objectID);
    if (found == stages.end()) throw refused(ChangeStageError::pipelineMissingStage);
    return found->name.value_or("");
}

Drop dropIn(std::string_view body, Runtime& runtime) {
    auto request = decodeJSON<StageChangeRequest>(body);
    if (!request) throw unreadable(request.error());
    auto card = droppedCard(request->card);
    const ObjectID<PipelineStageDefinition> stageID(request->stage);
    std::string stageName = nameOfStage(card, stageID, runtime);
    return {
        .request = *std::move(request), .card = std::move(card), .stageID = stageID, .stageName = std::move(stageName)};
}

/// A stay begins at some time; a database knows of nothing else that a stage demands.
constexpr ChangeStageOptions::Requirements requirements{.start = true};

/// With which a change begins, before the user has said anything.
ChangeStageOptions optionsOf(const Drop& drop, const CalendarMoment& at) {
    auto options = ChangeStageOptions::defaultOptions(drop.stageName, drop.card.id(), drop.stageID, at.now);
    options.requirements = requirements;
    options.isRepeatingStage = drop.card.stageId() == drop.stageID;
    return options;
}

RequestRefusal incomplete(std::string title, std::string message) {
    return {HTTPStatus::unprocessableContent, {std::move(title), std::move(message)}};
}

std::optional<std::string> entered(const std::optional<std::string>& text) {
    return text && text->find_first_not_of(" \t\r\n") != text->npos ? text : std::nullopt;
}

std::optional<Date> momentIn(const std::optional<std::string>& text, std::string_view what, const Calendar& calendar) {
    const auto given = entered(text);
    if (!given) return std::nullopt;
    const auto moment = momentOfLocalText(*given, calendar);
    if (!moment)
        throw incomplete(fmt::format("The {} is no date.", what), "Enter a day and a time of the years 1 to 4000.");
    return moment;
}

/// With what the user entered in the sheet.
ChangeStageOptions completed(const ChangeStageOptions& options, const StageChangeRequest& request,
                             const Calendar& calendar) {
    const auto start = momentIn(request.start, "start", calendar);
    const auto end = momentIn(request.end, "end", calendar);
    const auto note = entered(request.note);
    const auto demanded = options.requirements.value_or(ChangeStageOptions::Requirements());
    if (demanded.start && !start) throw incomplete("The start is missing.", "Say when the card came into the stage.");
    if (demanded.end && !end) throw incomplete("The end is missing.", "Say when the card left the stage.");
    if (demanded.note && !note) throw incomplete("The note is missing.", "Say why the card is moved.");
    if (start && end && *end < *start) throw incomplete("The end is before the start.", "Change one of them.");
    return {.id = options.id,
            .stageID = options.stageID,
            .stageName = options.stageName,
            .start = start,
            .end = end,
            .note = note,
            .createActivities = options.createActivities,
            .requirements = options.requirements,
            .isRepeatingStage = options.isRepeatingStage,
            .hasCompletedSheet = true};
}

}  // namespace

std::string stageChangeJSON(std::string_view body, Runtime& runtime, const CalendarMoment& at) {
    const Drop drop = dropIn(body, runtime);
    const ChangeStageOptions options = optionsOf(drop, at);
    const auto demanded = options.requirements.value_or(ChangeStageOptions::Requirements());
    const auto shown = [&](const std::optional<Date>& date) {
        return date ? localMomentText(*date, at.calendar) : std::string();
    };
    return JSONObject()
        .add("stageName", options.stageName.value_or(""))
        .add("isRepeatingStage", options.isRepeatingStage)
        .add("start", shown(options.start.get()))
        .add("end", shown(options.end.get()))
        .add("note", options.note.get().value_or(""))
        .add("timeZone", at.calendar.timeZoneName())
        .add("requirements",
             JSONObject().add("start", demanded.start).add("end", demanded.end).add("note", demanded.note))
        .json();
}

std::string changeStage(std::string_view body, Runtime& runtime, const CalendarMoment& at) {
    const Drop drop = dropIn(body, runtime);
    const ChangeStageOptions options = completed(optionsOf(drop, at), drop.request, at.calendar);
    std::optional<ChangeStageError> refusal;
    const auto changing = runtime[services::pipelineBoard].changeStage(options).sink(
        [&](const Completion<ChangeStageError>& completion) { refusal = completion.failure(); });
    if (refusal) {
        const auto board = std::dynamic_pointer_cast<SQLitePipelineBoardService>(runtime.find(services::pipelineBoard));
        if (board && board->changeFailure()) throw unwritten(*board->changeFailure());
        throw refused(*refusal);
    }
    return JSONObject().add("stageName", drop.stageName).json();
}

}  // namespace kestrel::host
