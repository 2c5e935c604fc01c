#include "services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/system_report_service.h>
#include <host/services/value_of.h>
#include <kestrel/activity/email.h>
#include <kestrel/invitations/meeting_invite.h>
#include <kestrel/services/activity_service.h>
#include <kestrel/services/categories_service.h>
#include <kestrel/services/contacts_service.h>
#include <kestrel/services/emails_service.h>
#include <kestrel/services/on_demand_service.h>
#include <kestrel/services/options_service.h>
#include <kestrel/services/permissions_service.h>
#include <kestrel/services/pipeline_board_service.h>
#include <kestrel/services/system_clock_service.h>
#include <kestrel/services/tasks_service.h>

#include <cmath>

namespace kestrel::host::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const ObjectID<Contact> ada = 1;
const ObjectID<Contact> hidden = 2;
const ObjectID<Contact> gone = 3;
const ObjectID<Contact> readOnly = 4;

class HostServices : public testing::Test {
  protected:
    HostServices() {
        database.write([](PeopleDatabase::Writer& writer) {
            writer.add(Contact{.contactID = ada, .createDate = Date(5), .firstName = "Ada", .modifyDate = Date(6)});
            writer.add(Contact{.contactID = hidden, .firstName = "Hidden", .permissions = onlyFor(teamEast)});
            writer.add(Contact{.contactID = gone, .deletionDate = Date(7), .firstName = "Gone"});
            writer.add(
                Contact{.contactID = readOnly, .firstName = "Rea", .permissions = {.writePermissions = {teamEast}}});
        });
    }

    PeopleDatabase database;
    ServedDatabase moses{database.path(), "moses.frase"};
};

// Reading

TEST_F(HostServices, tellMissingRecordsFromThoseThatAreRefused) {
    auto& contacts = moses[services::contacts];
    EXPECT_EQ(valueFrom(contacts.fetchContact(ada)).firstName, "Ada");
    EXPECT_EQ(refusalIn(failureFrom(contacts.fetchContact(hidden))),
              "Moses Frase may not read Contact/2; `kestrel access` says why");
    EXPECT_EQ(refusalIn(failureFrom(contacts.fetchContact(gone))), "Contact/3 has been deleted");
    EXPECT_EQ(failureFrom(contacts.fetchContact(99)), ReadError::notFound());
    EXPECT_EQ(failureFrom(contacts.fetchContactInfo(ObjectID<Contact>())), ReadError::missingObjectID());
    std::vector<ObjectID<Contact>> ids;
    for (const ContactRow& row : valueFrom(contacts.fetchContacts({})).rows)
        ids.push_back(row.id);
    EXPECT_THAT(ids, ElementsAre(ada, readOnly));

    EXPECT_EQ(failureFrom(moses[services::emails].fetchEmail(1)), ReadError::notFound());
    auto& records = moses[host_services::records];
    EXPECT_FALSE(valueFrom(records.decideAccess(hidden)).read.isAllowed);
    EXPECT_EQ(valueFrom(records.decideAccess(hidden)).read.rule, AccessRule::noSharedTeam);
    EXPECT_THAT(valueFrom(records.fetchRecord(gone)).json, HasSubstr("\"firstName\":\"Gone\""));
    EXPECT_EQ(valueFrom(moses[services::permissions].fetchPermissions(hidden)), onlyFor(teamEast));
    EXPECT_EQ(failureFrom(moses[services::permissions].fetchPermissions(ObjectID<Category>(1))),
              ReadError::unexpectedType("Category/1 is under no access control"));
}

