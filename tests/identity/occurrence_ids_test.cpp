#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/identity/activity_source_id.h>
#include <kestrel/identity/link_target.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/identity/pipeline_board_object_id.h>

#include <random>

namespace {

using namespace kestrel;
using enum DecodingError::Kind;

const Date date(536457600.5);

template <class T>
void expectForm(const T& value, const std::string& text) {
    EXPECT_EQ(encodeJSON(value), text);
    EXPECT_EQ(decodeJSON<T>(text), value);
    EXPECT_EQ(std::hash<T>{}(*decodeJSON<T>(text)), std::hash<T>{}(value));
}

TEST(KeyedCases, holdTheirPayloadLabelsUnderTheirName) {
    const std::string timeblock = R"({"recordName":"Timeblock","primaryKey":5})";
    const std::string task = R"({"recordName":"Task","primaryKey":5})";
    expectForm(AppointmentID::timeblock(5), R"({"timeblock":{"timeblockID":)" + timeblock + "}}");
    expectForm(AppointmentID::timeblockOccurrence(5, date),
               R"({"timeblockOccurrence":{"parentID":)" + timeblock + R"(,"startDate":536457600.5}})");
    expectForm(AppointmentID::event("e"), R"({"event":{"eventID":"e"}})");
    expectForm(AppointmentID::eventOccurrence("e", date),
               R"({"eventOccurrence":{"eventID":"e","startDate":536457600.5}})");
    expectForm(TaskID::task(5), R"({"task":{"taskID":)" + task + "}}");
    expectForm(TaskID::taskOccurrence(5, date),
               R"({"taskOccurrence":{"parentID":)" + task + R"(,"dueDate":536457600.5}})");
    expectForm(PipelineBoardObjectID::project(5), R"({"project":{"_0":{"recordName":"Project","primaryKey":5}}})");
    expectForm(OccurrenceEditScope::allFuture, R"({"allFuture":{}})");

    // Unknown keys do not count; a name given twice is one, by its last value.
    EXPECT_EQ(decodeJSON<TaskID>(R"({"x":1,"task":{"taskID":)" + task + R"(},"y":{}})"), TaskID::task(5));
    EXPECT_EQ(decodeJSON<TaskID>(R"({"task":[],"task":{"taskID":)" + task + "}}"), TaskID::task(5));

    for (const char* text :
         {"{}", R"({"x":{}})", R"({"timeblock":{},"event":{"eventID":"e"}})", R"({"event":{},"eventOccurrence":{}})"}) {
        const auto decoded = decodeJSON<AppointmentID>(text);
        ASSERT_FALSE(decoded) << text;
        EXPECT_EQ(decoded.error().kind, typeMismatch);
        EXPECT_EQ(decoded.error().description, "Invalid number of keys found, expected one.");
        EXPECT_TRUE(decoded.error().codingPath.empty());
    }
    const auto payload =
        decodeJSON<AppointmentID>(R"({"timeblockOccurrence":{"parentID":)" + task + R"(,"startDate":1}})");
    ASSERT_FALSE(payload);
    EXPECT_EQ(payload.error().kind, dataCorrupted);
    EXPECT_EQ(payload.error().codingPath, (CodingPath{"timeblockOccurrence", "parentID", "recordName"}));
    const auto missing = decodeJSON<AppointmentID>(R"({"event":{}})");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, keyNotFound);
    EXPECT_EQ(missing.error().codingPath, CodingPath{"event"});
    EXPECT_EQ(decodeJSON<AppointmentID>(R"({"event":7})").error().codingPath, CodingPath{"event"});
    EXPECT_EQ(decodeJSON<OccurrenceEditScope>(R"({"single":1})").error().kind, typeMismatch);
    const auto unsaved = encodeJSON(TaskID::task(ObjectID<Task>()));
    ASSERT_FALSE(unsaved);
    EXPECT_EQ(unsaved.error().codingPath, (CodingPath{"task", "taskID"}));
}

