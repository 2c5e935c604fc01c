#include <gtest/gtest.h>
#include <kestrel/boards/board_filter.h>
#include <kestrel/boards/change_options.h>
#include <kestrel/boards/opportunity_state.h>
#include <kestrel/boards/sort_descriptor.h>
#include <kestrel/coding/json.h>

#include <set>

namespace {

using namespace kestrel;
using Range = PipelineBoardDateRange;

Date at(const char* text) {
    return Date::parseISO8601(text).value();
}

TEST(DateRanges, coverTheDaysOfTheirNames) {
    // A Wednesday in the third quarter; midnight in Berlin is 22:00 UTC in summer and 23:00 in winter.
    const Calendar calendar = Calendar::inZone("Europe/Berlin", std::chrono::Monday).value();
    const Date now = at("2017-08-16T12:00:00Z");
    struct Case {
        Range range;
        const char* start;
        const char* end;
    };
    const Case cases[] = {
        {Range::today, "2017-08-15T22:00:00Z", "2017-08-16T22:00:00Z"},
        {Range::thisWeek, "2017-08-13T22:00:00Z", "2017-08-20T22:00:00Z"},
        {Range::thisMonth, "2017-07-31T22:00:00Z", "2017-08-31T22:00:00Z"},
        {Range::thisQuarter, "2017-06-30T22:00:00Z", "2017-09-30T22:00:00Z"},
        {Range::thisYear, "2016-12-31T23:00:00Z", "2017-12-31T23:00:00Z"},
        {Range::thisYearToDate, "2016-12-31T23:00:00Z", "2017-08-16T22:00:00Z"},
        {Range::tomorrow, "2017-08-16T22:00:00Z", "2017-08-17T22:00:00Z"},
        {Range::nextWeek, "2017-08-20T22:00:00Z", "2017-08-27T22:00:00Z"},
        {Range::nextMonth, "2017-08-31T22:00:00Z", "2017-09-30T22:00:00Z"},
        {Range::nextQuarter, "2017-09-30T22:00:00Z", "2017-12-31T23:00:00Z"},
        {Range::nextYear, "2017-12-31T23:00:00Z", "2018-12-31T23:00:00Z"},
        {Range::yesterday, "2017-08-14T22:00:00Z", "2017-08-15T22:00:00Z"},
        {Range::lastWeek, "2017-08-06T22:00:00Z", "2017-08-13T22:00:00Z"},
        {Range::lastMonth, "2017-06-30T22:00:00Z", "2017-07-31T22:00:00Z"},
        {Range::lastQuarter, "2017-03-31T22:00:00Z", "2017-06-30T22:00:00Z"},
        {Range::lastYear, "2015-12-31T23:00:00Z", "2016-12-31T23:00:00Z"},
    };
    EXPECT_EQ(std::size(cases) + 1, allCases<Range>.size());
    for (const Case& c : cases) {
        EXPECT_EQ(resolve(c.range, calendar, now), (DateRange{at(c.start), at(c.end)})) << caseName(c.range);
    }
    EXPECT_FALSE(resolve(Range::none, calendar, now));
    // A new year's first days belong to the last quarter and the last month of the old one.
    const Date january = at("2018-01-01T12:00:00Z");
    EXPECT_EQ(resolve(Range::lastQuarter, Calendar::utc(), january), (DateRange{at("2017-10-01"), at("2018-01-01")}));
    EXPECT_EQ(resolve(Range::lastMonth, Calendar::utc(), january), (DateRange{at("2017-12-01"), at("2018-01-01")}));
    EXPECT_EQ(resolve(Range::nextMonth, Calendar::utc(), at("2018-01-31T12:00:00Z")),
              (DateRange{at("2018-02-01"), at("2018-03-01")}));
}

const std::vector<BoardUser> users{{.id = 1, .name = "Jane Roe"}, {.id = 1, .name = "Twin"}};
const std::vector<Category> categories{{.categoryID = 1, .name = "Hot"}, {.categoryID = 2}};
const std::vector<OpportunityType> types{{.opportunityTypeID = 1, .name = "Renewal"}};

TEST(Filters, describeThemselvesInOneLine) {
    OpportunityBoardFilter filter{.pipelineDefinitionID = 1};
    EXPECT_EQ(filter.filterString(users, categories, types), "");
    EXPECT_FALSE(filter.isFiltered());
    filter = {.pipelineDefinitionID = 1,
              .userID = 1,
              .categoryID = 1,
              .opportunityTypeID = 1,
              .createDate = Range::lastYear,
              .closeDate = Range::thisQuarter};
    EXPECT_EQ(filter.filterString(users, categories, types), "Jane Roe, This Quarter, Last Year, Hot, Renewal");
    filter = {.pipelineDefinitionID = 1, .userID = 9, .categoryID = 2, .closeDate = Range::none};
    EXPECT_EQ(filter.filterString(users, categories, types), "None")
        << "neither an unknown user nor a category without a name";
    EXPECT_TRUE((OpportunityBoardFilter{.pipelineDefinitionID = 1, .userID = 9}).isFiltered());
    EXPECT_TRUE((OpportunityBoardFilter{.pipelineDefinitionID = 1, .closeDate = Range::none}).isFiltered());
    const OpportunityBoardFilter keyword{.pipelineDefinitionID = 1, .keywordID = 4};
    EXPECT_EQ(keyword.filterString(users, categories, types), "");
    EXPECT_TRUE(keyword.isFiltered());
    const ProjectBoardFilter project{
        .pipelineDefinitionID = 1, .createDate = Range::thisMonth, .dueDate = Range::thisMonth};
    EXPECT_EQ(project.filterString(users, categories), "This Month, This Month");
    EXPECT_EQ(encodeJSON(Range::thisYearToDate), R"({"thisYearToDate":{}})");
    EXPECT_EQ(
        encodeJSON(keyword),
        R"({"pipelineDefinitionID":{"recordName":"PipelineDefinition","primaryKey":1},"keywordID":{"recordName":"Keyword","primaryKey":4}})");
}

TEST(Filters, matchWhatTheyName) {
    const Calendar calendar = Calendar::utc();
    const Date now = at("2017-08-16T12:00:00Z");
    const std::vector<ObjectID<Keyword>> keywords{3, 4};
    const BoardRecordLinks links{.pipelineDefinitionID = ObjectID<PipelineDefinition>(1), .keywordIDs = keywords};
    const Opportunity deal{.opportunityID = 1,
                           .assignedToID = 1,
                           .categoryID = 1,
                           .createDate = at("2016-12-31T23:59:59Z"),
                           .dueDate = at("2017-07-01"),
                           .opportunityTypeID = 1};
    const auto matches = [&](const OpportunityBoardFilter& filter) {
        return OpportunityBoardMatcher(filter, calendar, now).matches(deal, links);
    };
    using Filter = OpportunityBoardFilter;
    for (const Filter& filter : {Filter{.pipelineDefinitionID = 1},
                                 Filter{.pipelineDefinitionID = 1,
                                        .userID = 1,
                                        .categoryID = 1,
                                        .opportunityTypeID = 1,
                                        .createDate = Range::lastYear,
                                        .closeDate = Range::thisQuarter,
                                        .keywordID = 4},
                                 Filter{.pipelineDefinitionID = 1, .closeDate = Range::thisYearToDate}}) {
        EXPECT_TRUE(matches(filter)) << *encodeJSON(filter);
    }
    for (const Filter& filter :
         {Filter{.pipelineDefinitionID = 2}, Filter{.pipelineDefinitionID = 1, .userID = 2},
          Filter{.pipelineDefinitionID = 1, .categoryID = 2}, Filter{.pipelineDefinitionID = 1, .opportunityTypeID = 2},
          Filter{.pipelineDefinitionID = 1, .createDate = Range::thisYear},
          Filter{.pipelineDefinitionID = 1, .closeDate = Range::lastQuarter},
          Filter{.pipelineDefinitionID = 1, .closeDate = Range::none},
          Filter{.pipelineDefinitionID = 1, .keywordID = 5}}) {
        EXPECT_FALSE(matches(filter)) << *encodeJSON(filter);
    }
    const Opportunity bare{.opportunityID = 2};
    const auto matchesBare = [&](const Filter& filter) {
        return OpportunityBoardMatcher(filter, calendar, now)
            .matches(bare, {.pipelineDefinitionID = ObjectID<PipelineDefinition>(1), .keywordIDs = {}});
    };
    EXPECT_TRUE(matchesBare({.pipelineDefinitionID = 1, .createDate = Range::none, .closeDate = Range::none}));
    EXPECT_FALSE(matchesBare({.pipelineDefinitionID = 1, .createDate = Range::thisYear}));
    EXPECT_FALSE(matchesBare({.pipelineDefinitionID = 1, .userID = 1}));
    EXPECT_FALSE(OpportunityBoardMatcher(Filter{.pipelineDefinitionID = 1}, calendar, now).matches(bare, {}))
        << "in no pipeline";

    const Project project{.projectID = 1, .dueDate = at("2017-08-17")};
    EXPECT_TRUE(ProjectBoardMatcher({.pipelineDefinitionID = 1, .dueDate = Range::tomorrow}, calendar, now)
                    .matches(project, links));
    EXPECT_FALSE(ProjectBoardMatcher({.pipelineDefinitionID = 1, .dueDate = Range::today}, calendar, now)
                     .matches(project, links));
}

TEST(SortDescriptors, takeTheirKeysDefaultOrder) {
    using Key = PipelineBoardSortKey;
    using SortOrder = PipelineBoardSortOrder;
    const std::set<Key> descending{Key::created, Key::priority, Key::totalValue, Key::probability, Key::daysInStage};
    EXPECT_EQ(allCases<Key>.size(), 9U);
    for (const Key key : allCases<Key>) {
        EXPECT_EQ(PipelineBoardSortDescriptor(key).order == SortOrder::reverse, descending.contains(key))
            << caseName(key);
        EXPECT_EQ(PipelineBoardSortDescriptor(key, SortOrder::forward).order, SortOrder::forward);
        EXPECT_FALSE(localizedName(key).empty());
    }
    EXPECT_EQ(encodeJSON(PipelineBoardSortDescriptor(Key::totalValue)), R"({"key":"totalValue","order":"reverse"})");
    EXPECT_EQ(localizedName(SortOrder::forward) + localizedName(SortOrder::reverse) + localizedName(Key::forecasted),
              "AscendingDescendingForecasted Close");
    EXPECT_FALSE(decodeJSON<SortOrder>("\"Forward\""));
    EXPECT_FALSE(decodeJSON<SortOrder>("\"\""));
}

TEST(OpportunityStates, comeFromTheirCodesOnly) {
    std::string names;
    for (std::int64_t raw = -2; raw < 70; ++raw) {
        const auto state = fromRawValue<OpportunityState>(raw);
        EXPECT_EQ(state.has_value(), raw >= 0 && raw <= 4);
        if (state) names += localizedName(*state) + " ";
    }
    EXPECT_EQ(names, "Open Won Suspended Abandoned Lost ");
    EXPECT_EQ(decodeJSON<OpportunityState>("5").error().kind, DecodingError::Kind::dataCorrupted);

    const auto options = ChangeStageOptions::defaultOptions("Won", PipelineBoardObjectID::project(1), 2, Date(3));
    EXPECT_EQ(options, (ChangeStageOptions{.id = PipelineBoardObjectID::project(1),
                                           .stageID = 2,
                                           .stageName = "Won",
                                           .start = Date(3),
                                           .createActivities = true}));
    EXPECT_TRUE(*options.createActivities && !options.end && !options.note && !options.hasCompletedSheet);
}

}  // namespace