TEST_F(HostServices, reportADatabaseThatCannotBeReadWithoutThrowing) {
    const TemporaryFolder folder;
    writeText(folder / "letter.txt", "Dear Sir or Madam, this is no database at all, however long it is.");
    ServedDatabase broken(folder / "letter.txt", "moses.frase");
    const auto failure = failureFrom(broken[services::contacts].fetchContact(ada));
    ASSERT_TRUE(failure && failure->fetchError());
    EXPECT_THAT(textIn(*failure->fetchError()), HasSubstr("letter.txt: is no database"));
    EXPECT_EQ(failure->fetchError()->platformError().domain, "KestrelHost");
    ServedDatabase missing(folder / "none.db", "moses.frase");
    EXPECT_THAT(
        refusalIn(failureFrom(missing[services::contacts].updateContact(Contact{.contactID = ObjectID<Contact>()}))),
        HasSubstr("there is no such database"));
    EXPECT_FALSE(std::filesystem::exists(folder / "none.db"));
    EXPECT_EQ(answerOf(missing[services::permissions].observePermissionChecker()).values,
              std::vector{PermissionChecker::empty()});
    EXPECT_EQ(failureFrom(missing[services::onDemand].fetchRecord(ada)), OnDemandError::unexpected);
    // As the command says it again.
    EXPECT_THROW((void)valueOf(missing[services::contacts].fetchContact(ada), ada), Failure);
    try {
        (void)valueOf(moses[services::contacts].fetchContact(99), AnyObjectID(ObjectID<Contact>(99)));
        FAIL();
    } catch (const Failure& missingRecord) {
        EXPECT_STREQ(missingRecord.what(), "there is no Contact/99");
    }
}

TEST_F(HostServices, followWhoIsSignedIn) {
    ServedDatabase desk(database.path(), std::nullopt);
    std::vector<PermissionChecker> checkers;
    const auto watching = desk[services::permissions].observePermissionChecker().sink(
        [&](const PermissionChecker& checker) { checkers.push_back(checker); });
    EXPECT_EQ(refusalIn(failureFrom(desk[services::contacts].fetchContact(ada))), "nobody is signed in");
    desk.user().set("moses.frase");
    desk.user().set("Moses Frase");  // The same user.
    desk.user().set("somebody else");
    EXPECT_THAT(refusalIn(failureFrom(desk[services::contacts].fetchContact(ada))),
                HasSubstr("there is no user \"somebody else\""));
    desk.user().set("administrator");
    EXPECT_EQ(valueFrom(desk[services::contacts].fetchContact(hidden)).firstName, "Hidden");
    ASSERT_EQ(checkers.size(), 4U);
    EXPECT_EQ(checkers[0], PermissionChecker::empty());
    EXPECT_EQ(checkers[1].user->objectID(), mosesFrase);
    EXPECT_FALSE(checkers[1].canRead(onlyFor(teamEast)));
    EXPECT_EQ(checkers[2], PermissionChecker::empty());
    EXPECT_EQ(checkers[3].user->objectID(), administrator);
    // What somebody else makes of the user counts for the next question.
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(administrator, [](User& user) { user.teamIDs = {teamCentral}; });
    });
    EXPECT_EQ(refusalIn(failureFrom(desk[services::contacts].fetchContact(hidden))),
              "Administrator may not read Contact/2; `kestrel access` says why");
}

// Contacts

/// A contact with something in every member that is a text, a number or a date, as its keyed form.
Contact fullContact() {
    std::string json = R"({"contactID":{"recordName":"Contact","primaryKey":9},"isFlagged":true,"priority":3)";
    for (const char* name :
         {"alias",    "creditation", "details",  "extra1",    "extra10",          "extra11",
          "extra12",  "extra2",      "extra3",   "extra4",    "extra5",           "extra6",
          "extra7",   "extra8",      "extra9",   "firstName", "hobbies",          "individualSalutation",
          "lastName", "middleName",  "nickname", "prefix",    "relationshipToMe", "suffix",
          "tagline"})
        json.append(",\"").append(name).append("\":\"").append(name).append("\"");
    int number = 0;
    for (const char* name : {"anniversaryDay", "anniversaryMonth", "anniversaryYear", "birthDay", "birthMonth",
                             "birthYear", "extraDate1", "extraDate2", "extraDate3", "extraDate4"})
        json.append(",\"").append(name).append("\":").append(std::to_string(++number));
    json += R"(,"electronicAddresses":[],"geoAddresses":[],"keywords":[],"phones":[],"permissions":)" +
            encodeJSON(onlyFor(teamCentral)).value() + "}";
    return decodeJSON<Contact>(json).value();
}

