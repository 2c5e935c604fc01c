#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <kestrel/activity/email.h>

#include <algorithm>
#include <chrono>
#include <regex>
#include <set>

namespace kestrel::host::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

const Path shippedPeople = Path(KESTREL_SOURCE_DIR) / "data" / "people";
const Path sharedData = Path(KESTREL_SHARED_DIR) / "data";

Outcome importInto(const Path& database, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "import");
    arguments.insert(arguments.end(), {"--database", database});
    return kestrel(arguments, {.environment = {{"TZ", "UTC"}}});
}

/// Finds records of a database by what is written in them.
class Records {
  public:
    explicit Records(const Path& file) : database_(file, SQLite::OPEN_READONLY), links_(database_) {}

    /// The one record whose member has that text.
    template <class Record>
    Record one(const std::string& member, const std::string& text) {
        SQLite::Statement rows(database_,
                               "SELECT id FROM \"" + std::string(entityNameOf<Record>) + "\" WHERE record ->> ? = ?");
        rows.bind(1, "$." + member);
        rows.bind(2, text);
        if (!rows.executeStep()) throw std::runtime_error("no " + text);
        auto record = RecordTable<Record>(database_).find(rows.getColumn(0).getInt64());
        if (rows.executeStep()) throw std::runtime_error("several " + text);
        return *record;
    }
    template <class Record>
    std::vector<Record> all() {
        return RecordTable<Record>(database_).all();
    }
    /// The records of a type that are linked to a target.
    template <class Record>
    std::vector<Record> linked(LinkKind kind, const AnyObjectID& target) {
        std::vector<Record> records;
        for (const ObjectID<Record>& id : links_.linked<Record>(kind, target))
            records.push_back(*RecordTable<Record>(database_).find(id));
        return records;
    }
    /// The first names of the contacts that a record is linked to.
    std::set<std::string> contactsOf(const AnyObjectID& record, LinkKind kind = LinkKind::subject) {
        std::set<std::string> names;
        for (const AnyObjectID& id : links_.targets(record, kind)) {
            if (const auto contact = id.as<Contact>())
                names.insert(RecordTable<Contact>(database_).find(*contact)->firstName.value_or(""));
        }
        return names;
    }
    std::string companyOf(const AnyRole& role) {
        const auto company = links_.target<Company>(role.objectID(), LinkKind::destination);
        return RecordTable<Company>(database_).find(company.value())->name.value();
    }

  private:
    SQLite::Database database_;
    RecordLinks links_;
};

Date at(std::string_view text) {
    return Date::parseISO8601(text).value();
}

std::vector<std::string> keywordNames(const std::vector<Keyword>& keywords) {
    std::vector<std::string> names;
    for (const Keyword& keyword : keywords)
        names.push_back(keyword.name.value());
    return names;
}

/// The shipped deals and people in a database, imported once for all tests.
class ShippedPeople : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder_ = std::make_unique<TemporaryFolder>();
        const Outcome outcome = importInto(file(), {shippedPeople, shippedExport});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
        ASSERT_EQ(outcome.errors, "");
    }
    static void TearDownTestSuite() { folder_.reset(); }
    static Path file() { return *folder_ / "crm.db"; }

    Records records{file()};

  private:
    static inline std::unique_ptr<TemporaryFolder> folder_;
};

TEST_F(ShippedPeople, becomeContactsWithEverythingThatTheirCardsSay) {
    ASSERT_EQ(records.all<Contact>().size(), 12U);
    const auto ada = records.one<Contact>("firstName", "Ada");
    EXPECT_EQ(ada.name(), (Name{.prefix = "Dr.",
                                .first = "Ada",
                                .middle = "Ruth",
                                .last = "Feldman",
                                .suffix = "MD",
                                .nickname = "Addie"}));
    EXPECT_EQ(ada.birthDate(), (PartialDate{.day = 12, .month = 4, .year = std::nullopt}));
    EXPECT_EQ(ada.anniversaryDate(), (PartialDate{.day = 20, .month = 6, .year = 2009}));
    EXPECT_EQ(ada.createDate, at("2017-01-02T09:00:00Z"));
    EXPECT_EQ(ada.modifyDate, at("2017-01-02T09:00:00Z"));
    EXPECT_EQ(ada.details, "Prefers calls before ten.\nDecides on laboratory hardware together with purchasing.");
    EXPECT_THAT(keywordNames(ada.keywords), ElementsAre("Key Contact", "Medical", "Spring Fair 2017"));
    ASSERT_EQ(ada.phones.size(), 2U);
    EXPECT_EQ(ada.defaultPhone()->number, "+1 617 555 0110");
    EXPECT_EQ(ada.phones[0].label->name, "Work");
    EXPECT_EQ(ada.phones[1].label->name, "Mobile");
    EXPECT_EQ(ada.defaultEmailAddress()->address, "ada.feldman@betasoloin.example");
    EXPECT_EQ(ada.emailAddresses()[1].label->name, "Home");
    EXPECT_EQ(ada.urlAddresses().at(0).address, "https://betasoloin.example/research");
    EXPECT_EQ(ada.socialProfiles().at(0).serviceName, "XMPP");
    EXPECT_EQ(ada.socialProfiles().at(0).address, "ada.feldman@betasoloin.example");
    ASSERT_EQ(ada.geoAddresses.size(), 2U);
    EXPECT_EQ(ada.geoAddresses[0].street, "75 Harbor Street\nFloor 4");
    EXPECT_EQ(ada.geoAddresses[0].postalCode, "02110");
    EXPECT_EQ(ada.geoAddresses[0].latitude, 42.3551);
    EXPECT_EQ(ada.geoAddresses[0].longitude, -71.0657);
    EXPECT_EQ(ada.geoAddresses[1].label->name, "Home");

    const auto hanako = records.one<Contact>("lastName", "佐藤");
    EXPECT_EQ(hanako.firstName, "花子");
    EXPECT_EQ(hanako.geoAddresses.at(0).countryCode, "JP");
    const auto zoe = records.one<Contact>("firstName", "Zoë");
    EXPECT_EQ(zoe.defaultPhone()->number, "+1 415 555 0161");
    const auto ase = records.one<Contact>("firstName", "Åse");
    EXPECT_EQ(ase.socialProfiles().at(0).serviceName, "LinkedIn");
    const auto jonas = records.one<Contact>("firstName", "Jonas");
    EXPECT_EQ(jonas.phones.at(1).label->name, "Work Fax");
}