TEST(Occurrences, areToldFromWholeSeries) {
    const auto occurrence = AppointmentID::timeblockOccurrence(5, date);
    EXPECT_TRUE(occurrence.isRepeating());
    EXPECT_FALSE(occurrence.timeblock());
    EXPECT_EQ(occurrence.timeblockOccurrence()->parentID, ObjectID<Timeblock>(5));
    const auto event = AppointmentID::event("e");
    EXPECT_FALSE(event.isRepeating());
    EXPECT_EQ(event.event(), "e");
    EXPECT_FALSE(event.eventOccurrence());
    EXPECT_TRUE(AppointmentID::eventOccurrence("e", date).isRepeating());
    EXPECT_EQ(TaskID::taskOccurrence(5, date).linkTarget(), LinkTarget::task(5));
    EXPECT_EQ(TaskID::task(6).linkTarget(), LinkTarget::task(6));
    EXPECT_NE(PipelineBoardObjectID::project(5), PipelineBoardObjectID::opportunity(5));
}

const std::vector<LinkTarget>& everyLinkTarget() {
    static const std::vector<LinkTarget> targets{
        LinkTarget::appointment(5), LinkTarget::appointmentOccurrence(5, date, OccurrenceEditScope::allFuture),
        LinkTarget::contact(5),     LinkTarget::company(5),
        LinkTarget::email(5),       LinkTarget::note(5),
        LinkTarget::opportunity(5), LinkTarget::task(5),
        LinkTarget::project(5),     LinkTarget::form(5),
        LinkTarget::file(5),        LinkTarget::urlReference(5)};
    return targets;
}

TEST(LinkTargets, areTheFirstCaseThatFits) {
    for (const LinkTarget& target : everyLinkTarget()) {
        const auto text = encodeJSON(target);
        ASSERT_TRUE(text);
        EXPECT_EQ(decodeJSON<LinkTarget>(*text), target) << *text;
        EXPECT_EQ(target.baseObjectID().has_value(), !target.appointmentOccurrence());
    }
    EXPECT_EQ(encodeJSON(LinkTarget::file(5)), R"({"recordName":"FileAttachment","primaryKey":5})");
    EXPECT_EQ(LinkTarget::file(5).baseObjectID(), AnyObjectID(ObjectID<FileAttachment>(5)));

    // What fits two cases is the earlier one; an identifier that is broken leaves the later ones a chance.
    const std::string occurrence =
        R"("parentID":{"recordName":"Timeblock","primaryKey":5},"startDate":536457600.5,"editScope":{"allFuture":{}})";
    EXPECT_EQ(decodeJSON<LinkTarget>(R"({"recordName":"Contact","primaryKey":9,)" + occurrence + "}"),
              everyLinkTarget()[1]);
    EXPECT_EQ(decodeJSON<LinkTarget>(R"({"recordName":"Timeblock","primaryKey":9,)" + occurrence + "}"),
              LinkTarget::appointment(9));
    EXPECT_EQ(decodeJSON<LinkTarget>(R"({"recordName":"Timeblock","primaryKey":"9",)" + occurrence + "}"),
              everyLinkTarget()[1]);
    EXPECT_EQ(decodeJSON<LinkTarget>(R"({"recordName":"Form","primaryKey":9,"parentID":3})"), LinkTarget::form(9));
    EXPECT_EQ(decodeJSON<LinkTarget>(R"({"recordName":"Note","recordName":"Form","primaryKey":9})"),
              LinkTarget::form(9));

    // A key given twice does not make a later case win, in either pass.
    const std::string twice =
        R"({"recordName":"Company","primaryKey":5,"startDate":1,"editScope":[],)" + occurrence + "}";
    EXPECT_EQ(decodeJSON<LinkTarget>(twice), everyLinkTarget()[1]);

    for (const char* text :
         {"\"x\"", "7", "null", "[]", "{}", R"({"recordName":"Team","primaryKey":5})", R"({"recordName":"Contact"})",
          R"({"recordName":"Contact","primaryKey":5.5})", R"({"recordName":7,"primaryKey":5})"}) {
        const auto decoded = decodeJSON<std::vector<LinkTarget>>("[" + std::string(text) + "]");
        ASSERT_FALSE(decoded) << text;
        EXPECT_EQ(decoded.error().kind, typeMismatch);
        EXPECT_EQ(decoded.error().codingPath, CodingPath{std::size_t{0}});
        EXPECT_EQ(decoded.error().description, "Failed to decode single value container as any LinkTarget.");
    }
}