TEST_F(HostServices, storeANewContactUnderAnIdentifierOfItsOwn) {
    Contact draft{.contactID = ObjectID<Contact>(), .lastName = "Byron"};
    draft.phones = {Phone{.phoneID = ObjectID<Phone>(), .number = "1"},
                    Phone{.phoneID = ObjectID<Phone>(), .number = "2"}};
    draft.electronicAddresses = {
        {.electronicAddressID = ObjectID<AnyElectronicAddress>(), .address = "b@example.org", .serviceName = "Mail"}};
    draft.geoAddresses = {
        {.geoAddressID = ObjectID<GeoAddress>(), .city = "London", .latitude = 51.5, .longitude = -0.1}};
    draft.imageAsset = ImageAsset{.imageAssetID = ObjectID<ImageAsset>(), .height = 3, .width = 4};
    auto& contacts = moses[services::contacts];
    const auto storing = contacts.updateContact(draft);
    // Not before somebody asks.
    EXPECT_EQ(failureFrom(contacts.fetchContact(5)), ReadError::notFound());
    moses.time().advanceBy(60);
    const Contact stored = valueFrom(storing);
    EXPECT_EQ(stored.objectID(), ObjectID<Contact>(5));
    EXPECT_EQ(stored.createDate, Date(60));
    EXPECT_EQ(stored.modifyDate, Date(60));
    EXPECT_EQ(stored.phones[0].objectID(), ObjectID<Phone>(1));
    EXPECT_EQ(stored.phones[1].objectID(), ObjectID<Phone>(2));
    EXPECT_EQ(stored.phones[1].number, "2");
    EXPECT_EQ(stored.electronicAddresses[0].serviceName, "Mail");
    EXPECT_EQ(stored.geoAddresses[0].longitude, -0.1);
    EXPECT_EQ(stored.imageAsset->width, 4);
    const ContactInfo info = valueFrom(contacts.fetchContactInfo(5));
    EXPECT_EQ(info.contact, stored);
    EXPECT_EQ(info.owner->objectID(), mosesFrase);
    EXPECT_EQ(info.creator->objectID(), mosesFrase);
    // A subscriber each, a contact each.
    EXPECT_EQ(valueFrom(storing).objectID(), ObjectID<Contact>(6));
    EXPECT_EQ(valueFrom(contacts.fetchContact(6)).phones[0].objectID(), ObjectID<Phone>(3));
    // What is not saved and no part of the contact stops it as a whole.
    draft.category = Category{.categoryID = ObjectID<Category>(), .name = "New"};
    EXPECT_THAT(refusalIn(failureFrom(contacts.updateContact(draft))), HasSubstr("Contact/7: "));
    EXPECT_EQ(failureFrom(contacts.fetchContact(7)), ReadError::notFound());
}

TEST_F(HostServices, changeAContactAsItIsGiven) {
    const Contact full = fullContact();
    database.write([&](PeopleDatabase::Writer& writer) { writer.add(full); });
    auto& contacts = moses[services::contacts];
    moses.time().advanceBy(60);
    Contact changed = full;
    changed.firstName = "Anne";
    changed.deletionDate = Date(1);
    const Contact stored = valueFrom(contacts.updateContact(changed));
    EXPECT_EQ(stored.modifyDate, Date(60));
    EXPECT_EQ(valueFrom(contacts.fetchContact(9)), stored);
    // Member by member, in keyed form.
    std::string expected = encodeJSON(full).value();
    expected.replace(expected.find("\"firstName\":\"firstName\""), 23, "\"firstName\":\"Anne\"");
    expected.insert(expected.find(",\"nickname\""), ",\"modifyDate\":60");
    EXPECT_EQ(encodeJSON(stored).value(), expected);

    moses.time().advanceBy(60);
    const std::string before = dumpOf(database.path());
    EXPECT_EQ(valueFrom(contacts.updateContact(stored)), stored);
    EXPECT_EQ(refusalIn(failureFrom(contacts.updateContact(Contact{.contactID = readOnly}))),
              "Moses Frase may not change Contact/4; `kestrel access` says why");
    EXPECT_EQ(refusalIn(failureFrom(contacts.updateContact(Contact{.contactID = gone}))), "Contact/3 has been deleted");
    EXPECT_EQ(failureFrom(contacts.updateContact(Contact{.contactID = 99})), UpdateError::notFound());
    EXPECT_EQ(dumpOf(database.path()), before);
}

