#include <gtest/gtest.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/coding/json.h>

#include <algorithm>
#include <random>

namespace {

using namespace kestrel;
using Key = PipelineBoardSortKey;
using SortOrder = PipelineBoardSortOrder;

Date at(const char* text) {
    return Date::parseISO8601(text).value();
}

TEST(NextActivities, areTheEarliestDayAndToday) {
    // A Wednesday evening in New York, where it is still the day before.
    const CalendarMoment moment{.calendar = Calendar::inZone("America/New_York").value(),
                                .now = at("2017-08-17T02:00:00Z")};
    struct Case {
        const char* name;
        std::optional<Date> task;
        std::optional<Date> appointment;
        std::string expected;
    };
    const Case cases[] = {
        {"neither", {}, {}, "absent"},
        {"only an appointment", {}, at("2017-09-01"), "appointment"},
        {"the same day", at("2017-08-18T12:00:00Z"), at("2017-08-19T03:59:00Z"), "task appointment"},
        {"the next day, in the calendar", at("2017-08-18T12:00:00Z"), at("2017-08-19T04:00:00Z"), "task"},
        {"an earlier appointment", at("2017-08-25T12:00:00Z"), at("2017-08-18T12:00:00Z"), "appointment"},
        {"overdue, and today", at("2017-08-10T12:00:00Z"), at("2017-08-16T12:00:00Z"), "task appointment"},
        {"overdue, and tomorrow", at("2017-08-10T12:00:00Z"), at("2017-08-17T12:00:00Z"), "task"},
        {"the same moment", at("2017-08-18T12:00:00Z"), at("2017-08-18T12:00:00Z"), "task appointment"},
    };
    for (const Case& c : cases) {
        const auto card = OpportunityBoardCardData::from({.id = 1,
                                                          .nextTaskId = ObjectID<Task>(5),
                                                          .nextTaskDueDate = c.task,
                                                          .nextAppointmentId = ObjectID<Timeblock>(6),
                                                          .nextAppointmentDate = c.appointment,
                                                          .nextAppointmentIsAllDay = true},
                                                         moment);
        std::string found = card.nextActivities ? "" : "absent";
        for (const auto& activity : card.nextActivities.value_or(std::vector<NextActivity>())) {
            found += (found.empty() ? "" : " ") + std::string(activity.isAppointment() ? "appointment" : "task");
            EXPECT_EQ(activity.isAllDay, activity.isAppointment());
            EXPECT_EQ(activity.id().primaryKey(), activity.isAppointment() ? 6 : 5);
        }
        EXPECT_EQ(found, c.expected) << c.name;
        EXPECT_EQ(BoardCardData::opportunity(card).nextActivityDate(),
                  card.nextActivities ? card.nextActivities->front().date : Date::distantFuture());
    }
    EXPECT_FALSE(ProjectBoardCardData::from({.id = 1, .nextTaskDueDate = Date(1)}, moment).nextActivities)
        << "a date without a task";
}

BoardCandidate candidate(std::int64_t id, std::optional<ObjectID<PipelineStageDefinition>> stage, double value = 0) {
    return {.card = BoardCardData::opportunity({.id = id, .value = value, .stageId = stage})};
}

TEST(Boards, haveTheirColumnsInStageOrder) {
    const std::vector<PipelineStageDefinition> stages{
        {.pipelineStageDefinitionID = 10, .name = "Won", .order = 2},
        {.pipelineStageDefinitionID = 11, .deletionDate = Date(1), .name = "Old", .order = 0},
        {.pipelineStageDefinitionID = 12, .name = "Open", .order = 1},
        {.pipelineStageDefinitionID = 13, .deletionDate = Date(1), .name = "Gone", .order = 0},
        {.pipelineStageDefinitionID = 9, .order = 2}};
    const auto board = assembleBoard(BoardKind::opportunities, stages,
                                     {candidate(1, 10, 2.5), candidate(2, 99, 1), candidate(3, 11, 4),
                                      candidate(4, std::nullopt, 100), candidate(5, 10, 3)},
                                     Key::totalValue);
    std::string summary;
    for (const auto& column : board.columns) {
        EXPECT_EQ(column.id, column.header.id);
        EXPECT_EQ(column.header.count, static_cast<std::int64_t>(column.cards.size()));
        summary += std::to_string(column.id) + column.header.title + (column.header.active ? "+" : "-") +
                   std::to_string(column.header.count) + " ";
    }
    EXPECT_EQ(summary, "12Open+0 9+0 10Won+2 11Old-1 99-1 ");
    EXPECT_EQ(board.columns[2].header.total, 5.5);
    EXPECT_EQ(board.columns[0].header.total, 0);
    EXPECT_EQ(board.columns[2].cards[0].id(), PipelineBoardObjectID::opportunity(5)) << "the larger value first";
    EXPECT_EQ(board.count, 4);
    EXPECT_EQ(board.total, 10.5);
    EXPECT_EQ(decodeJSON<BoardData>(*encodeJSON(board)), board);

    const auto projects =
        assembleBoard(BoardKind::projects, stages,
                      {{.card = BoardCardData::project({.id = 1, .stageId = ObjectID<PipelineStageDefinition>(12)})}},
                      PipelineBoardSortDescriptor::projectDefault());
    EXPECT_EQ(projects.count, 1);
    EXPECT_FALSE(projects.columns[0].header.total);
}

/// A card that differs from others in everything that boards sort by, or in nothing.
BoardCandidate randomCandidate(std::mt19937& engine, std::int64_t id) {
    const auto some = [&](auto make) -> std::optional<decltype(make())> {
        if (engine() % 3 == 0) return std::nullopt;
        return make();
    };
    const auto date = [&] { return Date(static_cast<double>(engine() % 4)); };
    static constexpr const char* titles[] = {"alpha", "Alpha", "beta", "", "alphabet"};
    return {.card = BoardCardData::opportunity(OpportunityBoardCardData::from(
                {.id = id,
                 .title = titles[engine() % 5],
                 .value = static_cast<double>(engine() % 4),
                 .probability = static_cast<std::int64_t>(engine() % 4),
                 .nextTaskId = ObjectID<Task>(1),
                 .nextTaskDueDate = some(date),
                 .stageId = ObjectID<PipelineStageDefinition>(1),
                 .stageStartDate = some(date),
                 .closeDate = some(date),
                 .priority = some([&] { return static_cast<std::int64_t>(engine() % 4); })})),
            .createDate = some(date)};
}

TEST(CardOrders, areTotalByEveryKeyInBothOrders) {
    std::mt19937 engine(11);
    std::vector<BoardCandidate> cards;
    for (int i = 0; i < 60; ++i)
        cards.push_back(randomCandidate(engine, i));
    const std::vector<PipelineStageDefinition> stages{{.pipelineStageDefinitionID = 1}};
    for (const Key key : allCases<Key>) {
        for (const SortOrder order : allCases<SortOrder>) {
            SCOPED_TRACE(std::string(caseName(key)) + std::string(caseName(order)));
            const BoardCardOrder before({key, order});
            for (const auto& a : cards) {
                for (const auto& b : cards) {
                    EXPECT_EQ(before(a, b) + before(b, a), a.card == b.card ? 0 : 1);
                }
            }
            auto sorted = cards;
            std::ranges::shuffle(sorted, engine);
            const auto column = assembleBoard(BoardKind::opportunities, stages, sorted, {key, order}).columns[0];
            std::ranges::sort(sorted, before);
            for (std::size_t i = 0; i < sorted.size(); ++i)
                EXPECT_EQ(column.cards[i], sorted[i].card);
        }
    }
    // Each key by its own value; what is absent comes last in either order.
    const auto firstBy = [&](Key key, SortOrder order) {
        return std::ranges::min(cards, BoardCardOrder({key, order}));
    };
    const auto extreme = [&](Key key, auto value, auto least, auto most) {
        EXPECT_EQ(value(firstBy(key, SortOrder::forward)), least) << caseName(key);
        EXPECT_EQ(value(firstBy(key, SortOrder::reverse)), most) << caseName(key);
    };
    const auto opportunity = [](const BoardCandidate& c) { return *c.card.opportunity(); };
    extreme(Key::forecasted, [&](const auto& c) { return opportunity(c).closeDate; }, Date(0), Date(3));
    extreme(Key::due, [&](const auto& c) { return opportunity(c).closeDate; }, Date(0), Date(3));
    extreme(Key::created, [&](const auto& c) { return c.createDate; }, Date(0), Date(3));
    extreme(Key::name, [&](const auto& c) { return opportunity(c).title; }, "", "beta");
    extreme(Key::priority, [&](const auto& c) { return opportunity(c).priority; }, 0, 3);
    extreme(Key::totalValue, [&](const auto& c) { return opportunity(c).value; }, 0.0, 3.0);
    extreme(Key::probability, [&](const auto& c) { return opportunity(c).probability; }, 0, 3);
    extreme(Key::nextActivity, [&](const auto& c) { return c.card.nextActivityDate(); }, Date(0), Date(3));
    extreme(Key::daysInStage, [&](const auto& c) { return opportunity(c).stageStartDate; }, Date(3), Date(0));
}

TEST(CardOrders, breakTiesByIdentifierAlone) {
    const auto named = [](std::int64_t id, const char* title, std::int64_t priority) {
        return BoardCandidate{.card = BoardCardData::opportunity({.id = id, .title = title, .priority = priority})};
    };
    const BoardCardOrder byName({Key::name, SortOrder::forward});
    EXPECT_TRUE(byName(named(1, "acme", 0), named(2, "ACME", 0)));
    EXPECT_FALSE(byName(named(2, "ACME", 0), named(1, "acme", 0)));
    // Neighbours that no double tells apart.
    const BoardCardOrder byPriority({Key::priority, SortOrder::forward});
    EXPECT_TRUE(byPriority(named(2, "", 9007199254740992), named(1, "", 9007199254740993)));
    const auto columns =
        assembleBoard(BoardKind::opportunities, {}, {candidate(1, 99), candidate(2, 98)}, Key::name).columns;
    EXPECT_EQ(columns[0].id + columns[1].id * 1000, 98 + 99000) << "unknown stages by identifier";
}

TEST(Cards, speakForTheirPayload) {
    const ProjectBoardCardData project{.id = 4,
                                       .title = "P",
                                       .linkedPeople = "A, B",
                                       .pipelineId = ObjectID<PipelineDefinition>(1),
                                       .stageId = ObjectID<PipelineStageDefinition>(2),
                                       .dueDate = Date(5)};
    const auto card = BoardCardData::project(project);
    EXPECT_EQ(card.id(), PipelineBoardObjectID::project(4));
    EXPECT_EQ(card.title() + card.linkedPeople(), "PA, B");
    EXPECT_EQ(card.dueDate(), Date(5));
    EXPECT_EQ(BoardCardData::opportunity({.id = 4, .closeDate = Date(6)}).dueDate(), Date(6));
    EXPECT_EQ(card.pasteboardData(), PipelineBoardCardPasteboardData(PipelineBoardObjectID::project(4), 1, 2));
}

class OtherPasteboardData : public PipelineBoardCardPasteboardData {};

TEST(DraggedCards, arriveAsTheyLeft) {
    const PipelineBoardCardPasteboardData dragged(PipelineBoardObjectID::opportunity(3), 1, std::nullopt);
    EXPECT_EQ(dragged.writableTypeIdentifiersForItemProvider().size(), 1U);
    EXPECT_EQ(dragged.writableTypeIdentifiersForItemProvider(), dragged.readableTypeIdentifiersForItemProvider());
    std::optional<Data> data;
    dragged.loadData("application/octet-stream", [&](auto loaded) { data = *loaded; });
    ASSERT_TRUE(data);
    EXPECT_EQ(
        data->text(),
        R"({"id":{"opportunity":{"_0":{"recordName":"Opportunity","primaryKey":3}}},"pipelineId":{"recordName":"PipelineDefinition","primaryKey":1}})");
    const auto arrived = PipelineBoardCardPasteboardData::object(*data, "application/octet-stream");
    ASSERT_TRUE(arrived);
    EXPECT_EQ(**arrived, dragged);

    const auto other = PipelineBoardCardPasteboardData::object<OtherPasteboardData>(*data, "application/octet-stream");
    ASSERT_FALSE(other);
    EXPECT_EQ(std::get<DomainError>(other.error()), (DomainError{"com.fenwick.kestrel.boards", 0}));
    const auto broken = PipelineBoardCardPasteboardData::object(Data::fromText("{}"), "application/octet-stream");
    ASSERT_FALSE(broken);
    EXPECT_EQ(std::get<DecodingError>(broken.error()).kind, DecodingError::Kind::keyNotFound);
    bool failed = false;
    PipelineBoardCardPasteboardData().loadData("", [&](auto loaded) { failed = !loaded.has_value(); });
    EXPECT_TRUE(failed) << "an unsaved record does not travel";
}

TEST(BoardConfigs, areOneKeyWithFilterAndOrder) {
    EXPECT_EQ(encodeJSON(BoardConfig::project(std::nullopt, PipelineBoardSortDescriptor::projectDefault())),
              R"({"project":{"_1":{"key":"due","order":"forward"}}})");
    const auto config = BoardConfig::opportunity(
        OpportunityBoardFilter{.pipelineDefinitionID = 1, .closeDate = PipelineBoardDateRange::none},
        {Key::due, SortOrder::reverse});
    const auto text = encodeJSON(config);
    EXPECT_EQ(
        text,
        R"({"opportunity":{"_0":{"pipelineDefinitionID":{"recordName":"PipelineDefinition","primaryKey":1},"closeDate":{"none":{}}},"_1":{"key":"due","order":"reverse"}}})");
    EXPECT_EQ(decodeJSON<BoardConfig>(*text), config);
    const auto broken = decodeJSON<BoardConfig>(R"({"opportunity":{"_1":{"key":"due","order":"up"}}})");
    ASSERT_FALSE(broken);
    EXPECT_EQ(broken.error().codingPath, (CodingPath{"opportunity", "_1", "order"}));
}

}  // namespace
