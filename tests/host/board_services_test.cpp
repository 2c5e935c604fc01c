#include "services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kestrel/services/pipeline_board_filter_service.h>
#include <kestrel/services/pipeline_board_service.h>

#include <algorithm>
#include <tuple>

namespace kestrel::host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The deals of the small export, and its template.
const ObjectID<Opportunity> wonDeal = 1;
const ObjectID<Opportunity> newDeal = 2;
const ObjectID<Project> move = 1;
const ObjectID<PipelineDefinition> sales = 1;
const ObjectID<PipelineDefinition> delivery = 2;
const ObjectID<PipelineStageDefinition> prospecting = 1;
const ObjectID<PipelineStageDefinition> engaging = 2;
const ObjectID<PipelineStageDefinition> started = 11;
const ObjectID<PipelineStageDefinition> delivered = 12;
constexpr ServiceKey<PipelineBoardFilterService> boardFilters;

const CalendarMoment now{.calendar = Calendar::utc(), .now = Date(0)};
const BoardConfig dealBoard = BoardConfig::opportunity({}, PipelineBoardSortDescriptor::opportunityDefault());
const BoardConfig projectBoard = BoardConfig::project({}, PipelineBoardSortDescriptor::projectDefault());

/// The titles of the cards by column: "Engaging: GTX Pro for Isdom".
std::vector<std::string> columnsOf(const BoardData& board) {
    std::vector<std::string> columns;
    for (const BoardColumnData& column : board.columns) {
        columns.push_back(column.header.title + ":");
        for (const BoardCardData& card : column.cards)
            columns.back() += " " + card.title();
    }
    return columns;
}

class BoardServices : public testing::Test {
  protected:
    BoardServices() {
        database.write([](PeopleDatabase::Writer& writer) {
            writer.add(Project{.projectID = move,
                               .assignedToID = mosesFrase.value(),
                               .lastStatusCode = 1,
                               .name = "Move",
                               .statusCode = 2,
                               .permissions = onlyFor(teamEast)});
            writer.add(Project{.projectID = 2, .name = "Loose"});
            writer.add(
                PipelineDefinition{.pipelineDefinitionID = delivery, .active = 1, .forProject = 1, .name = "Delivery"});
            for (const auto& id : {delivered, started})
                writer.add(PipelineStageDefinition{.pipelineStageDefinitionID = id,
                                                   .name = id == started ? "Started" : "Delivered",
                                                   .order = *id.value(),
                                                   .pipelineDefinitionID = delivery.value()});
            writer.add(Pipeline{.pipelineID = 50,
                                .name = "Delivery of Move",
                                .pipelineDefinitionID = delivery.value(),
                                .projectID = move.value()});
            for (const auto& id : {started, delivered})
                writer.add(PipelineStage{.pipelineStageID = *id.value() + 100,
                                         .name = "Stage",
                                         .pipelineID = 50,
                                         .pipelineStageDefinitionID = id.value(),
                                         .projectID = move.value()});
            writer.change(move, [](Project& project) {
                project.currentPipelineID = 50;
                project.currentPipelineStageID = 111;
            });
        });
    }

    [[nodiscard]] std::optional<ChangeStageError> moved(const ChangeStageOptions& options) {
        return failureFrom(donn[services::pipelineBoard].changeStage(options));
    }
    template <class Record>
    [[nodiscard]] Record stored(const ObjectID<Record>& id) const {
        ReadingStore store(database.path());
        return RecordTable<Record>(store.database()).find(id).value();
    }

    PeopleDatabase database;
    ServedDatabase donn{database.path(), "Donn Cantrell"};
};