TEST_F(HostServices, deleteAContactSoftly) {
    moses.time().advanceBy(60);
    auto& contacts = moses[services::contacts];
    EXPECT_EQ(failureFrom(contacts.deleteContact(readOnly)), UpdateError::deleteNotAllowed());
    EXPECT_TRUE(answerOf(contacts.deleteContact(ada)).hasFinished);
    EXPECT_EQ(refusalIn(failureFrom(contacts.deleteContact(ada))), "Contact/1 has been deleted");
    const auto record = decodeJSON<Contact>(valueFrom(moses[host_services::records].fetchRecord(ada)).json).value();
    EXPECT_EQ(record.deletionDate, Date(60));
    EXPECT_EQ(record.deletionUserID, mosesFrase.value());
    EXPECT_TRUE(record.deletionIdentifier);
    EXPECT_EQ(record.createDate, Date(5));
    database.write([](PeopleDatabase::Writer& writer) {
        writer.add(Contact{.contactID = 20});
        writer.change(mosesFrase, [](User& user) { user.isRestrictedToDeleteObjects = true; });
    });
    EXPECT_EQ(failureFrom(contacts.deleteContact(20)), UpdateError::deleteNotAllowed());
}

TEST_F(HostServices, linkAContactWithTheMailAndTheEventsOfItsAddresses) {
    const TemporaryFolder folder;
    const auto importText = [&](const char* name, const std::string& text) {
        writeText(folder / name, text);
        return kestrel({"import", folder / name, "--database", database.path()}).exitCode;
    };
    const auto mailOf = [&](const ObjectID<Contact>& id) {
        ReadingStore store(database.path());
        return RecordLinks(store.database()).linked<Email>(LinkKind::subject, id);
    };
    const auto invited = [&] {
        ReadingStore store(database.path());
        return RecordTable<MeetingInvite>(store.database()).all().at(0);
    };
    ASSERT_EQ(importText("first.eml", "From: Countess@example.org\nMessage-ID: <1@x>\nSubject: First\n\nBody\n"), 0);
    ASSERT_EQ(importText("tea.ics",
                         "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//T\nBEGIN:VEVENT\nUID:tea\nDTSTAMP:20170101T000000Z\n"
                         "DTSTART:20170301T090000Z\nSUMMARY:Tea\nATTENDEE:mailto:countess@example.org\nEND:VEVENT\n"
                         "END:VCALENDAR\n"),
              0);
    EXPECT_THAT(mailOf(ada), ElementsAre());
    EXPECT_EQ(invited().inviteType, MeetingInviteType::external);

    auto& contacts = moses[services::contacts];
    Contact contact = valueFrom(contacts.fetchContact(ada));
    contact.setEmailAddresses(std::vector{
        EmailAddress{.electronicAddressID = ObjectID<AnyElectronicAddress>(), .address = "countess@Example.org"}});
    contact = valueFrom(contacts.updateContact(contact));
    EXPECT_THAT(mailOf(ada), ElementsAre(ObjectID<Email>(1)));
    EXPECT_EQ(invited().inviteType, MeetingInviteType::contact);
    // Also what comes later, as long as the contact has the address.
    ASSERT_EQ(importText("second.eml", "From: countess@example.org\nMessage-ID: <2@x>\nSubject: Second\n\nBody\n"), 0);
    EXPECT_EQ(mailOf(ada).size(), 2U);
    contact.setEmailAddresses({});
    (void)valueFrom(contacts.updateContact(contact));
    ASSERT_EQ(importText("third.eml", "From: countess@example.org\nMessage-ID: <3@x>\nSubject: Third\n\nBody\n"), 0);
    EXPECT_EQ(mailOf(ada).size(), 2U);

    // A new contact has it as well, until it is deleted.
    Contact draft{.contactID = ObjectID<Contact>()};
    draft.setEmailAddresses(std::vector{
        EmailAddress{.electronicAddressID = ObjectID<AnyElectronicAddress>(), .address = "countess@example.org"}});
    const ObjectID<Contact> heir = valueFrom(contacts.updateContact(draft)).objectID();
    EXPECT_EQ(mailOf(heir).size(), 3U);
    EXPECT_TRUE(answerOf(contacts.deleteContact(heir)).hasFinished);
    ASSERT_EQ(importText("fourth.eml", "From: countess@example.org\nMessage-ID: <4@x>\nSubject: Fourth\n\nBody\n"), 0);
    EXPECT_EQ(mailOf(heir).size(), 3U);
}

