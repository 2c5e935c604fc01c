#include "people.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/contact/contact_names.h>
#include <host/terminal/day_text.h>
#include <host/terminal/table.h>
#include <kestrel/coding/json.h>

namespace kestrel::host::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

AnyLabel label(std::int64_t key, const std::string& name) {
    return {.labelID = key, .name = name};
}

AnyRoleType roleType(std::int64_t key, const std::string& name) {
    return {.roleTypeID = key, .appliesTo = RoleTypeAppliesTo::contact, .name = name};
}

const RelationshipType family{
    .relationshipTypeID = 1, .forwardName = "Child", .isForContact = true, .reverseName = "Parent"};

/// A contact with everything that a page can show.
Contact ada() {
    Contact contact{.contactID = 12};
    contact.setName({.prefix = "Countess",
                     .first = "Augusta",
                     .middle = "Ada",
                     .last = "Lovelace",
                     .suffix = "II",
                     .nickname = "Ada",
                     .alias = "A.A.L."});
    contact.setBirthDate(PartialDate::make(1815, 12, 10));
    contact.setAnniversaryDate(PartialDate::make(std::nullopt, 7, 8));
    contact.priority = ContactPriority::p10;
    contact.category = Category{.categoryID = 3, .name = "Customer"};
    contact.keywords = {Keyword{.keywordID = 1, .name = "Mathematics"}, Keyword{.keywordID = 2, .name = "Élan"}};
    contact.isFlagged = true;
    contact.hobbies = "Horses";
    contact.phones = {Phone{.phoneID = 1, .label = label(1, "Work"), .number = "+44 20 7946 0958"},
                      Phone{.phoneID = 2, .label = label(2, "Mobile"), .number = "+44 7700 900123"},
                      Phone{.phoneID = 3, .deletionDate = Date(), .number = "+44 0"}};
    using Kind = ElectronicAddressKind;
    contact.electronicAddresses = {
        {.electronicAddressID = 1, .address = "https://ada.example", .kind = Kind::url, .label = label(3, "Home page")},
        {.electronicAddressID = 2, .address = "ada@work.example", .kind = Kind::email, .label = label(1, "Work")},
        {.electronicAddressID = 3, .address = "ada@home.example", .kind = Kind::email, .label = label(4, "Home")},
        {.electronicAddressID = 4, .address = "@ada", .kind = Kind::socialProfile, .serviceName = "Mastodon"}};
    contact.geoAddresses = {{.geoAddressID = 1,
                             .city = "London",
                             .country = "United Kingdom",
                             .label = label(4, "Home"),
                             .postalCode = "SW1Y 4JH",
                             .street = "12 St James's Square\nSecond floor"},
                            {.geoAddressID = 2, .city = "Nottingham", .countryCode = "GB"}};
    contact.extra2 = "B";
    contact.extra5 = "North\x1b[2J";
    contact.extraDate1 = moment("2016-02-29T12:00:00Z");
    contact.details = "First programmer.\r\n\r\nPrefers letters — \x1b[31mnot\x1b[0m calls.";
    return contact;
}