TEST_F(ShippedPeople, haveRolesAtTheCompaniesOfTheDeals) {
    EXPECT_EQ(records.all<Company>().size(), 85U);
    const auto zoe = records.one<Contact>("firstName", "Zoë");
    std::vector<std::tuple<std::string, std::string, std::string, bool>> roles;
    for (const AnyRole& role : records.linked<AnyRole>(LinkKind::source, zoe.objectID())) {
        roles.emplace_back(records.companyOf(role), role.name.value(), role.department.value_or(""),
                           role.isDefaultForContact);
    }
    EXPECT_THAT(roles, ElementsAre(std::tuple("Konex", "Head of IT", "Infrastructure", true),
                                   std::tuple("Kan-code", "Member of the Advisory Board", "", false)));
    const auto konex = records.one<Company>("name", "Konex");
    EXPECT_EQ(records.linked<AnyRole>(LinkKind::destination, konex.objectID()).size(), 2U);
}

TEST_F(ShippedPeople, areRelatedOnceWhoeverSaysSo) {
    std::vector<std::tuple<std::string, std::set<std::string>, std::set<std::string>>> relations;
    for (const AnyRelationship& relation : records.all<AnyRelationship>()) {
        relations.emplace_back(relation.relationshipType->forwardName.get().value(),
                               records.contactsOf(relation.objectID(), LinkKind::source),
                               records.contactsOf(relation.objectID(), LinkKind::destination));
    }
    using Names = std::set<std::string>;
    EXPECT_THAT(relations, UnorderedElementsAre(std::tuple("Spouse", Names{"Ada"}, Names{"Jonas"}),
                                                std::tuple("Assistant", Names{"Zoë"}, Names{"Thomas"}),
                                                std::tuple("Colleague", Names{"Zoë"}, Names{"Dana"}),
                                                std::tuple("Friend", Names{"Dana"}, Names{"Marcus"})));
}

TEST_F(ShippedPeople, meetAtAppointments) {
    const auto demo = records.one<Timeblock>("subject", "GTX Pro demonstration at Cancity");
    EXPECT_EQ(demo.startDate, at("2017-03-07T15:00:00Z"));
    EXPECT_EQ(demo.endDate, at("2017-03-07T16:30:00Z"));
    EXPECT_EQ(demo.timeZoneName, "America/New_York");
    EXPECT_EQ(demo.kind, TimeblockKind::meeting);
    EXPECT_EQ(demo.status, TimeblockStatus::confirmed);
    EXPECT_EQ(demo.location, "480 Canal Street, New York");
    EXPECT_EQ(demo.details, "Two demonstration units, three cash desks.\nJonas brings the requirements of the stores.");
    EXPECT_THAT(records.contactsOf(demo.objectID()), ElementsAre("Ada", "Jonas"));
    std::vector<std::tuple<std::string, MeetingInviteType, MeetingInviteResponseStatus, MeetingInviteParticipationRole,
                           std::set<std::string>>>
        invites;
    for (const MeetingInvite& invite : records.linked<MeetingInvite>(LinkKind::timeblock, demo.objectID())) {
        invites.emplace_back(invite.commonName.value(), invite.inviteType, invite.responseStatus,
                             invite.participationRole, records.contactsOf(invite.objectID(), LinkKind::contact));
    }
    using enum MeetingInviteResponseStatus;
    using Role = MeetingInviteParticipationRole;
    using Names = std::set<std::string>;
    EXPECT_THAT(
        invites,
        ElementsAre(std::tuple("Jonas Feldman", MeetingInviteType::contact, accepted, Role::required, Names{"Jonas"}),
                    std::tuple("Dr. Ada Feldman", MeetingInviteType::contact, maybe, Role::optional, Names{"Ada"}),
                    std::tuple("Projector", MeetingInviteType::resource, accepted, Role::required, Names{})));

    const auto fair = records.one<Timeblock>("subject", "Spring Fair");
    EXPECT_TRUE(fair.isAllDay);
    EXPECT_FALSE(fair.showAsBusy);
    // Whole days are those of the calendar's own zone.
    EXPECT_EQ(fair.startDate, at("2017-04-25T04:00:00Z"));
    EXPECT_EQ(fair.endDate, at("2017-04-28T04:00:00Z"));
    EXPECT_EQ(fair.location, "Chicago (41.8517, -87.6155)");
    EXPECT_EQ(fair.urlString, "https://springfair.example/2017");
    EXPECT_EQ(records.one<Timeblock>("subject", "四半期レビュー Ganjaflex").startDate, at("2017-05-24T05:00:00Z"));
    EXPECT_EQ(records.one<Timeblock>("subject", "Lunch with José").status, TimeblockStatus::cancelled);
}