TEST_F(HostServices, letThoseChangePermissionsWhoMayDelete) {
    auto& contacts = moses[services::contacts];
    Contact contact = valueFrom(contacts.fetchContact(ada));
    contact.permissions = onlyFor(teamCentral);
    const auto restrict = [&](bool isRestricted) {
        database.write([&](PeopleDatabase::Writer& writer) {
            writer.change(mosesFrase, [&](User& user) { user.isRestrictedToDeleteObjects = isRestricted; });
        });
    };
    restrict(true);
    const std::string before = dumpOf(database.path());
    EXPECT_EQ(refusalIn(failureFrom(contacts.updateContact(contact))),
              "Moses Frase may not change who sees Contact/1; `kestrel access` says why");
    EXPECT_EQ(dumpOf(database.path()), before);
    // Everything else may be changed, and a new contact have what permissions its user wants.
    contact.permissions = {};
    contact.nickname = "Countess";
    EXPECT_EQ(valueFrom(contacts.updateContact(contact)).nickname, "Countess");
    EXPECT_EQ(valueFrom(contacts.updateContact(
                            Contact{.contactID = ObjectID<Contact>(), .permissions = onlyFor(teamCentral)}))
                  .permissions,
              onlyFor(teamCentral));
    restrict(false);
    contact.permissions = onlyFor(teamCentral);
    EXPECT_EQ(valueFrom(contacts.updateContact(contact)).permissions, onlyFor(teamCentral));
}

TEST_F(HostServices, refuseDetailsThatAreNoneOfTheContact) {
    auto& contacts = moses[services::contacts];
    Contact full{.contactID = ObjectID<Contact>()};
    full.phones = {Phone{.phoneID = ObjectID<Phone>(), .number = "1"}};
    full.electronicAddresses = {
        {.electronicAddressID = ObjectID<AnyElectronicAddress>(), .address = "https://example.org"}};
    full.geoAddresses = {{.geoAddressID = ObjectID<GeoAddress>(), .city = "London"}};
    full.imageAsset = ImageAsset{.imageAssetID = ObjectID<ImageAsset>(), .height = 3};
    full = valueFrom(contacts.updateContact(full));
    const Contact before = valueFrom(contacts.fetchContact(ada));
    const std::string dump = dumpOf(database.path());
    const auto refused = [&](auto&& take, const Contact& from) {
        Contact contact = from;
        take(contact);
        return failureFrom(contacts.updateContact(contact));
    };
    for (const Contact& other : {before, Contact{.contactID = ObjectID<Contact>()}}) {
        SCOPED_TRACE(other.objectID().stringValue());
        EXPECT_EQ(refused([&](Contact& to) { to.phones = full.phones; }, other), UpdateError::notFound());
        EXPECT_EQ(refused([&](Contact& to) { to.electronicAddresses = full.electronicAddresses; }, other),
                  UpdateError::notFound());
        EXPECT_EQ(refused([&](Contact& to) { to.geoAddresses = full.geoAddresses; }, other), UpdateError::notFound());
        EXPECT_EQ(refused([&](Contact& to) { to.imageAsset = full.imageAsset; }, other), UpdateError::notFound());
    }
    EXPECT_EQ(refused([](Contact& to) { to.phones.push_back(to.phones[0]); }, full), UpdateError::notFound())
        << "one identifier stands for one phone";
    EXPECT_EQ(dumpOf(database.path()), dump);
    // Its own stay, and may go.
    EXPECT_EQ(refused([](Contact& to) { to.phones[0].number = "2"; }, full), std::nullopt);
    EXPECT_EQ(refused([](Contact& to) { to.phones.clear(); }, full), std::nullopt);
}

