#pragma once

#include <kestrel/activity/next_activity.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/rgba_color.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/pipeline_board_object_id.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

class PipelineBoardCardPasteboardData;

/// A picture or initials to show.
struct AvatarInfo {
    using Coded = void;

    /// The name to draw initials from.
    std::string name{};
    /// The encoded picture; absent when there is none, so that the initials are drawn.
    std::optional<Data> imageData{};

    friend bool operator==(const AvatarInfo&, const AvatarInfo&) = default;
};
extern template struct Codec<AvatarInfo>;

/// An opportunity as a card on a board.
struct OpportunityBoardCardData {
    using Coded = void;

    /// The opportunity that it shows.
    ObjectID<Opportunity> id;
    /// The name of the opportunity.
    std::string title{};
    /// The names of linked contacts, ready to show.
    std::string linkedPeople{};
    /// The names of linked companies, ready to show.
    std::string linkedCompanies{};
    /// The total value.
    double value{};
    /// Of success, in percent.
    std::int64_t probability{};
    /// The opportunity type's name.
    std::optional<std::string> type{};
    /// The template of the pipeline that it is in.
    std::optional<ObjectID<PipelineDefinition>> pipelineId{};
    /// The column that it is in.
    std::optional<ObjectID<PipelineStageDefinition>> stageId{};
    /// What the card lists as next.
    std::optional<std::vector<NextActivity>> nextActivities{};
    /// That of its category; absent without one.
    std::optional<RGBAColor> categoryColor{};
    /// When it entered its stage.
    std::optional<Date> stageStartDate{};
    /// The forecast close.
    std::optional<Date> closeDate{};
    /// A picture or initials; absent when nothing is to be drawn.
    std::optional<AvatarInfo> avatarInfo{};
    /// The greater the more it matters; absent when it has none.
    std::optional<std::int64_t> priority{};

    /// What a card is made from: the record's raw facts.
    struct Facts {
        ///@{
        /// As the card's member of that name; of the next task and the next appointment what the card's next activities
        /// are worked out from.
        ObjectID<Opportunity> id;
        std::string title{};
        std::string linkedPeople{};
        std::string linkedCompanies{};
        double value{};
        std::int64_t probability{};
        std::optional<std::string> type{};
        std::optional<ObjectID<Task>> nextTaskId{};
        std::optional<Date> nextTaskDueDate{};
        std::optional<ObjectID<Timeblock>> nextAppointmentId{};
        std::optional<Date> nextAppointmentDate{};
        std::optional<bool> nextAppointmentIsAllDay{};
        std::optional<ObjectID<PipelineDefinition>> pipelineId{};
        std::optional<ObjectID<PipelineStageDefinition>> stageId{};
        std::optional<RGBAColor> categoryColor{};
        std::optional<Date> stageStartDate{};
        std::optional<Date> closeDate{};
        std::optional<AvatarInfo> avatarInfo{};
        std::optional<std::int64_t> priority{};
        ///@}
    };
    /// The card of those facts. Its next activities are worked out as `nextActivities` says.
    [[nodiscard]] static OpportunityBoardCardData from(Facts facts, const CalendarMoment& at = {});

    friend bool operator==(const OpportunityBoardCardData&, const OpportunityBoardCardData&) = default;
};
extern template struct Codec<OpportunityBoardCardData>;

/// A project as a card on a board.
struct ProjectBoardCardData {
    using Coded = void;

    /// The project that it shows.
    ObjectID<Project> id;
    /// The name of the project.
    std::string title{};
    /// The names of linked contacts, ready to show.
    std::string linkedPeople{};
    /// The names of linked companies, ready to show.
    std::string linkedCompanies{};
    /// The template of the pipeline that it is in.
    std::optional<ObjectID<PipelineDefinition>> pipelineId{};
    /// The column that it is in.
    std::optional<ObjectID<PipelineStageDefinition>> stageId{};
    /// What the card lists as next.
    std::optional<std::vector<NextActivity>> nextActivities{};
    /// That of its category; absent without one.
    std::optional<RGBAColor> categoryColor{};
    /// When it entered its stage.
    std::optional<Date> stageStartDate{};
    /// When the project is due.
    std::optional<Date> dueDate{};
    /// A picture or initials; absent when nothing is to be drawn.
    std::optional<AvatarInfo> avatarInfo{};
    /// The greater the more it matters; absent when it has none.
    std::optional<std::int64_t> priority{};

