#include "people.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/activity/activity_query.h>
#include <host/activity/activity_rendering.h>
#include <host/terminal/html_text.h>
#include <kestrel/boards/board.h>
#include <kestrel/coding/json.h>

#include <algorithm>
#include <random>

namespace kestrel::host::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A record whose date of creation can only be read, from its keyed form.
template <class Record>
Record createdAt(Record record, std::string_view iso8601) {
    std::string json = encodeJSON(record).value();
    json.pop_back();
    json += ",\"createDate\":" + encodeJSON(moment(iso8601)).value() + "}";
    return decodeJSON<Record>(json).value();
}

const ObjectID<Contact> ada = 12;
const ObjectID<Contact> charles = 13;
const ObjectID<Contact> hidden = 14;
const ObjectID<Company> cancity = 1;

/// Three people of a company, one of whom Moses may not read, and what happened around them up to 14 March 2017.
class Activity : public testing::Test {
  protected:
    Activity() {
        database.write([](auto& writer) {
            Contact contact{.contactID = ada};
            contact.setName({.first = "Ada", .last = "Lovelace"});
            Contact other{.contactID = charles};
            other.setName({.first = "Charles", .last = "Babbage"});
            writer.add(contact).add(other).add(Contact{.contactID = hidden, .permissions = onlyFor(teamEast)});
            writer.role({.roleID = 1}, ada, cancity).role({.roleID = 2}, ada, cancity);
            writer.role({.roleID = 3}, hidden, cancity);
            writer.role({.roleID = 4, .deletionDate = Date()}, charles, cancity);

            writer.item(Email{.emailID = 1,
                              .fromString = "\"Charles Babbage\" <cb@engine.example>",
                              .messageDate = moment("2017-03-14T08:15:00Z"),
                              .subject = "Re: Engine"},
                        ada);
            writer.link(ObjectID<Email>(1), LinkKind::subject, cancity);
            writer.item(Email{.emailID = 2,
                              .dmiStatusCode = 20,
                              .fromString = "ada@work.example",
                              .messageDate = moment("2017-03-13T22:00:00Z")},
                        ada);
            writer.item(Email{.emailID = 3, .deletionDate = Date(), .messageDate = moment("2017-03-14T09:00:00Z")},
                        ada);
            writer.item(Email{.emailID = 4, .subject = "Undated"}, ada);
            writer.item(Timeblock{.timeblockID = 1,
                                  .endDate = moment("2017-03-14T10:30:00Z"),
                                  .location = "Dorset Street",
                                  .startDate = moment("2017-03-14T09:30:00Z"),
                                  .subject = "Demonstration"},
                        ada);
            writer.item(Timeblock{.timeblockID = 2,
                                  .isAllDay = true,
                                  .startDate = moment("2017-03-13T00:00:00Z"),
                                  .status = TimeblockStatus::cancelled,
                                  .subject = "Fair"},
                        ada);
            writer.item(Timeblock{.timeblockID = 3, .startDate = moment("2017-03-15T00:00:00Z"), .subject = "To come"},
                        ada);
            writer.item(createdAt(Note{.noteID = 1,
                                       .body = TextBody::html("<p> </p><p>Bernoulli &amp; <b>numbers</b></p>more"),
                                       .title = "Note G"},
                                  "2017-03-14T07:00:00Z"),
                        ada);
            writer.link(ObjectID<Note>(1), LinkKind::owner, mosesFrase);
            writer.item(createdAt(Note{.noteID = 2,
                                       .body = TextBody::plainText("\n  Only text\nmore"),
                                       .permissions = onlyFor(teamEast)},
                                  "2017-03-14T06:00:00Z"),
                        ada);
            writer.item(FileAttachment{.fileAttachmentID = 1,
                                       .createDate = moment("2017-03-01T12:00:00Z"),
                                       .name = "engine.pdf",
                                       .title = "The plan"},
                        ada);
            writer.item(URLReference{.urlReferenceID = 1,
                                     .createDate = moment("2017-03-01T11:00:00Z"),
                                     .urlString = "https://engine.example"},
                        ada);
            writer.add(CustomRecordSetDefinition{.customRecordSetDefinitionID = 1, .name = "Survey"});
            writer.add(CustomRecordDefinition{.customRecordDefinitionID = 1, .name = "Score"});
            writer.item(createdAt(Form{.customRecordSetID = 1, .name = "Spring"}, "2017-02-28T12:00:00Z"), ada);
            writer.link(ObjectID<Form>(1), LinkKind::definition, ObjectID<CustomRecordSetDefinition>(1));
            writer.add(CustomRecord{.customRecordID = 1,
                                    .bridgedDisplayString = "yes",
                                    .customRecordSetID = 1,
                                    .name = "Again",
                                    .order = 2});
            writer.add(CustomRecord{.customRecordID = 2,
                                    .bridgedDisplayString = "9",
                                    .customRecordDefinitionID = 1,
                                    .customRecordSetID = 1,
                                    .order = 1});
            writer.add(CustomRecord{.customRecordID = 3, .customRecordSetID = 1, .name = "Empty", .order = 3});

            using enum TaskStatus;
            addTask(writer,
                    {.taskID = 1, .completeDate = moment("2017-03-14T07:30:00Z"), .status = done, .title = "Oil"});
            addTask(writer,
                    {.taskID = 2, .dueDate = moment("2017-03-13T00:00:00Z"), .status = inProgress, .title = "Gears"});
            addTask(writer, {.taskID = 3, .dueDate = moment("2017-03-14T12:00:00Z"), .title = "Not yet due"});
            addTask(writer, {.taskID = 4,
                             .createDate = moment("2017-03-12T05:00:00Z"),
                             .isSomeday = true,
                             .status = deferred,
                             .title = "Holiday"});
            addTask(writer, {.taskID = 5,
                             .createDate = moment("2017-03-12T04:00:00Z"),
                             .isSomeday = true,
                             .status = cancelled,
                             .title = "Given up"});
            addTask(writer, {.taskID = 6,
                             .dueDate = moment("2017-03-01T00:00:00Z"),
                             .status = open,
                             .permissions = onlyFor(teamEast)});
            writer.link(ObjectID<Task>(1), LinkKind::owner, mosesFrase);
            writer.link(ObjectID<Task>(2), LinkKind::owner, mosesFrase);
            writer.link(ObjectID<Task>(4), LinkKind::owner, administrator);

            writer.item(createdAt(Note{.noteID = 10, .title = "Of the company"}, "2017-03-10T00:00:00Z"), cancity);
            writer.item(createdAt(Note{.noteID = 11, .title = "Of the hidden one"}, "2017-03-11T00:00:00Z"), hidden);
            writer.item(createdAt(Note{.noteID = 12, .title = "Of the former one"}, "2017-03-12T00:00:00Z"), charles);
        });
    }
    static void addTask(PeopleDatabase::Writer& writer, const Task& task) { writer.item(task, ada); }