// Observing

TEST_F(HostServices, sendWhatIsObservedAfterEveryChange) {
    auto& contacts = moses[services::contacts];
    std::vector<std::string> names;
    std::optional<ReadError> failure;
    auto watching = contacts.observeContactInfo(ada).sink(
        [&](const ContactInfo& info) {
            names.push_back(info->firstName.value_or("?"));
            // A change from inside of the first value is no less observed.
            if (names.size() > 1) return;
            Contact contact = info.contact;
            contact.firstName = "Augusta";
            (void)valueFrom(contacts.updateContact(contact));
        },
        [&](const Completion<ReadError>& completion) { failure = completion.failure(); });
    EXPECT_THAT(names, ElementsAre("Ada", "Augusta"));
    // What leaves it as it was is not sent.
    (void)valueFrom(moses[services::categories].createCategory("Friends"));
    EXPECT_EQ(names.size(), 2U);
    // Somebody else's change is seen within a second, once.
    database.write([](PeopleDatabase::Writer& writer) {
        writer.change(ada, [](Contact& contact) { contact.firstName = "Ada Augusta"; });
    });
    EXPECT_EQ(names.size(), 2U);
    moses.time().advanceBy(5);
    EXPECT_THAT(names, ElementsAre("Ada", "Augusta", "Ada Augusta"));
    EXPECT_TRUE(answerOf(contacts.deleteContact(ada)).hasFinished);
    EXPECT_EQ(refusalIn(failure), "Contact/1 has been deleted");

    std::size_t summaries = 0;
    watching = moses[services::activity]
                   .observeActivity(ActivitySourceID::contact(readOnly), 0)
                   .sink([&](const ActivitySummary&) { ++summaries; });
    database.write([](PeopleDatabase::Writer& writer) { writer.item(Note{.noteID = 1}, readOnly); });
    moses.time().advanceBy(1);
    EXPECT_EQ(summaries, 2U);
    watching.cancel();
    database.write([](PeopleDatabase::Writer& writer) { writer.item(Note{.noteID = 2}, readOnly); });
    moses.time().advanceBy(5);
    EXPECT_EQ(summaries, 2U);
}

TEST_F(HostServices, seeAnotherProgramsImport) {
    std::size_t changes = 0;
    const auto watching = moses[services::pipelineBoard].boardDidChange().sink([&](Void) { ++changes; });
    const TemporaryFolder folder;
    writeText(folder / "ada.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Grace\nN:Hopper;Grace;;;\nEND:VCARD\n");
    ASSERT_EQ(kestrel({"import", folder / "ada.vcf", "--database", database.path()}).exitCode, 0);
    EXPECT_EQ(valueFrom(moses[services::contacts].fetchContacts({.search = "Grace"})).total, 1U);
    EXPECT_EQ(changes, 0U);
    moses.time().advanceBy(3);
    EXPECT_EQ(changes, 1U);
    // Also when it puts another database in the place of this one.
    ASSERT_EQ(kestrel({"import", folder / "ada.vcf", "--database", folder / "other.db"}).exitCode, 0);
    std::filesystem::rename(folder / "other.db", database.path());
    for (const char* suffix : {"-wal", "-shm"})
        std::filesystem::remove(database.path().native() + suffix);
    moses.time().advanceBy(3);
    EXPECT_EQ(changes, 2U);
    moses.user().set("administrator");
    EXPECT_EQ(valueFrom(moses[services::contacts].fetchContacts({})).total, 1U);
}

// Preferences, categories

