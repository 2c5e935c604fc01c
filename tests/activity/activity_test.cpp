#include <gtest/gtest.h>
#include <kestrel/activity/activity_summary.h>
#include <kestrel/coding/json.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace kestrel;

TaskItem taskItem(Task task) {
    return {.task = std::move(task)};
}

TEST(ATaskItem, isPlacedByTheDateThatItsStatusMeans) {
    const auto placed = [](TaskStatus status, std::optional<Date> due) {
        return taskItem({.taskID = 1, .completeDate = Date(1), .createDate = Date(2), .dueDate = due, .status = status})
            .activityFeedReferenceDate();
    };
    EXPECT_EQ(placed(TaskStatus::done, Date(3)), Date(1));
    EXPECT_EQ(placed(TaskStatus::cancelled, Date(3)), Date(2));
    for (const auto status : {TaskStatus::open, TaskStatus::pending, TaskStatus::deferred, TaskStatus::inProgress}) {
        EXPECT_EQ(placed(status, Date(3)), Date(3));
        EXPECT_EQ(placed(status, std::nullopt), Date(2));
        EXPECT_FALSE(taskItem({.taskID = 1, .status = status}).isClosed());
    }
    EXPECT_TRUE(taskItem({.taskID = 1, .status = TaskStatus::cancelled}).isClosed());
    EXPECT_TRUE(taskItem({.taskID = 1, .status = TaskStatus::done}).isClosed());
    EXPECT_EQ(taskItem({.taskID = 1, .dueDate = Date(3), .status = TaskStatus::done}).activityFeedReferenceDate(),
              std::nullopt)
        << "done, but nobody knows when";
}

TEST(AFormField, takesItsNameFromItsDefinition) {
    const CustomRecord record{.customRecordID = 1, .bridgedDisplayString = "", .name = "own"};
    EXPECT_EQ((FormFieldItem{record, CustomRecordDefinition{.customRecordDefinitionID = 2, .name = "theirs"}}.name()),
              "theirs");
    EXPECT_EQ((FormFieldItem{record, CustomRecordDefinition{.customRecordDefinitionID = 2}}.name()), "own");
    EXPECT_EQ(FormFieldItem{record}.name(), "own");
    EXPECT_TRUE(FormFieldItem{record}.isEmpty());
    EXPECT_TRUE(FormFieldItem{CustomRecord{.customRecordID = 1}}.isEmpty());
    EXPECT_FALSE((FormFieldItem{CustomRecord{.customRecordID = 1, .bridgedDisplayString = "x"}}.isEmpty()));
}

/// One item of each kind with the same identifier and date.
std::vector<ActivityItem> oneOfEach(std::int64_t id, Date date) {
    return {ActivityItem::email({Email{.emailID = id, .messageDate = date}}),
            ActivityItem::fileAttachment({FileAttachment{.fileAttachmentID = id, .createDate = date}}),
            ActivityItem::form({Form{.customRecordSetID = id, .createDate = date}}),
            ActivityItem::note({Note{.noteID = id, .createDate = date}}),
            ActivityItem::task({Task{.taskID = id, .dueDate = date}}),
            ActivityItem::timeblock({Timeblock{.timeblockID = id, .startDate = date}}),
            ActivityItem::urlReference({URLReference{.urlReferenceID = id, .createDate = date}})};
}