/// The twelve attempts as they are told: each by itself, in order, the first that succeeds.
std::optional<LinkTarget> byTwelveAttempts(const std::string& text) {
    std::optional<LinkTarget> found;
    const auto attempt = [&]<class Payload>(std::type_identity<Payload>, auto make) {
        if (found) return;
        if (const auto payload = decodeJSON<Payload>(text)) found = make(*payload);
    };
    const auto attemptID = [&]<class Record>(std::type_identity<Record>, LinkTarget (*make)(ObjectID<Record>)) {
        attempt(std::type_identity<ObjectID<Record>>{}, make);
    };
    attemptID(std::type_identity<Timeblock>{}, &LinkTarget::appointment);
    attempt(std::type_identity<AppointmentOccurrenceTarget>{}, [](const AppointmentOccurrenceTarget& o) {
        return LinkTarget::appointmentOccurrence(o.parentID, o.startDate, o.editScope);
    });
    attemptID(std::type_identity<Contact>{}, &LinkTarget::contact);
    attemptID(std::type_identity<Company>{}, &LinkTarget::company);
    attemptID(std::type_identity<Email>{}, &LinkTarget::email);
    attemptID(std::type_identity<Note>{}, &LinkTarget::note);
    attemptID(std::type_identity<Opportunity>{}, &LinkTarget::opportunity);
    attemptID(std::type_identity<Task>{}, &LinkTarget::task);
    attemptID(std::type_identity<Project>{}, &LinkTarget::project);
    attemptID(std::type_identity<Form>{}, &LinkTarget::form);
    attemptID(std::type_identity<FileAttachment>{}, &LinkTarget::file);
    attemptID(std::type_identity<URLReference>{}, &LinkTarget::urlReference);
    return found;
}

TEST(LinkTargets, areWhatTheTwelveAttemptsGive) {
    static constexpr const char* members[] = {R"("recordName":"Timeblock")",
                                              R"("recordName":"Form")",
                                              R"("recordName":"Contact")",
                                              R"("recordName":7)",
                                              R"("primaryKey":5)",
                                              R"("primaryKey":"5")",
                                              R"("parentID":{"recordName":"Timeblock","primaryKey":5})",
                                              R"("parentID":{"recordName":"Task","primaryKey":5})",
                                              R"("startDate":5.5)",
                                              R"("startDate":null)",
                                              R"("editScope":{"single":{}})",
                                              R"("editScope":{})",
                                              R"("x":[{}])"};
    std::mt19937 engine(9);
    std::size_t found = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string text = "{";
        for (auto count = engine() % 9; count > 0; --count)
            text += std::string(members[engine() % std::size(members)]) + (count > 1 ? "," : "");
        text += "}";
        const auto expected = byTwelveAttempts(text);
        const auto decoded = decodeJSON<LinkTarget>(text);
        ASSERT_EQ(decoded.has_value(), expected.has_value()) << text;
        if (!expected) continue;
        ASSERT_EQ(*decoded, *expected) << text;
        ++found;
    }
    EXPECT_GT(found, 1000U);
}

TEST(ActivitySources, comeBackOnlyAsContacts) {
    const std::vector<ActivitySourceID> sources{
        ActivitySourceID::contact(5),     ActivitySourceID::company(5), ActivitySourceID::task(5),
        ActivitySourceID::appointment(5), ActivitySourceID::project(5), ActivitySourceID::opportunity(5),
        ActivitySourceID::note(5),        ActivitySourceID::email(5),   ActivitySourceID::form(5)};
    for (const ActivitySourceID& source : sources) {
        const auto text = encodeJSON(source);
        ASSERT_TRUE(text);
        EXPECT_EQ(decodeJSON<LinkTarget>(*text), source.linkTarget()) << "the same record as a link's target";
        const auto decoded = decodeJSON<ActivitySourceID>(*text);
        if (source.contact()) {
            EXPECT_EQ(decoded, source);
            continue;
        }
        ASSERT_FALSE(decoded) << *text;
        EXPECT_EQ(decoded.error().kind, typeMismatch);
        EXPECT_EQ(decoded.error().description,
                  "Failed to decode single value container as any ActivitySourceID ObjectID.");
    }
}

}  // namespace