TEST_F(HostServices, keepPreferencesOfTheDatabase) {
    auto& options = moses[services::options];
    std::vector<std::optional<std::string>> observed;
    const auto watching = options.observeOption("currency").sink([&](const std::optional<std::string>& value) {
        observed.push_back(value);
    });
    EXPECT_EQ(failureFrom(options.storeOption("currency", std::nullopt)), UpdateError::notFound());
    const DatabasePreference stored = valueFrom(options.storeOption("currency", "USD"));
    EXPECT_EQ(valueFrom(options.storeOption("area", "")).prefValue, "");
    EXPECT_EQ(valueFrom(options.fetchOption("currency")), "USD");
    EXPECT_EQ(valueFrom(options.fetchOption("area")), "");
    EXPECT_EQ(valueFrom(options.fetchOption("Currency")), std::nullopt);
    const auto all = valueFrom(options.fetchOptions());
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].name, "area");
    EXPECT_EQ(all[1], stored);
    EXPECT_TRUE(valueFrom(options.storeOption("currency", std::nullopt)).deletionDate);
    EXPECT_EQ(valueFrom(options.fetchOptions()).size(), 1U);
    EXPECT_EQ(valueFrom(options.storeOption("currency", "EUR")).objectID(), stored.objectID());
    EXPECT_THAT(observed, ElementsAre(std::nullopt, "USD", std::nullopt, "EUR"));
    ServedDatabase nobody(database.path(), std::nullopt);
    EXPECT_EQ(valueFrom(nobody[services::options].fetchOption("currency")), "EUR");
    EXPECT_EQ(refusalIn(failureFrom(nobody[services::options].storeOption("currency", "GBP"))), "nobody is signed in");
}

TEST_F(HostServices, changeCategoriesWhereverTheyShow) {
    auto& categories = moses[services::categories];
    std::vector<std::vector<std::string>> observed;
    const auto watching = categories.observeCategories().sink([&](const std::vector<Category>& list) {
        observed.emplace_back();
        for (const Category& category : list)
            observed.back().push_back(category.name.value());
    });
    const Category friends = valueFrom(categories.createCategory("Friends"));
    EXPECT_EQ(friends.order, 2);
    Category series = valueFrom(categories.fetchCategories()).front();
    const ObjectID<Opportunity> deal = 1;
    const auto shown = [&] {
        return decodeJSON<Opportunity>(valueFrom(moses[host_services::records].fetchRecord(deal)).json)
            .value()
            .category;
    };
    ASSERT_EQ(shown(), series);
    series.name = "Graphics";
    series.order = 7;
    const Category stored = valueFrom(categories.updateCategory(series));
    EXPECT_EQ(stored.name, "Graphics");
    EXPECT_EQ(shown(), stored);
    EXPECT_EQ(refusalIn(failureFrom(categories.createCategory(""))), "a category needs a name");
    EXPECT_TRUE(answerOf(categories.deleteCategory(series.objectID())).hasFinished);
    EXPECT_EQ(shown(), stored);
    EXPECT_EQ(failureFrom(categories.updateCategory(Category{.categoryID = 99})), UpdateError::notFound());
    EXPECT_THAT(observed, ElementsAre(ElementsAre("GTX", "MG"), ElementsAre("GTX", "MG", "Friends"),
                                      ElementsAre("MG", "Friends", "Graphics"), ElementsAre("MG", "Friends")));
}

// Tasks