TEST_F(ShippedPeople, meetAgainAndAgain) {
    SQLite::Database database(file(), SQLite::OPEN_READONLY);
    SQLite::Statement rows(database,
                           "SELECT id, record ->> '$.repeatOriginalDate' FROM \"Timeblock\" WHERE "
                           "record ->> '$.subject' LIKE 'Pipeline review%' ORDER BY 2");
    ASSERT_TRUE(rows.executeStep());
    const auto series = *RecordTable<Timeblock>(database).find(rows.getColumn(0).getInt64());
    ASSERT_TRUE(rows.executeStep());
    const auto moved = *RecordTable<Timeblock>(database).find(rows.getColumn(0).getInt64());
    EXPECT_EQ(series.repeatFrequency, 2);
    EXPECT_EQ(series.repeatInterval, 1);
    EXPECT_EQ(series.repeatByDays, "MO");
    EXPECT_EQ(series.repeatEndDate, at("2017-12-18T14:00:00Z"));
    EXPECT_EQ(series.endDate, at("2017-01-09T14:45:00Z"));
    EXPECT_EQ(moved.repeatOriginalDate, at("2017-07-03T13:00:00Z"));
    EXPECT_EQ(moved.startDate, at("2017-07-05T18:00:00Z"));
    EXPECT_EQ(moved.repeatFrequency, 0);
    std::vector<Date> exceptions;
    for (const TimeblockException& exception : records.all<TimeblockException>()) {
        if (exception.timeblockID == series.objectID().value()) exceptions.push_back(*exception.dateTime);
    }
    EXPECT_THAT(exceptions, UnorderedElementsAre(at("2017-05-29T13:00:00Z"), at("2017-07-03T13:00:00Z"),
                                                 at("2017-09-04T13:00:00Z")));
    const auto group = records.one<Timeblock>("subject", "GTX user group");
    EXPECT_EQ(std::tuple(group.repeatFrequency, group.repeatInterval, group.repeatCount, group.repeatByDays),
              std::tuple(3, 2, 6, "2TU"));
}

TEST_F(ShippedPeople, haveTasksAndNotes) {
    const auto quote = records.one<Task>("title", "Send quote for GTX Pro to Cancity");
    EXPECT_EQ(quote.status, TaskStatus::done);
    EXPECT_EQ(quote.completeDate, at("2017-03-03T15:30:00Z"));
    EXPECT_EQ(quote.dueDate, at("2017-03-03T22:00:00Z"));
    EXPECT_EQ(quote.priority, 1);
    EXPECT_THAT(records.contactsOf(quote.objectID()), ElementsAre("Jonas"));
    const auto contract = records.one<Task>("title", "Review Umbrella's changes to the contract");
    EXPECT_EQ(contract.status, TaskStatus::inProgress);
    EXPECT_EQ(contract.details, "60 % complete");
    EXPECT_EQ(records.one<Task>("title", "Book a table in Miami").status, TaskStatus::cancelled);
    const auto forecast = records.one<Task>("title", "Close the month's forecast");
    EXPECT_EQ(std::tuple(forecast.repeatFrequency, forecast.repeatByMonthDays), std::tuple(3, "-1"));
    const auto exceptions = records.all<TaskException>();
    ASSERT_EQ(exceptions.size(), 1U);
    EXPECT_EQ(exceptions[0].taskID, forecast.objectID().value());
    EXPECT_EQ(exceptions[0].dateTime, at("2017-12-31T21:00:00Z"));
    const auto note = records.one<Note>("title", "After the demonstration at Cancity");
    EXPECT_EQ(
        note.plainTextBody(),
        "Jonas liked the speed of the GTX Pro. The stores ask for a longer warranty.\nNext: a quote for forty units.");
    EXPECT_THAT(records.contactsOf(note.objectID()), ElementsAre("Jonas"));
}