    [[nodiscard]] Outcome activity(const std::string& record, const std::vector<std::string>& more = {},
                                   const std::string& user = "moses.frase",
                                   const std::map<std::string, std::string>& environment = {}) const {
        std::vector<std::string> arguments{"activity", record, "--at", "2017-03-14T10:00:00Z"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return database.run(arguments, user, environment);
    }

    PeopleDatabase database;
};

TEST_F(Activity, isShownByDay) {
    const Outcome outcome = activity("Contact/12");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output,
              R"(Activity of Ada Lovelace (Contact/12) as Moses Frase sees it
3 emails, 3 appointments, 1 note, 1 form, 1 file, 1 link
5 tasks: 3 open, 1 for some day; 2 of your own, 1 of these open

Today, Tuesday, 14 March 2017
  09:30  appointment  Demonstration           until 10:30 · Dorset Street
  08:15  email        Re: Engine              from Charles Babbage
  07:30  task         Oil                     done · Moses Frase
  07:00  note         Note G                  Bernoulli & numbers · Moses Frase

Yesterday, Monday, 13 March 2017
  22:00  email        -                       from ada@work.example · draft
         appointment  Fair                    all day · cancelled
         task         Gears                   in progress · due 13 March 2017 · Moses Frase

Sunday, 12 March 2017
  05:00  task         Holiday                 deferred · Administrator

Wednesday, 1 March 2017
  12:00  file         The plan                engine.pdf
  11:00  link         https://engine.example

Tuesday, 28 February 2017
  12:00  form         Spring                  Survey · Score: 9 · Again: yes
)");
}