TEST_F(HostServices, completeTasksAndSingleOccurrences) {
    const TemporaryFolder folder;
    const auto week = [](int day) { return moment("2017-03-0" + std::to_string(day) + "T17:00:00Z"); };
    const std::string series =
        "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//T\nBEGIN:VTODO\nUID:report\nDTSTAMP:20170101T000000Z\n"
        "SUMMARY:Report\nDTSTART:20170301T090000Z\nDUE:20170301T170000Z\nRRULE:FREQ=DAILY;UNTIL=20170305T090000Z\n"
        "END:VTODO\nEND:VCALENDAR\n";
    writeText(folder / "todo.ics", series);
    const auto import = [&] {
        return kestrel({"import", folder / "todo.ics", "--database", database.path()}).exitCode;
    };
    ASSERT_EQ(import(), 0);
    const ObjectID<Task> report = 1;
    database.write([&](PeopleDatabase::Writer& writer) {
        writer.link(report, LinkKind::subject, ada).link(report, LinkKind::owner, mosesFrase);
        writer.add(Task{.taskID = 40, .title = "Once"});
        writer.add(Task{.taskID = 41, .permissions = {.writePermissions = {teamEast}}});
    });
    auto& tasks = moses[services::tasks];
    moses.time().advanceBy(60);
    const Task once = valueFrom(tasks.completeTask(TaskID::task(40), Date(50)));
    EXPECT_EQ(once.status, TaskStatus::done);
    EXPECT_EQ(once.completeDate, Date(50));
    EXPECT_EQ(once.modifyDate, Date(60));

    const Task second = valueFrom(tasks.completeTask(TaskID::taskOccurrence(report, week(2)), Date(70)));
    EXPECT_EQ(second.objectID(), ObjectID<Task>(42));
    EXPECT_EQ(second.title, "Report");
    EXPECT_EQ(second.dueDate, week(2));
    EXPECT_EQ(second.startDate, moment("2017-03-02T09:00:00Z"));
    EXPECT_EQ(second.repeatOriginalDate, second.startDate);
    EXPECT_EQ(second.repeatFrequency, 0);
    EXPECT_EQ(second.completeDate, Date(70));
    const auto summary = valueFrom(moses[services::activity].fetchActivity(
        ActivitySourceID::contact(ada), {.calendar = Calendar::utc(), .now = week(3)}, 0));
    ASSERT_EQ(summary.tasks.recentlyCompleted.size(), 1U);
    EXPECT_EQ(summary.tasks.recentlyCompleted[0].id(), second.objectID());
    EXPECT_EQ(summary.tasks.myTasksTotal, 2);

    const std::string before = dumpOf(database.path());
    for (const Date due : {week(2), moment("2017-02-28T17:00:00Z"), week(6)})
        EXPECT_EQ(failureFrom(tasks.completeTask(TaskID::taskOccurrence(report, due), Date(70))),
                  UpdateError::notFound());
    EXPECT_EQ(failureFrom(tasks.completeTask(TaskID::taskOccurrence(40, week(2)), Date(70))), UpdateError::notFound());
    EXPECT_EQ(failureFrom(tasks.completeTask(TaskID::task(99), Date(70))), UpdateError::notFound());
    EXPECT_THAT(refusalIn(failureFrom(tasks.completeTask(TaskID::task(41), Date(70)))),
                HasSubstr("may not change Task/41"));
    // An import of the series neither brings the occurrence back nor doubles it.
    ASSERT_EQ(import(), 0);
    EXPECT_EQ(dumpOf(database.path()), before);
}

// The system

TEST(HostRuntime, hasTheServicesOfTheSystemForThoseWhoAsk) {
    Runtime runtime = makeHostRuntime("/nowhere/crm.db", "nobody");
    EXPECT_LT(std::abs(runtime[services::systemClock].now() - Date::now()), 60);
    for (const auto& protocol :
         {"AddressGeocoderService", "SystemUserDefaultsService", "SystemNotificationsService", "ContactsService",
          "SessionService", "LoginStorageService", "LoginService", "AccountsService", "SystemReportService"})
        EXPECT_THAT(runtime.installedProtocols(), testing::Contains(HasSubstr(protocol)));
}

// Without a server

TEST_F(HostServices, sayThatThereIsNoServer) {
    auto& onDemand = moses[services::onDemand];
    EXPECT_FALSE(onDemand.isAvailable());
    EXPECT_EQ(valueFrom(onDemand.fetchRecord(ada)), OnDemandFreshness::fresh);
    for (const auto& id : {hidden, gone, ObjectID<Contact>(99)})
        EXPECT_EQ(failureFrom(onDemand.fetchActivity(id)), OnDemandError::objectNotFound);
    EXPECT_EQ(failureFrom(onDemand.fetchRecord(ObjectID<Contact>())), OnDemandError::client);
    EXPECT_EQ(failureFrom(onDemand.fetchRecord(ObjectID<Phone>(1))), OnDemandError::noContentAvailable);
    moses.user().set(std::nullopt);
    EXPECT_EQ(failureFrom(onDemand.fetchRecord(ada)), OnDemandError::client);
    moses.time().advanceBy(60);
    const SyncStatus status = valueFrom(onDemand.synchronize());
    EXPECT_TRUE(status.result.failure());
    EXPECT_EQ(status.endDate, Date(60));
    EXPECT_TRUE(answerOf(onDemand.syncEvents()).values.empty());
}

}  // namespace
}  // namespace kestrel::host::test
