#pragma once

#include <kestrel/boards/board_user.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/boards/pipeline_board_date_range.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/opportunity_type.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>
#include <optional>
#include <span>
#include <string>

namespace kestrel {

/// Narrows a board of opportunities; saved with the board. What is absent does not narrow. The keys of the keyed form
/// are the members' names.
struct OpportunityBoardFilter {
    using Coded = void;

    /// The board's pipeline template.
    ObjectID<PipelineDefinition> pipelineDefinitionID;
    /// Only what is assigned to this user.
    std::optional<ObjectID<User>> userID{};
    /// Only what is in this category.
    std::optional<ObjectID<Category>> categoryID{};
    /// Only what is of this type.
    std::optional<ObjectID<OpportunityType>> opportunityTypeID{};
    /// Only what was created on these days.
    std::optional<PipelineBoardDateRange> createDate{};
    /// The forecast close.
    std::optional<PipelineBoardDateRange> closeDate{};
    /// Only what has this keyword.
    std::optional<ObjectID<Keyword>> keywordID{};

    /// The filter in one line, in the user's language: user, forecast close, creation, category and type, those that
    /// are set and found in the lists, joined by ", ".
    [[nodiscard]] std::string filterString(std::span<const BoardUser> users, std::span<const Category> categories,
                                           std::span<const OpportunityType> opportunityTypes) const;
    /// Whether it narrows anything beyond the pipeline; a range of `none` does.
    [[nodiscard]] bool isFiltered() const noexcept;

    friend bool operator==(const OpportunityBoardFilter&, const OpportunityBoardFilter&) = default;
};
extern template struct Codec<OpportunityBoardFilter>;

/// Narrows a board of projects, as OpportunityBoardFilter does one of opportunities.
struct ProjectBoardFilter {
    using Coded = void;

    /// The board's pipeline template.
    ObjectID<PipelineDefinition> pipelineDefinitionID;
    /// Only what is assigned to this user.
    std::optional<ObjectID<User>> userID{};
    /// Only what is in this category.
    std::optional<ObjectID<Category>> categoryID{};
    /// Only what was created on these days.
    std::optional<PipelineBoardDateRange> createDate{};
    /// Only what is due on these days.
    std::optional<PipelineBoardDateRange> dueDate{};
    /// Only what has this keyword.
    std::optional<ObjectID<Keyword>> keywordID{};

    /// User, due date, creation and category; see OpportunityBoardFilter.
    [[nodiscard]] std::string filterString(std::span<const BoardUser> users,
                                           std::span<const Category> categories) const;
    /// Whether it narrows anything beyond the pipeline; a range of `none` does.
    [[nodiscard]] bool isFiltered() const noexcept;

    friend bool operator==(const ProjectBoardFilter&, const ProjectBoardFilter&) = default;
};
extern template struct Codec<ProjectBoardFilter>;

/// What a filter asks of a record that the record does not carry itself: the template of the pipeline that it is in,
/// absent when it is in none, and its keywords, which the caller keeps alive while a matcher looks at them.
struct BoardRecordLinks {
    /// Absent for a record in no pipeline, which is on no board.
    std::optional<ObjectID<PipelineDefinition>> pipelineDefinitionID{};
    /// In any order.
    std::span<const ObjectID<Keyword>> keywordIDs{};
};

namespace boards_detail {

/// A date filter with its range resolved.
class DateCondition {
  public:
    DateCondition(std::optional<PipelineBoardDateRange> range, const Calendar& calendar, Date now);
    [[nodiscard]] bool accepts(const std::optional<Date>& date) const noexcept;

  private:
    enum class Kind : unsigned char { anything, absence, range } kind_ = Kind::anything;
    DateRange range_{};
};

}  // namespace boards_detail

/// Decides for many records whether a filter lets them through. The relative ranges are resolved once, in the calendar
/// at the moment given; matching a record then allocates nothing and is linear in the record's keywords. The filter is
/// copied.
class OpportunityBoardMatcher {
  public:
    /// Of that filter, looked at there and then.
    explicit OpportunityBoardMatcher(const OpportunityBoardFilter& filter,
                                     const Calendar& calendar = Calendar::current(), Date now = Date::now());
    /// Whether the filter lets the opportunity through.
    [[nodiscard]] bool matches(const Opportunity& opportunity, const BoardRecordLinks& links) const noexcept;

  private:
    OpportunityBoardFilter filter_;
    boards_detail::DateCondition createDate_;
    boards_detail::DateCondition closeDate_;
};

/// As OpportunityBoardMatcher, for projects.
class ProjectBoardMatcher {
  public:
    /// Of that filter, looked at there and then.
    explicit ProjectBoardMatcher(const ProjectBoardFilter& filter, const Calendar& calendar = Calendar::current(),
                                 Date now = Date::now());
    /// Whether the filter lets the project through.
    [[nodiscard]] bool matches(const Project& project, const BoardRecordLinks& links) const noexcept;

  private:
    ProjectBoardFilter filter_;
    boards_detail::DateCondition createDate_;
    boards_detail::DateCondition dueDate_;
};

}  // namespace kestrel