TEST_F(BoardServices, moveACardAndWriteItIntoTheHistory) {
    auto& board = donn[services::pipelineBoard];
    std::size_t changes = 0;
    const auto watching = board.boardDidChange().sink([&](Void) { ++changes; });
    const Opportunity before = stored(newDeal);
    EXPECT_THAT(columnsOf(valueFrom(board.fetchBoard(dealBoard, now))),
                ElementsAre("Prospecting: MG Special", "Engaging: GTX Pro for Isdom", "Won:", "Lost:"));
    donn.time().advanceBy(100);
    auto options =
        ChangeStageOptions::defaultOptions("Engaged", PipelineBoardObjectID::opportunity(newDeal), engaging, Date(90));
    ASSERT_EQ(moved(options), std::nullopt);
    EXPECT_EQ(changes, 1U);
    const BoardData after = valueFrom(board.fetchBoard(dealBoard, now));
    EXPECT_THAT(columnsOf(after),
                ElementsAre("Prospecting:", "Engaging: MG Special GTX Pro for Isdom", "Won:", "Lost:"));
    EXPECT_EQ(after.columns[1].cards[0].stageStartDate(), Date(90));

    const Opportunity deal = stored(newDeal);
    EXPECT_EQ(deal.modifyDate, Date(100));
    EXPECT_EQ(deal.currentPipelineID, before.currentPipelineID);
    // From 10 percent into the band of the stage.
    EXPECT_EQ(deal.probability, 25);
    const auto row = stored(ObjectID<PipelineStageHistory>(*deal.currentPipelineStageHistoryID));
    const User user = stored(ObjectID<User>(*row.createdByID));
    const PipelineStageHistory expected{.pipelineStageHistoryID = row.objectID(),
                                        .createDate = Date(100),
                                        .createdByID = user.objectID().value(),
                                        .createdByUsername = "Donn Cantrell",
                                        .modifyDate = Date(100),
                                        .opportunityID = newDeal.value(),
                                        .pipelineID = before.currentPipelineID,
                                        .pipelineName = "Sales",
                                        .pipelineStageID = deal.currentPipelineStageID,
                                        .previousPipelineID = before.currentPipelineID,
                                        .previousPipelineName = "Sales",
                                        .previousPipelineStageID = before.currentPipelineStageID,
                                        .previousStageName = "Prospecting",
                                        .stageName = "Engaged",
                                        .startDate = Date(90)};
    EXPECT_EQ(row, expected);
    EXPECT_EQ(stored(ObjectID<PipelineStageHistory>(*before.currentPipelineStageHistoryID)).endDate, Date(90));

    // Again into the same stage, before the stay there began, and closed at once.
    const auto again = ChangeStageOptions{.id = PipelineBoardObjectID::opportunity(newDeal),
                                          .stageID = engaging,
                                          .start = Date(80),
                                          .end = Date(95),
                                          .note = "Twice",
                                          .isRepeatingStage = true};
    ASSERT_EQ(moved(again), std::nullopt);
    EXPECT_EQ(stored(row.objectID()).endDate, Date(90));
    const auto last = stored(ObjectID<PipelineStageHistory>(*stored(newDeal).currentPipelineStageHistoryID));
    EXPECT_EQ(last.stageName, "Engaging");
    EXPECT_EQ(last.previousStageName, "Engaging");
    EXPECT_EQ(last.note, "Twice");
    EXPECT_EQ(last.endDate, Date(95));
    // An end that there is already stays; without a start it is now.
    ASSERT_EQ(moved({.id = PipelineBoardObjectID::opportunity(newDeal), .stageID = prospecting}), std::nullopt);
    EXPECT_EQ(stored(last.objectID()).endDate, Date(95));
    EXPECT_EQ(valueFrom(board.fetchBoard(dealBoard, now)).columns[0].cards[0].stageStartDate(), Date(100));
}