class Contacts : public testing::Test {
  protected:
    Contacts() {
        database.write([](auto& writer) {
            // The dates of a contact's making are read only: they come from keyed form.
            Contact contact = ada();
            std::string json = encodeJSON(contact).value();
            json.pop_back();
            json += R"(,"createDate":510000000,"modifyDate":520000000.5})";
            writer.add(decodeJSON<Contact>(json).value());
            Contact byron{.contactID = 13};
            byron.setName({.prefix = "Lord", .first = "George", .last = "Byron"});
            Contact annabella{.contactID = 14};
            annabella.setName({.first = "Annabella", .last = "Milbanke"});
            annabella.permissions = onlyFor(teamEast);
            Contact miyazaki{.contactID = 15};
            miyazaki.setName({.first = "駿", .last = "宮崎"});
            miyazaki.setBirthDate(PartialDate::make(std::nullopt, 1, 5));
            Contact gone{.contactID = 16};
            gone.setName({.first = "Gone", .last = "Person"});
            gone.deletionDate = Date();
            Contact standIn{.contactID = 17};
            standIn.setName({.first = "Moses", .last = "Frase"});
            writer.add(byron).add(annabella).add(miyazaki).add(gone).add(standIn);
            writer.add(Company{.organizationID = 31, .name = "Secret Society", .permissions = onlyFor(teamEast)});
            writer.add(Project{.projectID = 5, .name = "Note G"});
            writer.role({.roleID = 1, .department = "Research", .name = "Analyst"}, 12, ObjectID<Company>(1));
            writer.role({.roleID = 2,
                         .department = "Engines",
                         .isDefaultForContact = true,
                         .name = "Chief Mathematician",
                         .roleType = roleType(1, "Employee")},
                        12, ObjectID<Company>(2));
            writer.role({.roleID = 3, .name = "Member"}, 12, ObjectID<Company>(31));
            writer.role({.roleID = 4, .roleType = roleType(2, "Decides")}, 12, ObjectID<Opportunity>(1));
            writer.role({.roleID = 5, .name = "Author"}, 12, ObjectID<Project>(5));
            writer.role({.roleID = 6, .deletionDate = Date(), .name = "Former"}, 12, ObjectID<Company>(1));
            writer.role({.roleID = 7, .name = "Ghost"}, 12, ObjectID<Company>(99));
            writer.relationship({.relationID = 1, .details = "the poet", .relationshipType = family}, 13,
                                ObjectID<Contact>(12));
            writer.relationship({.relationID = 2, .relationshipType = family}, 14, ObjectID<Contact>(12));
            writer.relationship({.relationID = 3}, 12, ObjectID<Contact>(15));
            writer.relationship({.relationID = 4, .relationshipType = family}, 12, ObjectID<Contact>(16));
            writer.relationship({.relationID = 5, .relationshipType = family}, 12, ObjectID<Company>(1));
            const ObjectID<Contact> id = 12;
            writer.link(id, LinkKind::owner, mosesFrase).link(id, LinkKind::creator, administrator);
            writer.link(mosesFrase, LinkKind::contact, ObjectID<Contact>(17));
            writer.add(ExtraFieldsNames{
                .extraFieldsNamesID = 77, .extra2 = "Size", .extraDate1 = "Met on", .typeString = "Contact"});
        });
    }
    [[nodiscard]] Outcome page(const std::string& record, const std::string& user = "administrator",
                               const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{"contact", record};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return database.run(arguments, user);
    }

    PeopleDatabase database;
};