TEST_F(Activity, ofACompanyIsThatOfItsPeopleToo) {
    const auto titles = [&](const std::string& user) {
        return activity("Organization/1", {"--limit", "0"}, user).output;
    };
    EXPECT_THAT(titles("moses.frase"), AllOf(StartsWith("Activity of Cancity (Organization/1) as Moses Frase sees it\n"
                                                        "3 emails, 3 appointments, 2 notes, 1 form, 1 file, 1 link\n"),
                                             HasSubstr("Of the company"), HasSubstr("Demonstration"),
                                             Not(HasSubstr("Of the former one")), Not(HasSubstr("Of the hidden one"))));
    // Donn may read one more contact, and what is only for his team.
    EXPECT_THAT(titles("donn.cantrell"),
                AllOf(HasSubstr(", 4 notes, "), HasSubstr("\n6 tasks: "), HasSubstr("Of the hidden one")));
    EXPECT_THAT(activity("Contact/12").output, Not(HasSubstr("Of the company")));
}

TEST_F(Activity, isThatOfTheMomentInTheUsersCalendar) {
    // In Auckland, thirteen hours ahead, it is eleven in the evening of the same day.
    const std::string text = activity("Contact/12", {}, "moses.frase", {{"TZ", "Pacific/Auckland"}}).output;
    EXPECT_THAT(text, AllOf(HasSubstr("Today, Tuesday, 14 March 2017\n  22:30  appointment  Demonstration"),
                            HasSubstr("\n  11:00  email        -  "),
                            HasSubstr("\nYesterday, Monday, 13 March 2017\n         appointment  Fair")));
    const std::string before = database.run({"activity", "Contact/12", "--at", "2017-03-13"}, "moses.frase").output;
    // What was due on a later day, or happened then, is not there yet; the totals are those of all items.
    EXPECT_THAT(before, AllOf(HasSubstr("\n3 emails, "), HasSubstr("Today, Monday, 13 March 2017"),
                              HasSubstr("Yesterday, Sunday, 12 March 2017"), Not(HasSubstr("Demonstration")),
                              Not(HasSubstr("Gears"))));
}

TEST_F(Activity, keepsToTheLimit) {
    const std::string text = activity("Contact/12", {"--limit", "2"}).output;
    EXPECT_THAT(text, AllOf(HasSubstr("Demonstration"), HasSubstr("Re: Engine"), Not(HasSubstr("Oil")),
                            HasSubstr("\n3 emails, ")));
}

