#include <kestrel/boards/board_filter.h>
#include <kestrel/coding/wire_form.h>

#include <algorithm>

namespace kestrel {

KESTREL_FIELDS(BoardUser, id, name, count);
KESTREL_FIELDS(OpportunityBoardFilter, pipelineDefinitionID, userID, categoryID, opportunityTypeID, createDate,
               closeDate, keywordID);
KESTREL_FIELDS(ProjectBoardFilter, pipelineDefinitionID, userID, categoryID, createDate, dueDate, keywordID);

namespace {

/// Joins what is present by a comma and a space.
class FilterText {
  public:
    void add(const std::optional<std::string>& part) {
        if (!part) return;
        if (!isFirst_) text_ += ", ";
        isFirst_ = false;
        text_ += *part;
    }
    void add(const std::optional<PipelineBoardDateRange>& range) {
        if (range) add(localizedName(*range));
    }
    /// The name of the first entry of a list that has the identifier.
    template <class Entry, class ID>
    void add(std::span<const Entry> entries, const std::optional<ID>& id) {
        if (!id) return;
        const auto found =
            std::ranges::find_if(entries, [&](const Entry& entry) { return identifierOf(entry) == *id; });
        if (found != entries.end()) add(found->name);
    }
    [[nodiscard]] std::string take() { return std::move(text_); }

  private:
    template <class Entry>
    static const auto& identifierOf(const Entry& entry) {
        if constexpr (requires { entry.objectID(); }) {
            return entry.objectID();
        } else {
            return entry.id;
        }
    }

    std::string text_;
    bool isFirst_ = true;
};

template <class T>
bool allows(const std::optional<ObjectID<T>>& wanted, const std::optional<std::int64_t>& key) noexcept {
    return !wanted || (key && *wanted == ObjectID<T>(*key));
}

template <class Filter>
bool allowsLinks(const Filter& filter, const BoardRecordLinks& links) noexcept {
    if (links.pipelineDefinitionID != filter.pipelineDefinitionID) return false;
    return !filter.keywordID || std::ranges::find(links.keywordIDs, *filter.keywordID) != links.keywordIDs.end();
}

}  // namespace

std::string OpportunityBoardFilter::filterString(std::span<const BoardUser> users, std::span<const Category> categories,
                                                 std::span<const OpportunityType> opportunityTypes) const {
    FilterText text;
    text.add(users, userID);
    text.add(closeDate);
    text.add(createDate);
    text.add(categories, categoryID);
    text.add(opportunityTypes, opportunityTypeID);
    return text.take();
}

bool OpportunityBoardFilter::isFiltered() const noexcept {
    return userID || categoryID || keywordID || opportunityTypeID || createDate || closeDate;
}

std::string ProjectBoardFilter::filterString(std::span<const BoardUser> users,
                                             std::span<const Category> categories) const {
    FilterText text;
    text.add(users, userID);
    text.add(dueDate);
    text.add(createDate);
    text.add(categories, categoryID);
    return text.take();
}

bool ProjectBoardFilter::isFiltered() const noexcept {
    return userID || categoryID || keywordID || createDate || dueDate;
}

namespace boards_detail {

DateCondition::DateCondition(std::optional<PipelineBoardDateRange> range, const Calendar& calendar, Date now) {
    if (!range) return;
    const auto resolved = resolve(*range, calendar, now);
    kind_ = resolved ? Kind::range : Kind::absence;
    range_ = resolved.value_or(DateRange{});
}

bool DateCondition::accepts(const std::optional<Date>& date) const noexcept {
    switch (kind_) {
        case Kind::anything: return true;
        case Kind::absence: return !date;
        case Kind::range: return date && range_.contains(*date);
    }
    return false;
}

}  // namespace boards_detail

OpportunityBoardMatcher::OpportunityBoardMatcher(const OpportunityBoardFilter& filter, const Calendar& calendar,
                                                 Date now)
    : filter_(filter), createDate_(filter.createDate, calendar, now), closeDate_(filter.closeDate, calendar, now) {}

bool OpportunityBoardMatcher::matches(const Opportunity& opportunity, const BoardRecordLinks& links) const noexcept {
    return allows(filter_.userID, opportunity.assignedToID) && allows(filter_.categoryID, opportunity.categoryID) &&
           allows(filter_.opportunityTypeID, opportunity.opportunityTypeID) &&
           createDate_.accepts(opportunity.createDate) && closeDate_.accepts(opportunity.dueDate) &&
           allowsLinks(filter_, links);
}

ProjectBoardMatcher::ProjectBoardMatcher(const ProjectBoardFilter& filter, const Calendar& calendar, Date now)
    : filter_(filter), createDate_(filter.createDate, calendar, now), dueDate_(filter.dueDate, calendar, now) {}

bool ProjectBoardMatcher::matches(const Project& project, const BoardRecordLinks& links) const noexcept {
    return allows(filter_.userID, project.assignedToID) && allows(filter_.categoryID, project.categoryID) &&
           createDate_.accepts(project.createDate) && dueDate_.accepts(project.dueDate) && allowsLinks(filter_, links);
}

}  // namespace kestrel
