#include <kestrel/boards/board_card.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/coding/wire_form.h>

#include <algorithm>

namespace kestrel {

KESTREL_FIELDS(AvatarInfo, name, imageData);
KESTREL_FIELDS(OpportunityBoardCardData, id, title, linkedPeople, linkedCompanies, value, probability, type, pipelineId,
               stageId, nextActivities, categoryColor, stageStartDate, closeDate, avatarInfo, priority);
KESTREL_FIELDS(ProjectBoardCardData, id, title, linkedPeople, linkedCompanies, pipelineId, stageId, nextActivities,
               categoryColor, stageStartDate, dueDate, avatarInfo, priority);

template <>
struct CaseTable<BoardCardData> {
    static constexpr std::string_view typeName = "BoardCardData";
    static constexpr std::array rows{CaseRow{"opportunity", "_0"}, CaseRow{"project", "_0"}};
};
template struct Codec<BoardCardData>;

std::optional<std::vector<NextActivity>> nextActivities(const std::optional<ObjectID<Task>>& nextTaskId,
                                                        const std::optional<Date>& nextTaskDueDate,
                                                        const std::optional<ObjectID<Timeblock>>& nextAppointmentId,
                                                        const std::optional<Date>& nextAppointmentDate,
                                                        const std::optional<bool>& nextAppointmentIsAllDay,
                                                        const CalendarMoment& at) {
    std::vector<NextActivity> candidates;
    if (nextTaskId && nextTaskDueDate) {
        candidates.push_back(
            {.type = NextActivityType::task(*nextTaskId), .date = *nextTaskDueDate, .isAllDay = false});
    }
    if (nextAppointmentId && nextAppointmentDate) {
        candidates.push_back({.type = NextActivityType::appointment(*nextAppointmentId),
                              .date = *nextAppointmentDate,
                              .isAllDay = nextAppointmentIsAllDay.value_or(false)});
    }
    if (candidates.empty()) return std::nullopt;
    if (candidates.size() > 1) {
        const Date earliest = std::ranges::min(candidates, {}, &NextActivity::date).date;
        std::erase_if(candidates, [&](const NextActivity& activity) {
            return !at.calendar.isSameDay(activity.date, earliest) && !at.calendar.isToday(activity.date, at.now);
        });
    }
    return candidates;
}

OpportunityBoardCardData OpportunityBoardCardData::from(Facts facts, const CalendarMoment& at) {
    return {.id = facts.id,
            .title = std::move(facts.title),
            .linkedPeople = std::move(facts.linkedPeople),
            .linkedCompanies = std::move(facts.linkedCompanies),
            .value = facts.value,
            .probability = facts.probability,
            .type = std::move(facts.type),
            .pipelineId = facts.pipelineId,
            .stageId = facts.stageId,
            .nextActivities = kestrel::nextActivities(facts.nextTaskId, facts.nextTaskDueDate, facts.nextAppointmentId,
                                                      facts.nextAppointmentDate, facts.nextAppointmentIsAllDay, at),
            .categoryColor = facts.categoryColor,
            .stageStartDate = facts.stageStartDate,
            .closeDate = facts.closeDate,
            .avatarInfo = std::move(facts.avatarInfo),
            .priority = facts.priority};
}

ProjectBoardCardData ProjectBoardCardData::from(Facts facts, const CalendarMoment& at) {
    return {.id = facts.id,
            .title = std::move(facts.title),
            .linkedPeople = std::move(facts.linkedPeople),
            .linkedCompanies = std::move(facts.linkedCompanies),
            .pipelineId = facts.pipelineId,
            .stageId = facts.stageId,
            .nextActivities = kestrel::nextActivities(facts.nextTaskId, facts.nextTaskDueDate, facts.nextAppointmentId,
                                                      facts.nextAppointmentDate, facts.nextAppointmentIsAllDay, at),
            .categoryColor = facts.categoryColor,
            .stageStartDate = facts.stageStartDate,
            .dueDate = facts.dueDate,
            .avatarInfo = std::move(facts.avatarInfo),
            .priority = facts.priority};
}

PipelineBoardObjectID BoardCardData::id() const {
    return match([](const OpportunityBoardCardData& card) { return PipelineBoardObjectID::opportunity(card.id); },
                 [](const ProjectBoardCardData& card) { return PipelineBoardObjectID::project(card.id); });
}

const std::string& BoardCardData::title() const {
    return match([](const auto& card) -> const auto& { return card.title; });
}
const std::string& BoardCardData::linkedPeople() const {
    return match([](const auto& card) -> const auto& { return card.linkedPeople; });
}
const std::string& BoardCardData::linkedCompanies() const {
    return match([](const auto& card) -> const auto& { return card.linkedCompanies; });
}
const std::optional<ObjectID<PipelineDefinition>>& BoardCardData::pipelineID() const {
    return match([](const auto& card) -> const auto& { return card.pipelineId; });
}
const std::optional<ObjectID<PipelineStageDefinition>>& BoardCardData::stageID() const {
    return match([](const auto& card) -> const auto& { return card.stageId; });
}
const std::optional<std::vector<NextActivity>>& BoardCardData::nextActivities() const {
    return match([](const auto& card) -> const auto& { return card.nextActivities; });
}
const std::optional<RGBAColor>& BoardCardData::categoryColor() const {
    return match([](const auto& card) -> const auto& { return card.categoryColor; });
}
const std::optional<Date>& BoardCardData::stageStartDate() const {
    return match([](const auto& card) -> const auto& { return card.stageStartDate; });
}
const std::optional<AvatarInfo>& BoardCardData::avatarInfo() const {
    return match([](const auto& card) -> const auto& { return card.avatarInfo; });
}
const std::optional<std::int64_t>& BoardCardData::priority() const {
    return match([](const auto& card) -> const auto& { return card.priority; });
}
const std::optional<Date>& BoardCardData::dueDate() const {
    return match([](const OpportunityBoardCardData& card) -> const auto& { return card.closeDate; },
                 [](const ProjectBoardCardData& card) -> const auto& { return card.dueDate; });
}

Date BoardCardData::nextActivityDate() const {
    const auto& activities = nextActivities();
    return activities && !activities->empty() ? activities->front().date : Date::distantFuture();
}

PipelineBoardCardPasteboardData BoardCardData::pasteboardData() const {
    return {id(), pipelineID(), stageID()};
}

}  // namespace kestrel