TEST_F(ShippedPeople, writeMail) {
    const auto mail = records.one<Email>("messageID", "08@people.kestrel.example");
    EXPECT_EQ(mail.fromString, "Étienne Marchand <etienne.marchand@umbrella.example>");
    EXPECT_EQ(mail.fromDisplayName(), "Étienne Marchand");
    EXPECT_EQ(mail.toString, "Moses Frase <moses.frase@sales.example>");
    EXPECT_EQ(mail.subject, "Contrat MG Advanced : nos modifications");
    EXPECT_EQ(mail.messageDate, at("2017-09-05T07:12:00Z"));
    EXPECT_THAT(mail.rawHeader.value(), HasSubstr("From: =?utf-8?q?=C3=89tienne_Marchand?= <etienne.marchand@umbr"));
    EXPECT_THAT(records.contactsOf(mail.objectID()), ElementsAre("Étienne"));
    const auto file = records.one<FileAttachment>("name", "contrat-umbrella.pdf");
    EXPECT_EQ(file.mimeType, "application/pdf");
    EXPECT_EQ(file.size, 193);
    EXPECT_THAT(records.contactsOf(file.objectID()), ElementsAre("Étienne"));
    const auto reply = records.one<Email>("messageID", "07@people.kestrel.example");
    EXPECT_EQ(reply.subject, "Re: 四半期レビューのご案内");
    EXPECT_EQ(reply.inReplyToMessageID, "06@people.kestrel.example");
    const auto greetings = records.one<Email>("messageID", "12@people.kestrel.example");
    EXPECT_THAT(records.contactsOf(greetings.objectID()),
                ElementsAre("Ada", "Dana", "Giulia", "José", "Marcus", "Zoë", "민준"));
    EXPECT_EQ(records.linked<Email>(LinkKind::subject, records.one<Contact>("firstName", "Ada").objectID()).size(), 4U);
}

TEST_F(ShippedPeople, areTheSameAfterASecondImportAndInAnyOrder) {
    const std::string before = dumpOf(file());
    const Outcome again = importInto(file(), {shippedPeople, "--json"});
    EXPECT_THAT(again.output, HasSubstr(R"("isUnchanged":true)"));
    EXPECT_TRUE(dumpOf(file()) == before);
    const TemporaryFolder folder;
    for (const auto* part : {"mail", "calendar.ics", "contacts.vcf"})
        ASSERT_EQ(importInto(folder / "parts.db", {shippedPeople / part}).exitCode, 0);
    ASSERT_EQ(importInto(folder / "whole.db", {shippedPeople / "contacts.vcf", shippedPeople / "mail", shippedPeople})
                  .exitCode,
              0);
    // Links, whatever came first.
    for (const auto* table : {"RecordLink", "MeetingInvite", "Email"}) {
        SCOPED_TRACE(table);
        const auto rowsOf = [&](const Path& database) {
            std::set<std::string> rows;
            std::istringstream lines(dumpOf(database));
            for (std::string line; std::getline(lines, line);) {
                if (line.starts_with(std::string(table) + " |")) rows.insert(line);
            }
            return rows;
        };
        EXPECT_EQ(rowsOf(folder / "parts.db"), rowsOf(folder / "whole.db"));
    }
}

/// Numbers of a report, by kind and name.
std::map<std::string, std::map<std::string, int>> countsOf(const std::string& report) {
    std::map<std::string, std::map<std::string, int>> counts;
    const std::regex kind(R"re("(cards|events|toDos|journals|messages)":\{([^}]*)\})re");
    const std::regex number(R"re("([a-z]+)":(\d+))re");
    for (std::sregex_iterator entry(report.begin(), report.end(), kind), end; entry != end; ++entry) {
        const std::string numbers = (*entry)[2];
        for (std::sregex_iterator part(numbers.begin(), numbers.end(), number); part != end; ++part)
            counts[(*entry)[1]][(*part)[1]] = std::stoi((*part)[2]);
    }
    return counts;
}

/// How many entries of each kind begin in the files of a folder, by their lines alone.
std::map<std::string, int> begunIn(const Path& folder) {
    const std::map<std::string, std::map<std::string, std::string>> words{
        {".vcf", {{"BEGIN:VCARD", "cards"}}},
        {".ics", {{"BEGIN:VEVENT", "events"}, {"BEGIN:VTODO", "toDos"}, {"BEGIN:VJOURNAL", "journals"}}},
        {".eml", {}}};
    std::map<std::string, int> begun;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto kind = words.find(entry.path().extension());
        if (kind == words.end()) continue;
        if (kind->first == ".eml") ++begun["messages"];
        std::ifstream stream(entry.path());
        for (std::string line; std::getline(stream, line);) {
            std::ranges::transform(line, line.begin(),
                                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
            line.erase(line.find_last_not_of(" \r") + 1);
            if (const auto word = kind->second.find(line); word != kind->second.end()) ++begun[word->second];
        }
    }
    return begun;
}