TEST_F(Contacts, haveAPageWithAllThatIsKnown) {
    const Outcome outcome = page("Contact/12");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output,
              R"(Countess Augusta Ada Lovelace II
Contact/12

nickname     Ada
alias        A.A.L.
company      Isdom
title        Chief Mathematician, Engines
birthday     10 December 1815
anniversary  8 July
priority     10 (High)
category     Customer
keywords     Mathematics, Élan
flagged      yes
hobbies      Horses

Phones
  Work    +44 20 7946 0958  default
  Mobile  +44 7700 900123

E-mail
  Work  ada@work.example  default
  Home  ada@home.example

Web
  Home page  https://ada.example

Social profiles
  Mastodon  @ada

Addresses
  Home  12 St James's Square  default
        Second floor
        London, SW1Y 4JH
        United Kingdom
  -     Nottingham
        GB

Roles
  Cancity              Analyst, Research                       Organization/1
  Isdom                Chief Mathematician, Engines  Employee  Organization/2   default
  Secret Society       Member                                  Organization/31
  GTX Pro for Cancity                                Decides   Opportunity/1
  Note G               Author                                  Project/5
  (not available)      Ghost

Relationships
  -       宮崎駿              Contact/15
  Parent  George Byron        Contact/13      the poet
  Parent  Annabella Milbanke  Contact/14
  Child   Cancity             Organization/1
  1 with a record that is not available

Extra fields
  Size           B
  Extra Field 5  North\u{1b}[2J
  Met on         29 February 2016

Details
  First programmer.

  Prefers letters — \u{1b}[31mnot\u{1b}[0m calls.

Record
  visibility  Public
  owner       Moses Frase (Contact/17)
  creator     Administrator
  created     28 February 2017, 18:40
  modified    24 June 2017, 12:26
)");
}

TEST_F(Contacts, areNamedByIdentifierKeyOrName) {
    const std::string expected = page("Contact/12").output;
    ASSERT_THAT(expected, StartsWith("Countess Augusta Ada Lovelace II\n"));
    for (const auto* name :
         {"12", "ada", "AUGUSTA lovelace", "Lovelace, Augusta", "a.a.l.", "Countess Augusta Ada Lovelace II"}) {
        EXPECT_EQ(page(name).output, expected) << name;
    }
    EXPECT_THAT(page("宮崎駿").output, StartsWith("宮崎駿\nContact/15\n"));
}

TEST_F(Contacts, areWrittenAsTheLocaleWritesNames) {
    const auto firstLine = [&](const std::string& record, const std::string& locale) {
        const std::string text = page(record, "administrator", {"--locale", locale}).output;
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(firstLine("Contact/15", "ja_JP.UTF-8"), "宮崎駿");
    EXPECT_EQ(firstLine("Contact/15", "en"), "宮崎駿");
    EXPECT_EQ(firstLine("Contact/13", "hu"), "Lord Byron George");
    EXPECT_THAT(page("15").output, HasSubstr("\nbirthday  5 January\n"));
}

TEST_F(Contacts, tellNothingThatTheUserMayNotRead) {
    const std::string text = page("12", "moses.frase").output;
    EXPECT_THAT(text, AllOf(Not(HasSubstr("Secret Society")), Not(HasSubstr("Organization/31")),
                            Not(HasSubstr("Annabella")), Not(HasSubstr("Contact/14"))));
    EXPECT_THAT(text, HasSubstr("\n  (not available)      Member\n"));
    EXPECT_THAT(text, HasSubstr("\n  2 with records that are not available\n"));
    EXPECT_THAT(
        page("12", "moses.frase", {"--json"}).output,
        AllOf(Not(HasSubstr("Secret")), Not(HasSubstr("Annabella")), HasSubstr("\"unavailableRelationships\":2")));
    const std::string all = page("12", "donn.cantrell").output;
    EXPECT_THAT(all, AllOf(HasSubstr("Secret Society"), HasSubstr("Annabella Milbanke")));
    // The deal that Moses may read is not one that Donn may.
    EXPECT_THAT(all, AllOf(Not(HasSubstr("GTX Pro for Cancity")), Not(HasSubstr("Opportunity/1"))));
}

TEST_F(Contacts, areRefusedToThoseWhoMayNotReadThem) {
    struct Case {
        std::string record, user;
        int exitCode;
        std::string message;
    };
    database.write([](auto& writer) {
        Contact another{.contactID = 20};
        another.setName({.first = "Moses", .last = "Frase"});
        writer.add(another);
    });
    for (const auto& [record, user, exitCode, message] :
         {Case{"14", "moses.frase", 1, "Moses Frase may not read Contact/14; `kestrel access` says why\n"},
          Case{"Contact/16", "administrator", 1, "Contact/16 has been deleted\n"},
          Case{"Contact/99", "administrator", 1, "there is no Contact/99\n"},
          Case{"Annabella Milbanke", "moses.frase", 1, "there is no contact \"Annabella Milbanke\"\n"},
          Case{"Gone Person", "administrator", 1, "there is no contact \"Gone Person\"\n"},
          Case{"George Bryon", "administrator", 1,
               "there is no contact \"George Bryon\"; did you mean \"George Byron\"?\n"},
          Case{"Moses Frase", "administrator", 1,
               "\"Moses Frase\" is the name of several contacts: Contact/17, Contact/20\n"},
          Case{"Organization/1", "administrator", 2, "Organization/1 is no contact\n"},
          Case{"Contact/x", "administrator", 2, "\"Contact/x\" names no record; "},
          Case{"12", "nobody", 1, "there is no user \"nobody\""}}) {
        SCOPED_TRACE(record);
        for (const bool isJSON : {false, true}) {
            const Outcome outcome =
                page(record, user, isJSON ? std::vector<std::string>{"--json"} : std::vector<std::string>{});
            EXPECT_EQ(outcome.exitCode, exitCode);
            EXPECT_EQ(outcome.output, "");
            EXPECT_THAT(outcome.errors, StartsWith("kestrel: " + message));
        }
    }
    for (const auto* locale : {"x", "de--AT", "de AT", "12", "\x1b[31m", "averylonglocale"}) {
        const Outcome outcome = page("12", "administrator", {"--locale", locale});
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_THAT(outcome.errors, AllOf(HasSubstr("is no locale; write de"), Not(HasSubstr("\x1b"))));
    }
}

TEST_F(Contacts, haveTheirPageAsJSON) {
    const std::string json = page("12", "administrator", {"--json"}).output;
    ASSERT_TRUE(checkJSON(json));
    SQLite::Database readable(database.path(), SQLite::OPEN_READONLY);
    const Contact stored = RecordTable<Contact>(readable).find(12).value();
    const std::string id = R"({"recordName":"Contact","primaryKey":12})";
    EXPECT_THAT(json, StartsWith("{\"id\":" + id + R"(,"name":"Countess Augusta Ada Lovelace II","contact":)" +
                                 encodeJSON(stored).value() + R"(,"roles":[)"));
    const AnyRole role = RecordTable<AnyRole>(readable).find(2).value();
    EXPECT_THAT(json, HasSubstr(R"({"role":)" + encodeJSON(role).value() +
                                R"(,"destination":{"id":{"recordName":"Company","primaryKey":2},"name":"Isdom"},)" +
                                R"("typeName":"Employee","isDefault":true})"));
    EXPECT_THAT(json, HasSubstr(R"("name":"Parent","other":{"id":{"recordName":"Contact","primaryKey":13},)"
                                R"("name":"George Byron"}})"));
    EXPECT_THAT(json, HasSubstr(R"("extraFields":[{"name":"Size","value":"B"},)"));
    EXPECT_THAT(json, EndsWith(R"("visibility":"Public","owner":{"id":{"recordName":"User","primaryKey":4},)"
                               R"("name":"Moses Frase","contactID":{"recordName":"Contact","primaryKey":17}},)"
                               R"("creator":{"id":{"recordName":"User","primaryKey":1},"name":"Administrator"}})"
                               "\n"));
}

TEST_F(Contacts, areShownInTheZoneOfTheUser) {
    database.write([](auto& writer) {
        writer.change(administrator, [](User& user) { user.timeZoneName = "America/New_York"; });
        writer.change(mosesFrase, [](User& user) { user.timeZoneName = "Nowhere/Else"; });
    });
    EXPECT_THAT(page("12").output, HasSubstr("  modified    24 June 2017, 08:26\n"));
    const auto environment = std::map<std::string, std::string>{{"TZ", "Asia/Tokyo"}};
    EXPECT_THAT(database.run({"contact", "12"}, "moses.frase", environment).output,
                HasSubstr("  modified    24 June 2017, 21:26\n"));
}

TEST_F(Contacts, withNothingButAnIdentifierHaveAPage) {
    database.write([](auto& writer) { writer.add(Contact{.contactID = 40}); });
    EXPECT_EQ(page("40").output, "Contact/40\nContact/40\n\npriority  0 (Inactive)\n\nRecord\n  visibility  Public\n");
}

// ---------------------------------------------------------------------------------------------------------------
// lists

TEST_F(Contacts, areListedByFamilyName) {
    const Outcome outcome = database.run({"contacts"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, R"(NAME                 IDENTIFIER  COMPANY  E-MAIL            PHONE
Byron, George        Contact/13  -        -                 -
Frase, Moses         Contact/17  -        -                 -
Lovelace, Augusta    Contact/12  Isdom    ada@work.example  +44 20 7946 0958
Milbanke, Annabella  Contact/14  -        -                 -
宮崎駿               Contact/15  -        -                 -
)");
    EXPECT_THAT(database.run({"contacts"}, "moses.frase").output, Not(HasSubstr("Annabella")));
    EXPECT_THAT(database.run({"contacts", "--limit", "2"}).output,
                AllOf(HasSubstr("\n… and 3 more\n"), HasSubstr("Contact/17"), Not(HasSubstr("Contact/12"))));
    const std::string json = database.run({"contacts", "--json", "--limit", "1"}).output;
    EXPECT_EQ(json, R"({"total":5,"contacts":[{"id":{"recordName":"Contact","primaryKey":13},"name":"Byron, George"}]})"
                    "\n");
}

TEST_F(Contacts, areFoundByText) {
    const auto found = [&](const std::string& text, const std::string& user = "administrator") {
        const std::string json = database.run({"contacts", "--json", "--search", text}, user).output;
        std::string keys;
        constexpr std::string_view mark = "\"primaryKey\":";
        for (auto at = json.find(mark); at != json.npos; at = json.find(mark, at + 1))
            keys += json.substr(at + mark.size(), 2) + " ";
        return keys;
    };
    EXPECT_EQ(found("LOVE"), "12 ");
    EXPECT_EQ(found("augusta ada"), "12 ");
    EXPECT_EQ(found("a.a.l"), "12 ");
    EXPECT_EQ(found("HOME.example"), "12 ");
    EXPECT_EQ(found("宮崎"), "15 ");
    EXPECT_EQ(found("lord"), "13 ");
    // Where there is a role; that of key 6 is deleted, and one company is not to be read by Moses.
    EXPECT_EQ(found("isdo"), "12 ");
    EXPECT_EQ(found("secret"), "12 ");
    EXPECT_EQ(found("secret", "moses.frase"), "");
    EXPECT_EQ(found("annabella", "moses.frase"), "");
    // Digits are compared with digits, whatever stands between them; words are not searched for in phone numbers.
    EXPECT_EQ(found("(020) 7946"), "");
    EXPECT_EQ(found("20-79 46"), "12 ");
    EXPECT_EQ(found("7700/900"), "12 ");
    EXPECT_EQ(found("+44 0"), "");
    EXPECT_EQ(found("x7700"), "");
    const Outcome none = database.run({"contacts", "--search", "zz\x1bzz"});
    EXPECT_EQ(none.exitCode, 0);
    EXPECT_EQ(none.output, "no contact matches \"zz\\u{1b}zz\"\n");
    EXPECT_EQ(database.run({"contacts", "--search", "zzz", "--json"}).output, "{\"total\":0,\"contacts\":[]}\n");
}

TEST(ContactLists, ofADatabaseWithoutContactsSaySo) {
    const PeopleDatabase database;
    EXPECT_EQ(database.run({"contacts"}).output, "there are no contacts\n");
}

TEST(ContactCommands, endWithTwoForWrongUsage) {
    const PeopleDatabase database;
    const std::vector<std::vector<std::string>> wrong{
        {"contact"},
        {"contact", "1", "2"},
        {"contacts", "stray"},
        {"contacts", "--limit", "-1"},
        {"contacts", "--limit", "many"},
        {"contacts", "--search", ""},
        {"activity"},
        {"activity", "User/1"},
        {"activity", "12"},
        {"activity", "Contact/1", "--limit", "-3"},
        {"activity", "Contact/1", "--at", "yesterday"},
        {"links"},
        {"links", "User/1"},
        {"links", "Nothing/1"},
    };
    for (const auto& arguments : wrong) {
        const Outcome outcome = database.run(arguments);
        SCOPED_TRACE(outcome.errors);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, AllOf(StartsWith("kestrel: "), EndsWith("\n")));
    }
    EXPECT_THAT(kestrel({"contacts", "--limit", "many"}).errors, HasSubstr("\"many\" is no number of contacts"));
    for (const auto* command : {"contact", "contacts", "activity", "links"}) {
        const Outcome help = kestrel({command, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_THAT(help.output, AllOf(HasSubstr("Usage: kestrel " + std::string(command)), HasSubstr("--json"),
                                       HasSubstr("\n  kestrel " + std::string(command) + " ")));
        EXPECT_THAT(kestrel({"--help"}).output, HasSubstr("\n  " + std::string(command) + " "));
        EXPECT_EQ(kestrel({command, "Contact/1", "--database", "/nowhere/crm.db", "--user", "x"}).exitCode,
                  std::string(command) == "contacts" ? 2 : 1);
    }
}

// ---------------------------------------------------------------------------------------------------------------
// texts

TEST(PartialDates, areWrittenReadably) {
    const auto text = [](std::optional<std::int64_t> year, std::int64_t month, std::int64_t day) {
        return partialDateText(PartialDate::make(year, month, day));
    };
    EXPECT_EQ(text(1980, 3, 22), "22 March 1980");
    EXPECT_EQ(text(std::nullopt, 2, 29), "29 February");
    EXPECT_EQ(text(1, 1, 1), "1 January 1");
    EXPECT_EQ(text(0, 1, 1), "1 January 1 BC");
    EXPECT_EQ(text(-43, 3, 15), "15 March 44 BC");
    EXPECT_EQ(text(1981, 2, 29), "1981-02-29");
    EXPECT_EQ(text(std::nullopt, 13, 40), "--13-40");
}

TEST(Times, areThoseOfTheClocks) {
    const Calendar berlin = Calendar::inZone("Europe/Berlin").value();
    // The clocks go from two to three in the first night, and from three to two in the second.
    EXPECT_EQ(momentText(moment("2017-03-26T00:59:59Z"), berlin), "26 March 2017, 01:59");
    EXPECT_EQ(momentText(moment("2017-03-26T01:00:00Z"), berlin), "26 March 2017, 03:00");
    EXPECT_EQ(momentText(moment("2017-10-29T01:30:00Z"), berlin), "29 October 2017, 02:30");
    EXPECT_EQ(momentText(moment("2016-12-31T23:30:00Z"), Calendar::utc()), "31 December 2016, 23:30");
    EXPECT_EQ(momentText(moment("2016-12-31T23:30:00Z"), berlin), "1 January 2017, 00:30");
    EXPECT_EQ(momentText(Date(1e300), berlin), Date(1e300).description());
    EXPECT_EQ(weekdayText(berlin.dayOf(moment("2017-03-14T12:00:00Z"))), "Tuesday, 14 March 2017");
}

TEST(Locales, haveAForm) {
    for (const auto* good : {"de", "de-AT", "ja_JP.UTF-8", "sr_RS@latin", "zh-Hant-TW", "C", "POSIX", "es-419"})
        EXPECT_TRUE(isLocale(good)) << good;
    for (const auto* bad : {"", "-", "de-", "de_", "d", "d3", "de-AT!", "de.UTF 8", "e\u0301"})
        EXPECT_FALSE(isLocale(bad)) << bad;
}

TEST(Tables, alignCellsAndFitATerminal) {
    Table table(3);
    table.add({"宮崎駿", "", "x\ny"}, boldStyle);
    table.add({"Ada"});
    table.add({"B", "", "z"});
    EXPECT_EQ(table.rendered({}, 1), " 宮崎駿  x\\ny\n Ada\n B       z\n");
    const Terminal narrow{.isTerminal = true, .hasColor = true, .width = 8};
    EXPECT_EQ(table.rendered(narrow), "\x1b[1m宮崎駿 …\x1b[0m\nAda\nB      …\n");
}

}  // namespace
}  // namespace kestrel::host::test