TEST_F(Activity, isWrittenAsJSON) {
    const std::string json = activity("Contact/12", {"--json", "--limit", "3"}).output;
    ASSERT_TRUE(checkJSON(json));
    EXPECT_THAT(json, StartsWith(R"({"sourceID":{"recordName":"Contact","primaryKey":12},"timestamp":511178400,)"
                                 R"("limit":3,"totals":{"email":3,"fileAttachments":1,"urlReferences":1,"files":2,)"
                                 R"("forms":1,"notes":1,"allTasks":5,"myTasks":2,"incompleteTasks":3,)"
                                 R"("myIncompleteTasks":1,"somedayTasks":1,"timeblocks":3},"recent":[)"));
    const auto start = json.find("\"recent\":") + 9;
    const auto items = decodeJSON<std::vector<ActivityItem>>(json.substr(start, json.size() - start - 2)).value();
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(items[0].id(), ActivityItemID::timeblock(1));
    EXPECT_EQ(items[1].id(), ActivityItemID::email(1));
    EXPECT_EQ(items[2].id(), ActivityItemID::task(1));
    EXPECT_EQ(items[2].task()->ownerID, mosesFrase);
    EXPECT_EQ(items[2].task()->ownerName, (Name{.first = "Moses", .last = "Frase"}));
}

TEST_F(Activity, isOfNineKindsOfRecords) {
    for (const auto* record : {"Opportunity/1", "Project/5", "Task/1", "Timeblock/1", "Note/1", "Email/1", "Form/1"}) {
        SCOPED_TRACE(record);
        const AnyObjectID id = AnyObjectID::parse(record).value();
        database.write([&](auto& writer) {
            if (id.as<Project>()) writer.add(Project{.projectID = 5, .name = "Engine"});
            writer.item(
                createdAt(Note{.noteID = 100 + static_cast<std::int64_t>(std::string(record).size()) * 100 + record[0],
                               .title = "Linked here"},
                          "2017-03-14T00:00:00Z"),
                id);
        });
        const Outcome outcome = activity(record);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_THAT(outcome.output, AllOf(HasSubstr(record), HasSubstr(", 1 note, "), HasSubstr("Linked here")));
    }
    EXPECT_THAT(activity("Contact/13", {}, "administrator").output, HasSubstr("Of the former one"));
    EXPECT_THAT(database.run({"activity", "Organization/2"}).output,
                HasSubstr("0 tasks: 0 open, 0 for some day; 0 of your own, 0 of these open\n\nnothing recent\n"));
}

TEST_F(Activity, isRefusedWithItsRecord) {
    struct Case {
        std::string record;
        std::string message;
    };
    for (const auto& [record, message] :
         {Case{"Contact/14", "Moses Frase may not read Contact/14; `kestrel access` says why\n"},
          Case{"Note/2", "Moses Frase may not read Note/2; `kestrel access` says why\n"},
          Case{"Email/3", "Email/3 has been deleted\n"}, Case{"Form/7", "there is no Form/7\n"}}) {
        const Outcome outcome = activity(record);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.errors, "kestrel: " + message);
        EXPECT_EQ(outcome.output, "");
    }
    const Outcome wrong = activity("Team/1");
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_EQ(
        wrong.errors,
        "kestrel: there is no activity of Team/1; there is of: Contact, Organization, Opportunity, Project, Task, "
        "Timeblock, Note, Email, Form\n");
}