TEST(AnActivityItem, isOfOneKindAndOrderedByKindAndIdentifier) {
    const std::vector<ActivityItem> items = oneOfEach(1, Date(5));
    for (std::size_t i = 0; i < items.size(); ++i) {
        const ActivityItem& item = items[i];
        EXPECT_EQ(item.date(), Date(5));
        const std::vector<bool> readers{item.email() != nullptr,       item.fileAttachment() != nullptr,
                                        item.form() != nullptr,        item.note() != nullptr,
                                        item.task() != nullptr,        item.timeblock() != nullptr,
                                        item.urlReference() != nullptr};
        EXPECT_EQ(std::ranges::count(readers, true), 1);
        EXPECT_TRUE(readers[i]);
        EXPECT_EQ(item.id().caseIndex(), i);
        const auto json = encodeJSON(item);
        ASSERT_TRUE(json.has_value());
        EXPECT_EQ(decodeJSON<ActivityItem>(*json), item);
        static constexpr std::array caseNames{"email", "fileAttachment", "form",        "note",
                                              "task",  "timeblock",      "urlReference"};
        EXPECT_TRUE(json->starts_with("{\"" + std::string(caseNames[i]) + "\":{\"_0\":{")) << *json;
        EXPECT_TRUE(encodeJSON(item.id())->starts_with("{\"" + std::string(caseNames[i]) + "\":{\"_0\":{"));
        const ActivityItem later = oneOfEach(1, Date(6))[i];
        EXPECT_NE(later, item);
        EXPECT_NE(std::hash<ActivityItem>()(later), std::hash<ActivityItem>()(item));
        for (std::size_t j = 0; j < items.size(); ++j) {
            EXPECT_EQ(oneOfEach(9, Date(5))[i].id() <=> items[j].id(), i == j ? std::strong_ordering::greater : i <=> j)
                << "the kind decides before the identifier";
        }
    }
    EXPECT_EQ(items[4].task()->objectID(), 1);
    EXPECT_EQ(ActivityItemID::note(3).note(), 3);
}

const ActivitySourceID source = ActivitySourceID::contact(1);

/// The rule of `recent()` as it is told: gather, drop the undated, sort whole items, take the last, turn round.
std::vector<ActivityItem> recentByRule(const ActivitySummary& summary, const std::vector<TaskItem>& overlaid) {
    std::vector<ActivityItem> items;
    const auto gather = [&](const auto& list, auto make) {
        for (const auto& item : list)
            items.push_back(make(item));
    };
    const auto task = [&](const TaskItem& item) {
        const auto newest =
            std::find_if(overlaid.rbegin(), overlaid.rend(), [&](const auto& each) { return each.id() == item.id(); });
        return ActivityItem::task(newest == overlaid.rend() ? item : *newest);
    };
    gather(summary.email.recent, [](const auto& item) { return ActivityItem::email(item); });
    gather(summary.files.recentAttachments, [](const auto& item) { return ActivityItem::fileAttachment(item); });
    gather(summary.files.recentURLReferences, [](const auto& item) { return ActivityItem::urlReference(item); });
    gather(summary.forms.recent, [](const auto& item) { return ActivityItem::form(item); });
    gather(summary.notes.recent, [](const auto& item) { return ActivityItem::note(item); });
    gather(summary.tasks.recentlyCompleted, task);
    gather(summary.tasks.recentlyOverdue, task);
    gather(summary.tasks.recentlyCreatedWithoutDueDates, task);
    gather(summary.timeblocks.recent, [](const auto& item) { return ActivityItem::timeblock(item); });
    std::erase_if(items, [](const ActivityItem& item) { return !item.date(); });
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [&](std::size_t a, std::size_t b) {
        return std::tuple(*items[a].date(), items[a].id(), a) < std::tuple(*items[b].date(), items[b].id(), b);
    });
    std::vector<ActivityItem> newest;
    for (auto at = order.rbegin(); at != order.rend() && std::ssize(newest) < summary.limit; ++at)
        newest.push_back(items[*at]);
    return newest;
}