TEST_F(BoardServices, refuseToMoveACardForTheFirstReasonThatHolds) {
    const auto moveProject = [&](const ObjectID<Project>& id, const ObjectID<PipelineStageDefinition>& stage) {
        return moved({.id = PipelineBoardObjectID::project(id), .stageID = stage});
    };
    const std::string before = dumpOf(database.path());
    EXPECT_EQ(moveProject(99, started), ChangeStageError::objectiveNotFound);
    EXPECT_EQ(moved({.id = PipelineBoardObjectID::opportunity(wonDeal), .stageID = engaging}),
              ChangeStageError::objectiveNotFound);
    EXPECT_EQ(moveProject(2, started), ChangeStageError::noPipeline);
    EXPECT_EQ(moveProject(move, engaging), ChangeStageError::pipelineMissingStage);
    EXPECT_EQ(dumpOf(database.path()), before);
    // From the last reason to the first, each on top of the others.
    const auto change = [&](const auto& id, auto&& how) {
        database.write([&](PeopleDatabase::Writer& writer) { writer.change(id, how); });
    };
    change(delivery, [](PipelineDefinition& definition) { definition.forProject = 0; });
    EXPECT_EQ(moveProject(move, engaging), ChangeStageError::pipelineDoesNotApply);
    change(delivery, [](PipelineDefinition& definition) { definition.active = 0; });
    EXPECT_EQ(moveProject(move, engaging), ChangeStageError::pipelineInactive);
    change(ObjectID<Pipeline>(50), [](Pipeline& pipeline) { pipeline.deletionDate = Date(1); });
    EXPECT_EQ(moveProject(move, engaging), ChangeStageError::noPipeline);
    change(move, [](Project& project) { project.permissions.writePermissions = {teamCentral}; });
    EXPECT_EQ(moveProject(move, engaging), ChangeStageError::noWritePermission);
    change(move, [](Project& project) { project.deletionDate = Date(1); });
    EXPECT_EQ(moveProject(move, engaging), ChangeStageError::objectiveNotFound);
    ServedDatabase missing("/nowhere/crm.db", "Donn Cantrell");
    EXPECT_EQ(failureFrom(missing[services::pipelineBoard].changeStage(
                  {.id = PipelineBoardObjectID::project(move), .stageID = started})),
              ChangeStageError::objectiveNotFound);
}

TEST_F(BoardServices, refuseAStayThatEndsBeforeItStarts) {
    donn.time().advanceBy(100);
    const std::string before = dumpOf(database.path());
    const auto stay = [&](std::optional<Date> start, Date end) {
        return moved({.id = PipelineBoardObjectID::project(move), .stageID = delivered, .start = start, .end = end});
    };
    EXPECT_EQ(stay(Date(50), Date(49)), ChangeStageError::noWritePermission);
    EXPECT_EQ(stay(std::nullopt, Date(99)), ChangeStageError::noWritePermission) << "it starts now";
    EXPECT_EQ(dumpOf(database.path()), before);
    EXPECT_EQ(stay(Date(50), Date(50)), std::nullopt);
}