/// The lists against all items sorted by what the rules say.
TEST(ActivityLists, areTheNewestOfAllItems) {
    PeopleDatabase database;
    std::mt19937 random(7);
    const Date now = moment("2017-03-14T10:00:00Z");
    std::vector<Task> tasks;
    database.write([&](auto& writer) {
        writer.add(Contact{.contactID = ada});
        for (std::int64_t key = 1; key <= 300; ++key) {
            // Few different dates, so that many are the same.
            const auto date = [&]() -> std::optional<Date> {
                if (random() % 4 == 0) return std::nullopt;
                return now + (static_cast<double>(random() % 21) - 12) * 86'400;
            };
            Task task{.taskID = key, .completeDate = date(), .createDate = date(), .dueDate = date()};
            task.status = allCases<TaskStatus>[random() % allCases<TaskStatus>.size()];
            writer.item(task, ada);
            tasks.push_back(task);
        }
    });
    const auto expected = [&](auto&& belongs, auto&& dateOf, Date end, std::size_t limit) {
        std::vector<Task> list;
        std::ranges::copy_if(tasks, std::back_inserter(list), [&](const Task& task) {
            return belongs(task) && !(dateOf(task) && *dateOf(task) >= end);
        });
        std::ranges::sort(list, [&](const Task& a, const Task& b) {
            const auto key = [&](const Task& task) {
                return std::pair(dateOf(task).value_or(Date::distantPast()), task.objectID());
            };
            return key(a) > key(b);
        });
        list.resize(std::min(limit, list.size()), Task{.taskID = 0});
        std::vector<ObjectID<Task>> ids;
        std::ranges::transform(list, std::back_inserter(ids), &Task::objectID);
        return ids;
    };
    const auto ids = [](const std::vector<TaskItem>& items) {
        std::vector<ObjectID<Task>> list;
        std::ranges::transform(items, std::back_inserter(list), &TaskItem::id);
        return list;
    };
    ReadingStore store(database.path());
    const Directory directory(store.database());
    ReadableRecords records(store.database(), directory, directory.user("administrator"));
    const Date tomorrow = moment("2017-03-15T00:00:00Z");
    for (const std::size_t limit : {1U, 5U, 20U, 1000U}) {
        const auto summary =
            activityOf(records, ActivitySourceID::contact(ada), {.calendar = Calendar::utc(), .now = now}, limit);
        const auto& lists = summary.tasks;
        const auto isOpen = [](const Task& task) { return !task.isClosed(); };
        EXPECT_EQ(ids(lists.recentlyCompleted),
                  expected([](const Task& task) { return task.status == TaskStatus::done; },
                           [](const Task& task) { return task.completeDate; }, tomorrow, limit));
        EXPECT_EQ(ids(lists.recentlyOverdue), expected([&](const Task& task) { return isOpen(task) && task.dueDate; },
                                                       [](const Task& task) { return task.dueDate; }, now, limit));
        EXPECT_EQ(ids(lists.recentlyCreatedWithoutDueDates),
                  expected([&](const Task& task) { return isOpen(task) && !task.dueDate; },
                           [](const Task& task) { return task.createDate; }, tomorrow, limit));
        EXPECT_EQ(lists.allTasksTotal, 300);
        EXPECT_EQ(lists.incompleteTasksTotal, std::ranges::count_if(tasks, isOpen));
        EXPECT_EQ(summary.limit, static_cast<std::int64_t>(limit));
        EXPECT_LE(summary.recent().size(), limit);
    }
}