TEST(PersonalImport, takesTheFilesOfManyProgramsAndLosesNone) {
    if (!std::filesystem::exists(sharedData)) GTEST_SKIP() << sharedData << " is not there";
    const TemporaryFolder folder;
    std::map<std::string, int> found;
    for (const auto* part : {"vcard", "icalendar", "email"}) {
        for (const auto& [kind, count] : begunIn(sharedData / part))
            found[kind] += count;
    }
    const std::vector<std::string> arguments{sharedData / "vcard", sharedData / "icalendar", sharedData / "email",
                                             "--json"};
    const Outcome first = importInto(folder / "crm.db", arguments);
    ASSERT_EQ(first.exitCode, 0) << first.errors;
    const auto counts = countsOf(first.output);
    ASSERT_EQ(counts.size(), 5U);
    std::size_t broken = 0;
    for (const auto& [kind, ofKind] : counts) {
        SCOPED_TRACE(kind);
        EXPECT_EQ(ofKind.at("found"), found[kind]);
        EXPECT_EQ(ofKind.at("found"), ofKind.at("imported") + ofKind.at("repeated") + ofKind.at("broken"));
        EXPECT_EQ(ofKind.at("imported"), ofKind.at("new") + ofKind.at("changed") + ofKind.at("unchanged"));
        EXPECT_GT(ofKind.at("new"), 0);
        broken += static_cast<std::size_t>(ofKind.at("broken"));
    }
    // Every line tells a file that is there.
    std::istringstream lines(first.errors);
    std::size_t told = 0;
    for (std::string line; std::getline(lines, line); ++told) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(line, parts, std::regex("([^:]+):([0-9]+): .+"))) << line;
        EXPECT_TRUE(std::filesystem::exists(parts[1].str())) << line;
    }
    EXPECT_GE(told, broken);
    const std::string before = dumpOf(folder / "crm.db");
    const Outcome second = importInto(folder / "crm.db", arguments);
    EXPECT_THAT(second.output, HasSubstr(R"("isUnchanged":true)"));
    EXPECT_EQ(second.errors, first.errors);
    EXPECT_TRUE(dumpOf(folder / "crm.db") == before);
}

struct Malformed {
    std::string file, text, line;
};
const std::vector<Malformed> malformedFiles{
    {"a.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Ada Lovelace\n", "1: the card is never ended"},
    {"a.vcf", "BEGIN:VCARD\nFN:A\nBEGIN:VCARD\nFN:B C\nEND:VCARD\n",
     "1: the card is not ended before line 3, which begins another"},
    {"a.vcf", "\nBEGIN:VCARD\nVERSION:3.0\nNOTE:nobody\nEND:VCARD\n",
     "2: the card has no name, organisation, e-mail address or phone number"},
    {"a.vcf", "BEGIN:VCARD\nFN:A B\nEND:VCARD\nEND:VCARD\n", "4: ends a card that never began"},
    {"a.vcf", "Dear Sir,\nBEGIN:VCARD\nFN:A B\nEND:VCARD\n", "1: stands outside of a card; left out"},
    {"a.vcf", "BEGIN:VCARD\nFN:A B\nBDAY:yesterday\nEND:VCARD\n",
     "3: BDAY \"yesterday\" is no day of a calendar; left out"},
    {"a.vcf", "BEGIN:VCARD\nFN:A B\nBDAY:19810229\nEND:VCARD\n",
     "3: BDAY \"19810229\" is no day of a calendar; left out"},
    {"a.vcf", "BEGIN:VCARD\nFN:A B\nwhat is this\nEND:VCARD\n",
     "3: \"what is this\" cannot be read as a property; left out"},
    {"a.vcf", "BEGIN:VCARD\nFN:A B\nPHOTO;VALUE=uri:http://a.example/b.png\nEND:VCARD\n",
     "3: PHOTO \"http://a.example/b.png\" is no picture in the card itself; left out"},
    {"a.vcf", "BEGIN:VCARD\nFN:A B\nGEO:north\nEND:VCARD\n", "3: GEO \"north\" is no position; left out"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:1\nSUMMARY:x\nEND:VEVENT\nEND:VCALENDAR\n",
     "2: the event has no DTSTART"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:2017\nEND:VEVENT\nEND:VCALENDAR\n",
     "3: the event has no usable DTSTART"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20170231T100000Z\nEND:VEVENT\nEND:VCALENDAR\n",
     "3: the event has no usable DTSTART"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20170301T100000Z\nEND:VCALENDAR\n",
     "2: the event is not ended before line 4, which ends the VCALENDAR"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VTODO\nSUMMARY:x\n", "2: the to-do is never ended"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VTODO\nUID:1\nEND:VTODO\nEND:VCALENDAR\n",
     "2: the to-do says neither what nor when"},
    {"a.ics",
     "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20170301T100000Z\nRRULE:FREQ=SOMETIMES\nEND:VEVENT\nEND:VCALENDAR\n",
     "4: \"RRULE:FREQ=SOMETIMES\" cannot be read as a property; left out"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART;TZID=Mars:20170301T100000\nEND:VEVENT\nEND:VCALENDAR\n",
     "3: the time zone \"Mars\" is not known; taken as one without a zone"},
    {"a.ics", "BEGIN:VCALENDAR\nBEGIN:VTODO\nSUMMARY:x\nPRIORITY:high\nEND:VTODO\nEND:VCALENDAR\n",
     "4: PRIORITY \"high\" is no number from 0 to 9; left out"},
    {"a.ics",
     "BEGIN:VCALENDAR\nBEGIN:VTIMEZONE\nTZID:Z\nBEGIN:STANDARD\nDTSTART:19700101T000000\nRRULE:FREQ=SECONDLY\n"
     "TZOFFSETFROM:+0100\nTZOFFSETTO:+0100\nEND:STANDARD\nEND:VTIMEZONE\nBEGIN:VTODO\nSUMMARY:x\nEND:VTODO\n"
     "END:VCALENDAR\n",
     "2: the time zone does not change yearly; left out"},
    {"a.eml", "X-Mailer: none\n\nBody\n", "1: the message has none of the headers From, Date and Subject"},
    {"a.eml", "", "1: cannot be read as a message"},
    {"a.eml", "From: a@b.example\nSubject: x\nDate: in spring\n\nBody\n", "3: Date \"in spring\" is no date; left out"},
};

