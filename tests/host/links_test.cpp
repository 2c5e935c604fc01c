#include "people.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/contact/link_query.h>
#include <kestrel/coding/json.h>

namespace kestrel::host::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const ObjectID<Contact> ada = 12;
const ObjectID<Contact> byron = 13;
const ObjectID<Contact> hidden = 14;

class Links : public testing::Test {
  protected:
    Links() {
        database.write([](auto& writer) {
            const auto person = [&](const ObjectID<Contact>& id, const std::string& first, const std::string& last) {
                Contact contact{.contactID = id};
                contact.setName({.first = first, .last = last});
                if (id == hidden) contact.permissions = onlyFor(teamEast);
                writer.add(contact);
            };
            person(ada, "Ada", "Lovelace");
            person(byron, "George", "Byron");
            person(hidden, "Annabella", "Milbanke");
            const RelationshipType family{.relationshipTypeID = 1, .forwardName = "Child", .reverseName = "Parent"};
            writer.relationship({.relationID = 1, .relationshipType = family}, byron, ada);
            writer.relationship({.relationID = 2, .relationshipType = family}, hidden, ada);
            writer.relationship({.relationID = 3}, ada, byron);
            writer.relationship({.relationID = 4, .deletionDate = Date()}, byron, ada);
            writer.relationship({.relationID = 5, .relationshipType = family}, ada, ObjectID<Company>(2));
            writer.role({.roleID = 1, .name = "Analyst"}, ada, ObjectID<Company>(1));
            writer.role({.roleID = 2, .name = "Owner"}, hidden, ObjectID<Company>(1));
            writer.role({.roleID = 3, .deletionDate = Date()}, byron, ObjectID<Company>(1));
            writer.role({.roleID = 4}, byron, ObjectID<Opportunity>(1));
            writer.add(Project{.projectID = 5, .name = "Note G"});
            writer.role({.roleID = 5, .name = "Author"}, ada, ObjectID<Project>(5));
            writer.item(Email{.emailID = 1}, ada).link(ObjectID<Email>(1), LinkKind::subject, byron);
            writer.link(ObjectID<Email>(1), LinkKind::subject, ObjectID<Company>(1));
            writer.add(Email{.emailID = 2});
            writer.item(Note{.noteID = 1}, ada);
        });
    }
    [[nodiscard]] std::string links(const std::string& record, const std::string& user = "moses.frase") const {
        const Outcome outcome = database.run({"links", record}, user);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }

    PeopleDatabase database;
};

TEST_F(Links, pointAtContacts) {
    // What the one is to the other depends on the end that is looked from; nothing of a type that there is not.
    EXPECT_EQ(links("Contact/12"),
              "CONTACT       IDENTIFIER  LINK          AS\n"
              "George Byron  Contact/13  relationship  Parent\n");
    EXPECT_EQ(links("Contact/13"),
              "CONTACT       IDENTIFIER  LINK          AS\n"
              "Ada Lovelace  Contact/12  relationship  -\n");
    EXPECT_THAT(links("Contact/12", "donn.cantrell"),
                HasSubstr("Annabella Milbanke  Contact/14  relationship  Parent\n"));
}

TEST_F(Links, pointAtWherePeopleHaveRoles) {
    EXPECT_EQ(links("Organization/1"),
              "CONTACT       IDENTIFIER  LINK          AS\n"
              "Ada Lovelace  Contact/12  company role  Analyst\n");
    EXPECT_THAT(links("Organization/1", "administrator"),
                HasSubstr("\nAnnabella Milbanke  Contact/14  company role  Owner\n"));
    EXPECT_THAT(links("Opportunity/1"), HasSubstr("\nGeorge Byron  Contact/13  opportunity role  -\n"));
    EXPECT_THAT(links("Project/5"), HasSubstr("\nAda Lovelace  Contact/12  project role  Author\n"));
    // A relationship to a company is no link to it.
    EXPECT_EQ(links("Organization/2"), "no contact's link points at Organization/2\n");
}

TEST_F(Links, pointAtEmails) {
    EXPECT_THAT(links("Email/1"), AllOf(HasSubstr("\nAda Lovelace  Contact/12  email  -\n"),
                                        HasSubstr("\nGeorge Byron  Contact/13  email  -\n")));
    EXPECT_EQ(links("Email/2"), "no contact's link points at Email/2\n");
    EXPECT_EQ(database.run({"links", "Email/2", "--json"}).output, "[]\n");
}

TEST_F(Links, areWrittenAsJSON) {
    const auto json = [&](const std::string& record) {
        return database.run({"links", record, "--json"}, "moses.frase").output;
    };
    const auto coded = [](const ObjectID<Contact>& contact, const ContactLink& link) {
        return "{\"contact\":" + encodeJSON(contact).value() + ",\"link\":" + encodeJSON(link).value();
    };
    EXPECT_EQ(json("Contact/12"), "[" + coded(byron, ContactLink::relationship(ada)) + ",\"name\":\"Parent\"}]\n");
    EXPECT_EQ(json("Organization/1"), "[" + coded(ada, ContactLink::companyRole(1)) + ",\"name\":\"Analyst\"}]\n");
    EXPECT_EQ(json("Opportunity/1"), "[" + coded(byron, ContactLink::opportunityRole(1)) + "}]\n");
    EXPECT_EQ(json("Project/5"), "[" + coded(ada, ContactLink::projectRole(5)) + ",\"name\":\"Author\"}]\n");
    EXPECT_EQ(json("Email/1"),
              "[" + coded(ada, ContactLink::email(1)) + "}," + coded(byron, ContactLink::email(1)) + "}]\n");
}

TEST_F(Links, answerTheQueriesOfHosts) {
    ReadingStore store(database.path());
    const Directory directory(store.database());
    ReadableRecords records(store.database(), directory, directory.user("moses.frase"));
    const auto found = answer(records, ContactLinkQuery::destination(LinkTarget::contact(ada)));
    ASSERT_EQ(found.size(), 1U);
    const ToContactRelationship* relationship = found[0].link.relationship();
    ASSERT_NE(relationship, nullptr);
    EXPECT_EQ(relationship->id(), ObjectID<AnyRelationship>(1));
    EXPECT_EQ(relationship->destination().objectID(), ada);
    EXPECT_EQ(found[0].contact.objectID(), byron);
    const auto occurrence =
        LinkTarget::appointmentOccurrence(1, moment("2017-03-14T00:00:00Z"), OccurrenceEditScope::single);
    EXPECT_TRUE(answer(records, ContactLinkQuery::destination(occurrence)).empty());
}

TEST_F(Links, areRefusedWithTheirRecord) {
    struct Case {
        std::string record;
        int exitCode;
        std::string message;
    };
    for (const auto& [record, exitCode, message] :
         {Case{"Contact/14", 1, "Moses Frase may not read Contact/14; `kestrel access` says why\n"},
          Case{"Contact/99", 1, "there is no Contact/99\n"}, Case{"Email/99", 1, "there is no Email/99\n"},
          Case{"Task/1", 2,
               "contacts are not linked to Task/1; they are to: Contact, Organization, Opportunity, Project, "
               "Email\n"}}) {
        const Outcome outcome = database.run({"links", record}, "moses.frase");
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.errors, "kestrel: " + message);
        EXPECT_EQ(outcome.output, "");
    }
}

}  // namespace
}  // namespace kestrel::host::test