TEST(ActivityPictures, fitTheTerminal) {
    ActivitySummary summary(ActivitySourceID::contact(ada), moment("2017-03-14T10:00:00Z"), 5);
    summary.notes.recent.push_back({createdAt(
        Note{.noteID = 1, .body = TextBody::plainText(std::string(1'000, 'x')), .title = "宮崎\x1b[2J and more of it"},
        "2017-03-14T09:00:00Z")});
    summary.timeblocks.recent.push_back({Timeblock{.timeblockID = 1, .startDate = Date(-1e300)}});
    const ActivityPicture picture{.summary = summary,
                                  .title = "A\x1b",
                                  .userName = "B\n",
                                  .at = {.calendar = Calendar::utc(), .now = summary.timestamp}};
    const Terminal terminal{.isTerminal = true, .hasColor = true, .width = 40};
    EXPECT_THAT(rendered(picture, terminal),
                AllOf(StartsWith("\x1b[1mActivity of A\\u{1b}\x1b[0m as B\\n sees it\n"),
                      HasSubstr("\n\x1b[1mToday, Tuesday, 14 March 2017\x1b[0m\n"
                                "  09:00  note         宮崎\\u{1b}[2J and…\n"),
                      HasSubstr(Date(-1e300).description() + "\x1b[0m\n         appointment  -\n")));
    EXPECT_THAT(rendered(picture, {}), HasSubstr(" and more of it  " + std::string(99, 'x') + "…\n"));
}

TEST(Notes, showTheirFirstLine) {
    EXPECT_EQ(firstLine(TextBody::plainText("")), "");
    EXPECT_EQ(firstLine(TextBody::plainText(" \r\n\t\n  one  \r\ntwo")), "one");
    EXPECT_EQ(firstLine(TextBody::attributed(AttributedString("one\ntwo"))), "one");
    EXPECT_EQ(firstLine(TextBody::html("<div><br/>one <i>and</i>\n  two</div>three")), "one and two");
}

TEST(HTML, becomesPlainText) {
    struct Case {
        std::string html, text;
    };
    for (const auto& [html, text] :
         {Case{"", ""}, Case{"a < b & c", "a < b & c"}, Case{"a<!-- <b> -->b", "ab"}, Case{"a<!-- b", "a"},
          Case{"&lt;&#65;&#x1F600;&nbsp;&bogus;&#0;&#xD800;&#x110000;&", "<A😀 &bogus;&#0;&#xD800;&#x110000;&"},
          Case{"<STYLE>p { a: b }</Style >x<script>if (a < b) c</script>y<script>z", "xy"},
          Case{"<p class='x'>a</P><BR>b", "\na\n\nb"}, Case{"<unclosed", ""}, Case{"< no", "< no"}})
        EXPECT_EQ(plainTextOfHTML(html), text) << html;
}

// ---------------------------------------------------------------------------------------------------------------
// what comes next, on boards

class NextActivities : public testing::Test {
  protected:
    NextActivities() {
        database.write([](auto& writer) {
            Contact contact{.contactID = ada};
            contact.setName({.first = "Ada", .last = "Lovelace"});
            Contact other{.contactID = charles};
            other.setName({.first = "Charles", .last = "Babbage"});
            other.permissions = onlyFor(teamEast);
            writer.add(contact).add(other);
        });
    }
    /// The cards by the keys of their deals, as a user sees them on the morning of 14 March 2017.
    [[nodiscard]] std::map<std::int64_t, OpportunityBoardCardData> cards(
        const std::string& user = "administrator") const {
        const Outcome outcome = database.run({"board", "--at", "2017-03-14T10:00:00Z", "--json"}, user);
        std::map<std::int64_t, OpportunityBoardCardData> found;
        const BoardData board = decodeJSON<BoardData>(outcome.output).value();
        for (const auto& column : board.columns) {
            for (const auto& card : column.cards)
                found.emplace(card.opportunity()->id.value().value(), card.opportunity().value());
        }
        return found;
    }
    static Task due(std::int64_t key, std::string_view iso8601) { return {.taskID = key, .dueDate = moment(iso8601)}; }
    static NextActivity task(std::int64_t key, std::string_view iso8601) {
        return {.type = NextActivityType::task(key), .date = moment(iso8601)};
    }

    PeopleDatabase database;
};

TEST_F(NextActivities, areTheEarliestOfTheDealItsCompaniesAndTheirPeople) {
    EXPECT_EQ(cards().at(1).nextActivities, std::nullopt);
    // The first deal is one with the first company, where Ada has a role.
    database.write([](auto& writer) { writer.role({.roleID = 1}, ada, cancity).item(due(1, "2017-03-20"), ada); });
    EXPECT_EQ(cards().at(1).nextActivities, (std::vector{task(1, "2017-03-20")}));
    EXPECT_EQ(cards().at(2).nextActivities, std::nullopt);
    database.write([](auto& writer) { writer.item(due(2, "2017-03-19"), cancity); });
    EXPECT_EQ(cards().at(1).nextActivities, (std::vector{task(2, "2017-03-19")}));
    database.write([](auto& writer) { writer.item(due(3, "2017-03-14"), ObjectID<Opportunity>(1)); });
    EXPECT_EQ(cards().at(1).nextActivities, (std::vector{task(3, "2017-03-14")}));
    // An appointment of the same day stands behind the task.
    database.write([](auto& writer) {
        writer.item(Timeblock{.timeblockID = 1, .isAllDay = true, .startDate = moment("2017-03-14T08:00:00Z")}, ada);
    });
    EXPECT_EQ(
        cards().at(1).nextActivities,
        (std::vector{
            task(3, "2017-03-14"),
            {.type = NextActivityType::appointment(1), .date = moment("2017-03-14T08:00:00Z"), .isAllDay = true}}));
    EXPECT_EQ(cards().at(3).nextActivities, std::nullopt);
    EXPECT_THAT(database.run({"board", "--at", "2017-03-14"}).output, HasSubstr("  task 2017-03-14\n"));
}

TEST_F(NextActivities, startWholeDaysOnTheDayOfTheirOwnZone) {
    // The 14th in Tokyo starts when it is still the 13th where the board is looked at.
    database.write([](auto& writer) {
        writer.item(Timeblock{.timeblockID = 1,
                              .isAllDay = true,
                              .startDate = moment("2017-03-13T15:00:00Z"),
                              .timeZoneName = "Asia/Tokyo"},
                    cancity);
    });
    EXPECT_EQ(cards().at(1).nextActivities,
              (std::vector{NextActivity{
                  .type = NextActivityType::appointment(1), .date = moment("2017-03-14"), .isAllDay = true}}));
}

TEST_F(NextActivities, leaveOutWhatIsOverOrNotToBeRead) {
    database.write([](auto& writer) {
        writer.role({.roleID = 1}, charles, cancity).role({.roleID = 2, .deletionDate = Date()}, ada, cancity);
        writer.item(due(1, "2017-03-13T23:59:59Z"), cancity);
        Task task = due(2, "2017-03-15");
        task.status = TaskStatus::done;
        writer.item(task, cancity);
        task = due(3, "2017-03-15");
        task.deletionDate = Date();
        writer.item(task, cancity);
        task = due(4, "2017-03-15");
        task.permissions = onlyFor(teamEast);
        writer.item(task, cancity);
        writer.item(Task{.taskID = 5}, cancity);
        writer.item(
            Timeblock{
                .timeblockID = 1, .startDate = moment("2017-03-15T00:00:00Z"), .status = TimeblockStatus::cancelled},
            cancity);
        writer.item(due(6, "2017-03-16"), charles);
        writer.item(due(7, "2017-03-15"), ada);
        writer.item(due(8, "2017-03-18"), cancity);
    });
    EXPECT_EQ(cards("moses.frase").at(1).nextActivities, (std::vector{task(8, "2017-03-18")}));
    EXPECT_EQ(cards().at(1).nextActivities, (std::vector{task(4, "2017-03-15")}));
}

TEST_F(NextActivities, comeWithThePeopleOnTheDeal) {
    database.write([](auto& writer) {
        const ObjectID<Opportunity> deal = 1;
        writer.role({.roleID = 1}, charles, deal).role({.roleID = 2}, ada, deal).role({.roleID = 3}, ada, deal);
        writer.role({.roleID = 4}, ada, cancity).item(due(1, "2017-03-20"), charles);
    });
    EXPECT_EQ(cards().at(1).linkedPeople, "Charles Babbage, Ada Lovelace");
    EXPECT_EQ(cards().at(1).nextActivities, (std::vector{task(1, "2017-03-20")}));
    EXPECT_EQ(cards().at(3).linkedPeople, "");
    EXPECT_EQ(cards("moses.frase").at(1).linkedPeople, "Ada Lovelace");
    EXPECT_EQ(cards("moses.frase").at(1).nextActivities, std::nullopt);
    EXPECT_THAT(database.run({"board", "--at", "2017-03-14"}, "moses.frase").output,
                HasSubstr("  Cancity (Ada Lovelace)  1,054 "));
}

}  // namespace
}  // namespace kestrel::host::test