TEST_F(BoardServices, tellWhatMayNotBeChangedFromWhatThereIsNot) {
    const auto failures = [](ServedDatabase& served) {
        auto& board = served[services::pipelineBoard];
        return std::tuple(
            failureFrom(board.changeStage({.id = PipelineBoardObjectID::project(move), .stageID = delivered})),
            failureFrom(board.changeState(newDeal, {.state = OpportunityState::won})),
            failureFrom(board.changeStatus(move, 5)));
    };
    const auto notFound = std::tuple(ChangeStageError::objectiveNotFound, ChangeStateError::opportunityNotFound,
                                     ChangeStatusError::projectNotFound);
    const auto noPermission = std::tuple(ChangeStageError::noWritePermission, ChangeStateError::noWritePermission,
                                         ChangeStatusError::noWritePermission);
    ServedDatabase missing("/nowhere/crm.db", "Donn Cantrell");
    EXPECT_EQ(failures(missing), notFound);
    ServedDatabase moses(database.path(), "moses.frase");
    EXPECT_EQ(failures(moses), notFound) << "what is hidden is not there";
    for (const auto& user : {std::optional<std::string>(), std::optional<std::string>("somebody else")}) {
        ServedDatabase stranger(database.path(), user);
        EXPECT_EQ(failures(stranger), noPermission);
    }
    SQLite::Database(database.path(), SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 99");
    EXPECT_EQ(failures(donn), noPermission) << "a newer version's database is not written";
}

TEST_F(BoardServices, showAndMoveProjects) {
    auto& board = donn[services::pipelineBoard];
    EXPECT_THAT(columnsOf(valueFrom(board.fetchBoard(projectBoard, now))), ElementsAre("Started: Move", "Delivered:"));
    // It was in no stage of the history before.
    ASSERT_EQ(moved({.id = PipelineBoardObjectID::project(move), .stageID = delivered}), std::nullopt);
    const BoardData shown = valueFrom(board.fetchBoard(projectBoard, now));
    EXPECT_THAT(columnsOf(shown), ElementsAre("Started:", "Delivered: Move"));
    EXPECT_EQ(shown.columns[1].cards[0].avatarInfo()->name, "Moses Frase");
    EXPECT_EQ(shown.columns[1].header.total, std::nullopt);
    const auto row = stored(ObjectID<PipelineStageHistory>(*stored(move).currentPipelineStageHistoryID));
    EXPECT_EQ(row.projectID, move.value());
    EXPECT_EQ(row.opportunityID, std::nullopt);
    EXPECT_EQ(row.pipelineName, "Delivery of Move");
    // What the user may not read is on no board.
    ServedDatabase moses(database.path(), "moses.frase");
    EXPECT_THAT(columnsOf(valueFrom(moses[services::pipelineBoard].fetchBoard(projectBoard, now))),
                ElementsAre("Started:", "Delivered:"));
    const auto names = [](const auto& list) {
        std::vector<std::string> texts;
        for (const auto& one : list)
            texts.push_back(one.name.value());
        return texts;
    };
    EXPECT_THAT(names(valueFrom(board.fetchPipelines(BoardKind::projects))), ElementsAre("Delivery"));
    EXPECT_THAT(names(valueFrom(board.fetchStages(delivery))), ElementsAre("Started", "Delivered"));
    EXPECT_EQ(failureFrom(board.fetchStages(99)), ReadError::notFound());
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(delivery, [](PipelineDefinition& definition) { definition.active = 0; });
    });
    EXPECT_EQ(refusalIn(failureFrom(board.fetchBoard(projectBoard, now))),
              "there is no active pipeline of projects to show");
}

TEST_F(BoardServices, changeOutcomesAndStatus) {
    ServedDatabase moses(database.path(), "moses.frase");
    auto& board = moses[services::pipelineBoard];
    moses.time().advanceBy(100);
    const Opportunity won = stored(wonDeal);
    ASSERT_EQ(failureFrom(board.changeState(wonDeal, {.state = OpportunityState::lost, .reason = 7})), std::nullopt);
    Opportunity deal = stored(wonDeal);
    EXPECT_EQ(deal.opportunityStateType, rawValue(OpportunityState::lost));
    EXPECT_EQ(deal.lastOpportunityStateType, rawValue(OpportunityState::won));
    EXPECT_EQ(deal.opportunityStateReasonID, 7);
    EXPECT_EQ(deal.completeDate, won.completeDate);
    EXPECT_EQ(deal.modifyDate, Date(100));
    ASSERT_EQ(failureFrom(board.changeState(wonDeal, {.state = OpportunityState::lost})), std::nullopt);
    EXPECT_EQ(stored(wonDeal).opportunityStateReasonID, std::nullopt);
    EXPECT_EQ(stored(wonDeal).lastOpportunityStateType, rawValue(OpportunityState::won));
    ASSERT_EQ(failureFrom(board.changeState(wonDeal, {.state = OpportunityState::open})), std::nullopt);
    EXPECT_EQ(stored(wonDeal).completeDate, std::nullopt);
    ASSERT_EQ(failureFrom(board.changeState(wonDeal, {.state = OpportunityState::abandoned})), std::nullopt);
    EXPECT_EQ(stored(wonDeal).completeDate, Date(100));
    EXPECT_EQ(failureFrom(board.changeState(newDeal, {.state = OpportunityState::won})),
              ChangeStateError::opportunityNotFound);
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(newDeal, [](Opportunity& one) { one.permissions.readPermissions = {}; });
    });
    EXPECT_EQ(failureFrom(board.changeState(newDeal, {.state = OpportunityState::won})),
              ChangeStateError::noWritePermission);

    EXPECT_EQ(failureFrom(board.changeStatus(move, 5)), ChangeStatusError::projectNotFound);
    ASSERT_EQ(failureFrom(donn[services::pipelineBoard].changeStatus(move, 5)), std::nullopt);
    ASSERT_EQ(failureFrom(donn[services::pipelineBoard].changeStatus(move, 5)), std::nullopt);
    EXPECT_EQ(stored(move).statusCode, 5);
    EXPECT_EQ(stored(move).lastStatusCode, 2);
}