TEST(ASummary, givesTheNewestItemsOfAllKindsAsTheRuleSays) {
    std::mt19937 random(20261121);
    const auto below = [&](std::int64_t bound) { return static_cast<std::int64_t>(random()) % bound; };
    for (int round = 0; round < 400; ++round) {
        const std::int64_t size = 1 + below(round % 10 == 0 ? 200 : 12);
        const auto id = [&] { return below(size * 2); };
        const auto date = [&]() -> std::optional<Date> {
            if (below(5) == 0) return std::nullopt;
            return Date(below(3) == 0 ? 7 : static_cast<double>(below(50)) - 10);
        };
        const auto task = [&] {
            const TaskStatus status = allCases<TaskStatus>[random() % allCases<TaskStatus>.size()];
            return taskItem({.taskID = id(),
                             .completeDate = date(),
                             .createDate = date(),
                             .dueDate = date(),
                             .status = status,
                             .title = std::to_string(below(1'000'000))});
        };
        ActivitySummary summary(source, Date(0), below(8) == 0 ? 1000 : below(size * 3));
        for (std::int64_t i = 0; i < size; ++i) {
            summary.email.recent.push_back({Email{.emailID = id(), .messageDate = date()}});
            summary.files.recentAttachments.push_back({FileAttachment{.fileAttachmentID = id(), .createDate = date()}});
            summary.files.recentURLReferences.push_back({URLReference{.urlReferenceID = id(), .createDate = date()}});
            summary.forms.recent.push_back({Form{.customRecordSetID = id(), .createDate = date()}});
            summary.notes.recent.push_back({Note{.noteID = id(), .createDate = date()}});
            summary.tasks.recentlyCompleted.push_back(task());
            summary.tasks.recentlyOverdue.push_back(task());
            summary.tasks.recentlyCreatedWithoutDueDates.push_back(task());
            summary.timeblocks.recent.push_back({Timeblock{.timeblockID = id(), .startDate = date()}});
        }
        std::vector<TaskItem> overlaid;
        for (std::int64_t i = below(4); i > 0; --i) {
            overlaid.push_back(task());
            summary.overlayTask(overlaid.back());
        }
        ASSERT_EQ(summary.recent(), recentByRule(summary, overlaid)) << round;
    }
}

TEST(ASummary, laysEditedTasksOverStoredOnesWithoutAddingAny) {
    ActivitySummary summary(source, Date(0), 10);
    summary.tasks.recentlyOverdue = {taskItem({.taskID = 1, .dueDate = Date(1)}),
                                     taskItem({.taskID = 2, .dueDate = Date(2)})};
    const ActivitySummary before = summary;
    summary.overlayTask(taskItem({.taskID = 1, .dueDate = Date(5), .title = "first"}));
    summary.overlayTask(taskItem({.taskID = 1, .dueDate = Date(9), .title = "second"}));
    summary.overlayTask(taskItem({.taskID = 3, .dueDate = Date(99)}));
    const auto recent = summary.recent();
    ASSERT_EQ(recent.size(), 2U);
    EXPECT_EQ(recent[0].task()->title(), "second");
    EXPECT_EQ(summary.tasks, before.tasks);
    EXPECT_NE(summary, before) << "equality counts what is overlaid";
    summary.overlayTask(taskItem({.taskID = 2, .status = TaskStatus::done}));
    EXPECT_EQ(summary.recent().size(), 1U) << "an overlay without a date leaves the list";
}

TEST(ASummary, isEmptyByItsItemsNotItsTotals) {
    ActivitySummary summary = ActivitySummary::empty(source, Date(0));
    summary.email.total = 5;
    summary.tasks.allTasksTotal = 5;
    EXPECT_TRUE(summary.isEmpty());
    summary.overlayTask(taskItem({.taskID = 1, .dueDate = Date(1)}));
    EXPECT_TRUE(summary.isEmpty());
    summary.files.recentURLReferences.push_back({URLReference{.urlReferenceID = 1, .createDate = Date(1)}});
    EXPECT_FALSE(summary.isEmpty());
    EXPECT_TRUE(summary.recent().empty()) << "its limit is 0";
    summary.limit = 1;
    EXPECT_EQ(summary.recent().size(), 1U);
    summary.files.totalAttachments = 3;
    summary.files.totalURLReferences = 4;
    EXPECT_EQ(summary.files.total(), 7);
    summary.limit = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(summary.recent().size(), 1U);
}

TEST(ASummaryDeathTest, stopsAtANegativeLimitAndAtAnOverflowingTotal) {
    EXPECT_DEATH((void)ActivitySummary(source, Date(0), -1).recent(), "limit of an activity summary is negative");
    const FilesSummary files{.totalAttachments = std::numeric_limits<std::int64_t>::max(), .totalURLReferences = 1};
    EXPECT_DEATH((void)files.total(), "does not fit 64 bits");
}

}  // namespace