TEST(PersonalImport, tellsFileAndLineOfWhatIsMalformed) {
    for (const Malformed& malformed : malformedFiles) {
        SCOPED_TRACE(malformed.text);
        const TemporaryFolder folder;
        writeText(folder / malformed.file, malformed.text);
        const Outcome outcome = importInto(folder / "crm.db", {folder / malformed.file});
        EXPECT_EQ(outcome.exitCode, 0);
        const std::string expected = (folder / malformed.file).native() + ":" + malformed.line + "\n";
        EXPECT_THAT(outcome.errors, HasSubstr(expected));
    }
}

TEST(PersonalImport, isDoneAsAWholeOrNotAtAllWhenStrict) {
    const TemporaryFolder folder;
    writeText(folder / "good.vcf", "BEGIN:VCARD\nFN:Ada Lovelace\nBDAY:never\nEND:VCARD\n");
    writeText(folder / "bad.vcf", "BEGIN:VCARD\nFN:Ada\n");
    writeText(folder / "bad.eml", "Hello\n");
    // A property alone fails nothing.
    EXPECT_EQ(importInto(folder / "good.db", {folder / "good.vcf", "--strict"}).exitCode, 0);
    const std::string before = readFile(folder / "good.db");
    for (const auto* name : {"good.db", "new.db"}) {
        const Outcome outcome =
            importInto(folder / name, {folder / "good.vcf", folder / "bad.vcf", folder / "bad.eml", "--strict"});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.output, "");
        const std::string start = folder.path().native() + "/";
        EXPECT_EQ(outcome.errors, start + "good.vcf:3: BDAY \"never\" is no day of a calendar; left out\n" + start +
                                      "bad.vcf:1: the card is never ended\n" + start +
                                      "bad.eml:1: cannot be read as a message\n"
                                      "kestrel: 2 broken entries: nothing has been imported\n");
    }
    EXPECT_EQ(readFile(folder / "good.db"), before);
    for (const auto* name : {"new.db", "new.db-wal", "new.db-shm"})
        EXPECT_FALSE(std::filesystem::exists(folder / name)) << name;
    const Outcome lenient = importInto(folder / "new.db", {folder / "good.vcf", folder / "bad.vcf", "--json"});
    EXPECT_THAT(lenient.output,
                AllOf(HasSubstr(R"("cards":{"found":2,"imported":1,"new":1,)"), HasSubstr(R"("broken":1})"),
                      HasSubstr(R"("line":1,"message":"the card is never ended"})")));
}