TEST_F(BoardServices, rememberHowEachUserLeftEachBoard) {
    auto& board = donn[services::pipelineBoard];
    const auto config = BoardConfig::opportunity(OpportunityBoardFilter{.pipelineDefinitionID = sales, .categoryID = 1},
                                                 {PipelineBoardSortKey::name, PipelineBoardSortOrder::reverse});
    EXPECT_EQ(valueFrom(board.fetchBoardConfig(BoardKind::opportunities)), dealBoard);
    EXPECT_TRUE(answerOf(board.storeBoardConfig(config)).hasFinished);
    EXPECT_EQ(valueFrom(board.fetchBoardConfig(BoardKind::opportunities)), config);
    EXPECT_EQ(valueFrom(board.fetchBoardConfig(BoardKind::projects)), projectBoard);
    donn.user().set("moses.frase");
    EXPECT_EQ(valueFrom(board.fetchBoardConfig(BoardKind::opportunities)), dealBoard);
    donn.user().set("donn.cantrell");
    EXPECT_EQ(valueFrom(board.fetchBoardConfig(BoardKind::opportunities)), config);
    EXPECT_THAT(columnsOf(valueFrom(board.fetchBoard(config, now))),
                ElementsAre("Prospecting:", "Engaging: GTX Pro for Isdom", "Won:", "Lost:"));
    EXPECT_EQ(valueFrom(donn[boardFilters].describeFilter(*config.opportunity()->filter)), "GTX");
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(sales, [](PipelineDefinition& definition) { definition.deletionDate = Date(1); });
    });
    EXPECT_EQ(valueFrom(board.fetchBoardConfig(BoardKind::opportunities)), dealBoard);
}

TEST_F(BoardServices, listWhatBoardsCanBeNarrowedTo) {
    auto& filters = donn[boardFilters];
    const auto users = valueFrom(filters.fetchUsers(BoardKind::opportunities, sales));
    ASSERT_EQ(users.size(), 1U);
    EXPECT_EQ(users[0].name, "Donn Cantrell");
    EXPECT_EQ(users[0].count, 2);
    EXPECT_EQ(valueFrom(filters.fetchUsers(BoardKind::projects, delivery))[0].id, mosesFrase);
    EXPECT_THAT(valueFrom(filters.fetchUsers(BoardKind::projects, sales)), IsEmpty());
    database.write([](PeopleDatabase::Writer& writer) {
        writer.add(Keyword{.keywordID = 1, .name = "Zeta", .order = 1});
        writer.add(Keyword{.keywordID = 2, .name = "Alpha", .order = 2});
        writer.add(Keyword{.keywordID = 3, .deletionDate = Date(1), .name = "Gone"});
    });
    const auto keywords = valueFrom(filters.fetchKeywords());
    ASSERT_EQ(keywords.size(), 2U);
    EXPECT_EQ(keywords[0].name, "Alpha");
    EXPECT_EQ(valueFrom(filters.fetchOpportunityTypes())[1].name, "MG Special");
    EXPECT_EQ(valueFrom(filters.describeProjectFilter({.pipelineDefinitionID = delivery, .userID = mosesFrase})),
              "Moses Frase");
}

}  // namespace
}  // namespace kestrel::host::test