    /// What a card is made from: the record's raw facts.
    struct Facts {
        ///@{
        /// As the card's member of that name; of the next task and the next appointment what the card's next activities
        /// are worked out from.
        ObjectID<Project> id;
        std::string title{};
        std::string linkedPeople{};
        std::string linkedCompanies{};
        std::optional<ObjectID<Task>> nextTaskId{};
        std::optional<Date> nextTaskDueDate{};
        std::optional<ObjectID<Timeblock>> nextAppointmentId{};
        std::optional<Date> nextAppointmentDate{};
        std::optional<bool> nextAppointmentIsAllDay{};
        std::optional<ObjectID<PipelineDefinition>> pipelineId{};
        std::optional<ObjectID<PipelineStageDefinition>> stageId{};
        std::optional<RGBAColor> categoryColor{};
        std::optional<Date> stageStartDate{};
        std::optional<Date> dueDate{};
        std::optional<AvatarInfo> avatarInfo{};
        std::optional<std::int64_t> priority{};
        ///@}
    };
    /// The card of those facts. Its next activities are worked out as `nextActivities` says.
    [[nodiscard]] static ProjectBoardCardData from(Facts facts, const CalendarMoment& at = {});

    friend bool operator==(const ProjectBoardCardData&, const ProjectBoardCardData&) = default;
};
extern template struct Codec<ProjectBoardCardData>;

/// What a card lists as next: of the next task and the next appointment, in this order, the earlier one and with it
/// whatever falls on the same day or today. A task without a due date, or an appointment without a start, is not
/// listed. Absent when there is neither.
[[nodiscard]] std::optional<std::vector<NextActivity>> nextActivities(
    const std::optional<ObjectID<Task>>& nextTaskId, const std::optional<Date>& nextTaskDueDate,
    const std::optional<ObjectID<Timeblock>>& nextAppointmentId, const std::optional<Date>& nextAppointmentDate,
    const std::optional<bool>& nextAppointmentIsAllDay, const CalendarMoment& at);

/// A card on a board, of either kind, with what all cards have. References into it live as long as the card.
class BoardCardData : public Choice<BoardCardData, OpportunityBoardCardData, ProjectBoardCardData> {
  public:
    using Coded = void;

    /// A card of a board of opportunities.
    [[nodiscard]] static BoardCardData opportunity(OpportunityBoardCardData card) {
        return BoardCardData(std::move(card));
    }
    /// A card of a board of projects.
    [[nodiscard]] static BoardCardData project(ProjectBoardCardData card) { return BoardCardData(std::move(card)); }

    [[nodiscard]] std::optional<OpportunityBoardCardData> opportunity() const {
        return payload<OpportunityBoardCardData>();
    }
    [[nodiscard]] std::optional<ProjectBoardCardData> project() const { return payload<ProjectBoardCardData>(); }
    /// The payload without a copy; null for the other kind.
    [[nodiscard]] const OpportunityBoardCardData* opportunityCard() const noexcept {
        return payloadIf<OpportunityBoardCardData>();
    }
    /// The payload without a copy; null for the other kind.
    [[nodiscard]] const ProjectBoardCardData* projectCard() const noexcept { return payloadIf<ProjectBoardCardData>(); }

    /// The record that it shows.
    [[nodiscard]] PipelineBoardObjectID id() const;
    ///@{
    /// The payload's own.
    [[nodiscard]] const std::string& title() const;
    [[nodiscard]] const std::string& linkedPeople() const;
    [[nodiscard]] const std::string& linkedCompanies() const;
    [[nodiscard]] const std::optional<ObjectID<PipelineDefinition>>& pipelineID() const;
    [[nodiscard]] const std::optional<ObjectID<PipelineStageDefinition>>& stageID() const;
    [[nodiscard]] const std::optional<std::vector<NextActivity>>& nextActivities() const;
    [[nodiscard]] const std::optional<RGBAColor>& categoryColor() const;
    [[nodiscard]] const std::optional<Date>& stageStartDate() const;
    [[nodiscard]] const std::optional<AvatarInfo>& avatarInfo() const;
    [[nodiscard]] const std::optional<std::int64_t>& priority() const;
    ///@}
    /// The opportunity's forecast close or the project's due date.
    [[nodiscard]] const std::optional<Date>& dueDate() const;
    /// The date of the first next activity; the distant future when there is none, so that such cards come last.
    [[nodiscard]] Date nextActivityDate() const;
    /// What travels when the card is dragged.
    [[nodiscard]] PipelineBoardCardPasteboardData pasteboardData() const;

    friend bool operator==(const BoardCardData&, const BoardCardData&) = default;

  private:
    friend CodingAccess;
    explicit BoardCardData(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<BoardCardData>;

}  // namespace kestrel