TEST(PersonalImport, looksPathsUpBeforeAnythingElse) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "empty" / "sub");
    writeText(folder / "empty" / "sub" / "letter.txt", "x");
    writeText(folder / "letter.TXT", "x");
    writeText(folder / "CARD.VCF", "BEGIN:VCARD\nFN:Ada Lovelace\nEND:VCARD\n");
    const std::string start = "kestrel: " + folder.path().native();
    EXPECT_THAT(importInto(folder / "a.db", {folder / "empty"}).errors,
                HasSubstr(start + "/empty: has nothing to import"));
    EXPECT_THAT(importInto(folder / "a.db", {folder / "letter.TXT"}).errors,
                HasSubstr(start + "/letter.TXT: is of no known kind: .vcf, .ics and .eml files"));
    EXPECT_THAT(importInto(folder / "a.db", {folder / "none.vcf"}).errors,
                HasSubstr(start + "/none.vcf: cannot be opened: No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(folder / "a.db"));
    // The folder, and the same file again.
    const Outcome outcome = importInto(folder / "a.db", {folder.path(), folder / "CARD.VCF", "--json"});
    EXPECT_THAT(outcome.output, HasSubstr(R"("cards":{"found":1,"imported":1,)"));
}

TEST(PersonalImport, updatesWhatHasChangedAndKeepsTheRest) {
    const TemporaryFolder folder;
    writeText(
        folder / "a.vcf",
        "BEGIN:VCARD\nVERSION:3.0\nUID:1\nFN:Ada King\nN:King;Ada;;;\nTEL;TYPE=CELL:1\nTEL:2\nORG:Initech\nTITLE:Poet\n"
        "END:VCARD\n");
    ASSERT_EQ(importInto(folder / "crm.db", {folder / "a.vcf"}).exitCode, 0);
    writeText(
        folder / "a.vcf",
        "BEGIN:VCARD\nVERSION:3.0\nUID:1\nN:Lovelace;Ada;;;\nTEL:3\nTEL;TYPE=CELL:1\nORG:Initech\nTITLE:Programmer\n"
        "END:VCARD\n");
    const Outcome outcome = importInto(folder / "crm.db", {folder / "a.vcf", "--json"});
    EXPECT_THAT(outcome.output, HasSubstr(R"("cards":{"found":1,"imported":1,"new":0,"changed":1,)"));
    Records records(folder / "crm.db");
    const auto ada = records.one<Contact>("firstName", "Ada");
    EXPECT_EQ(ada.lastName, "Lovelace");
    std::vector<std::pair<std::int64_t, std::string>> phones;
    for (const Phone& phone : ada.phones)
        phones.emplace_back(*phone.objectID().value(), phone.number.value());
    EXPECT_THAT(phones, ElementsAre(std::pair(3, "3"), std::pair(1, "1"), std::pair(2, "2")));
    const auto roles = records.all<AnyRole>();
    ASSERT_EQ(roles.size(), 1U);
    EXPECT_EQ(roles[0].name, "Programmer");
}

/// The numbers of events in the report of an import.
std::map<std::string, int> eventsImported(const TemporaryFolder& folder, const std::string& calendar,
                                          const std::string& zone = "UTC") {
    writeText(folder / "a.ics", "BEGIN:VCALENDAR\n" + calendar + "END:VCALENDAR\n");
    const Outcome outcome = kestrel({"import", folder / "a.ics", "--database", folder / "crm.db", "--json"},
                                    {.environment = {{"TZ", zone}}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return countsOf(outcome.output)["events"];
}

TEST(PersonalImport, takesDaysAndTimesWithoutAZoneForTheSameInEveryZone) {
    const std::string days =
        "BEGIN:VEVENT\nUID:days\nDTSTART;VALUE=DATE:20240101\nRRULE:FREQ=DAILY;COUNT=9\nEXDATE;VALUE=DATE:20240103\n"
        "SUMMARY:Fair\nATTENDEE:mailto:ada@work.example\nEND:VEVENT\n"
        "BEGIN:VEVENT\nUID:days\nRECURRENCE-ID;VALUE=DATE:20240106\nDTSTART;VALUE=DATE:20240107\nSUMMARY:Moved\n"
        "END:VEVENT\n"
        "BEGIN:VEVENT\nUID:days\nRECURRENCE-ID;VALUE=DATE:20240108\nDTSTART:20240108T180000Z\nSUMMARY:Evening\n"
        "END:VEVENT\n"
        "BEGIN:VEVENT\nDTSTART;VALUE=DATE:20240201\nSUMMARY:Nameless\nEND:VEVENT\n"
        "BEGIN:VEVENT\nUID:times\nDTSTART:20240101T090000\nRRULE:FREQ=DAILY;COUNT=9\nSUMMARY:Stand-up\nEND:VEVENT\n"
        "BEGIN:VEVENT\nUID:times\nRECURRENCE-ID:20240102T090000\nDTSTART:20240102T100000\nSUMMARY:Late\nEND:VEVENT\n";
    const TemporaryFolder folder;
    writeText(folder / "a.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Ada\nN:;Ada;;;\nEMAIL:ada@work.example\nEND:VCARD\n");
    ASSERT_EQ(importInto(folder / "crm.db", {folder / "a.vcf"}).exitCode, 0);
    EXPECT_EQ(eventsImported(folder, days, "Asia/Tokyo")["new"], 6);
    for (const auto* zone : {"America/New_York", "Pacific/Auckland", "Asia/Tokyo"}) {
        SCOPED_TRACE(zone);
        EXPECT_EQ(eventsImported(folder, days, zone)["new"], 0);
        EXPECT_EQ(eventsImported(folder, days, zone)["unchanged"], 6);
        Records records(folder / "crm.db");
        EXPECT_EQ(records.all<Timeblock>().size(), 6U);
        const auto series = records.one<Timeblock>("subject", "Fair");
        EXPECT_EQ(series.timeZoneName, zone);
        const Calendar calendar = Calendar::inZone(zone).value();
        const auto january = [&](unsigned day) {
            return calendar.startOf(std::chrono::local_days(std::chrono::year(2024) / 1 / std::chrono::day(day)));
        };
        std::set<Date> exceptions;
        for (const auto& exception : records.all<TimeblockException>()) {
            if (exception.timeblockID == *series.objectID().value()) exceptions.insert(exception.dateTime.value());
        }
        EXPECT_THAT(exceptions, ElementsAre(january(3), january(6), january(8)));
        EXPECT_EQ(records.all<TimeblockException>().size(), 4U);
        EXPECT_EQ(records.one<Timeblock>("subject", "Moved").repeatOriginalDate, january(6));
        EXPECT_EQ(records.one<Timeblock>("subject", "Late").repeatOriginalDate,
                  Date::since1970(january(2).since1970() + 9 * 3600));

        // Whoever looks at it sees the day of the file.
        for (const auto* viewer : {"America/New_York", "Pacific/Auckland"}) {
            const std::string text = kestrel({"activity", "Contact/1", "--user", "administrator", "--database",
                                              folder / "crm.db", "--at", "2024-01-10T12:00:00Z"},
                                             {.environment = {{"TZ", viewer}}})
                                         .output;
            EXPECT_THAT(text, HasSubstr("\nMonday, 1 January 2024\n  appointment  Fair  all day\n"));
        }
    }
}

TEST(PersonalImport, countsEventsWithOtherExceptionsOrAddressesAsChanged) {
    const TemporaryFolder folder;
    const std::string series = "BEGIN:VEVENT\nUID:1\nDTSTART:20240101T090000Z\nRRULE:FREQ=DAILY\n";
    const std::string exception = "EXDATE:20240102T090000Z\n";
    const std::string organizer = "ORGANIZER:mailto:ada@work.example\n";
    const std::string attendee = "ATTENDEE:mailto:bob@work.example\n";
    const std::string end = "END:VEVENT\n";
    EXPECT_EQ(eventsImported(folder, series + end)["new"], 1);
    for (const std::string& more : {exception, exception + organizer, exception + organizer + attendee, exception}) {
        SCOPED_TRACE(more);
        EXPECT_EQ(eventsImported(folder, series + more + end)["changed"], 1);
        EXPECT_EQ(eventsImported(folder, series + more + end)["unchanged"], 1);
    }
    const std::string moved =
        "BEGIN:VEVENT\nUID:1\nRECURRENCE-ID:20240105T090000Z\nDTSTART:20240105T100000Z\nEND:VEVENT\n";
    auto events = eventsImported(folder, series + exception + end + moved);
    EXPECT_EQ(events["new"], 1);
    EXPECT_EQ(events["changed"], 1);
    EXPECT_EQ(eventsImported(folder, series + exception + end + moved)["unchanged"], 2);
}

TEST(PersonalImport, keepsWhatIsNewerThanTheFile) {
    const TemporaryFolder folder;
    const auto event = [](const std::string& title, const std::string& dates) {
        return "BEGIN:VEVENT\nUID:1\nDTSTART:20240101T090000Z\nSUMMARY:" + title + "\n" + dates + "END:VEVENT\n";
    };
    EXPECT_EQ(eventsImported(folder, event("Second", "LAST-MODIFIED:20240102T000000Z\n"))["new"], 1);
    const std::string before = dumpOf(folder / "crm.db");
    writeText(folder / "old.ics",
              "BEGIN:VCALENDAR\n" + event("First", "LAST-MODIFIED:20240101T000000Z\n") + "END:VCALENDAR\n");
    const Outcome outcome = importInto(folder / "crm.db", {folder / "old.ics", "--json"});
    EXPECT_EQ(countsOf(outcome.output)["events"]["repeated"], 1);
    EXPECT_THAT(outcome.output + outcome.errors, HasSubstr("is older than what is stored; left out"));
    EXPECT_EQ(dumpOf(folder / "crm.db"), before);
    // A stamp says when the file was written, which alone is no change.
    EXPECT_EQ(eventsImported(folder, event("Third", "DTSTAMP:20240103T000000Z\n"))["changed"], 1);
    EXPECT_EQ(eventsImported(folder, event("Third", "DTSTAMP:20240104T000000Z\n"))["unchanged"], 1);
    EXPECT_EQ(eventsImported(folder, event("Second", "DTSTAMP:20240102T000000Z\n"))["repeated"], 1);
    EXPECT_EQ(Records(folder / "crm.db").one<Timeblock>("subject", "Third").modifyDate, at("2024-01-03T00:00:00Z"));
}

TEST(PersonalImport, takesAgentsOrganizationsAndPeopleWhoAreNotKnown) {
    const TemporaryFolder folder;
    writeText(folder / "a.vcf",
              "BEGIN:VCARD\nVERSION:2.1\nN:Stone;Amy\nX-EVOLUTION-MANAGER:Big Blue\nAGENT:\nBEGIN:VCARD\nVERSION:2.1\n"
              "N:Penn;Sean\nEND:VCARD\nNOTE:x\nEND:VCARD\n"
              "BEGIN:VCARD\nVERSION:3.0\nN:;;;;\nFN:Initech\nORG:Initech\nTEL:5\nEND:VCARD\n");
    const Outcome outcome = importInto(folder / "crm.db", {folder / "a.vcf", "--json"});
    EXPECT_THAT(outcome.output, HasSubstr(R"("cards":{"found":3,"imported":3,"new":3,)"));
    EXPECT_EQ(outcome.errors,
              (folder / "a.vcf").native() +
                  ":12: the card is of a company, which takes its name only; left out: phone numbers\n");
    Records records(folder / "crm.db");
    EXPECT_EQ(records.one<Company>("name", "Initech").name, "Initech");
    EXPECT_EQ(records.one<Contact>("firstName", "Amy").details, "x\n\nManager: Big Blue");
    const auto agent = records.one<RelationshipType>("forwardName", "Agent");
    const auto relations = records.all<AnyRelationship>();
    ASSERT_EQ(relations.size(), 1U);
    EXPECT_EQ(relations[0].relationshipType, agent);
    EXPECT_THAT(records.contactsOf(relations[0].objectID(), LinkKind::source), ElementsAre("Amy"));
    EXPECT_THAT(records.contactsOf(relations[0].objectID(), LinkKind::destination), ElementsAre("Sean"));
}

}  // namespace
}  // namespace kestrel::host::test
