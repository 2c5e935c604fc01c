#include <gtest/gtest.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/extra_fields_namer.h>

#include <string>
#include <vector>

namespace {

using namespace kestrel;

TEST(AContact, hasBirthdayAndAnniversaryWithOrWithoutYear) {
    Contact contact{.contactID = 1};
    contact.birthDay = 12;
    EXPECT_EQ(contact.birthDate(), std::nullopt) << "without a month";
    contact.birthMonth = 3;
    EXPECT_EQ(contact.birthDate(), PartialDate::make(std::nullopt, 3, 12));
    EXPECT_FALSE(contact.birthDate()->hasYear());
    contact.setAnniversaryDate(PartialDate::make(1999, 2, 29));
    EXPECT_EQ(contact.anniversaryYear, 1999);
    EXPECT_EQ(contact.anniversaryDate()->date(Calendar::utc()), std::nullopt) << "1999 was no leap year";
    contact.setAnniversaryDate(PartialDate::make(std::nullopt, 2, 29));
    EXPECT_EQ(contact.anniversaryYear, 0);
    EXPECT_EQ(contact.anniversaryDate()->date(Calendar::utc())->iso8601(), "2000-02-29T00:00:00Z");
    contact.birthDay = 0;
    EXPECT_EQ(contact.birthDate(), std::nullopt);
    contact.setAnniversaryDate(std::nullopt);
    EXPECT_EQ(contact, (Contact{.contactID = 1, .birthMonth = 3}));
    for (const PartialDate& none : {PartialDate::make(2000, 13, 1), PartialDate::make(2000, 1, 32),
                                    PartialDate::make(10'000, 1, 1), PartialDate::make(std::nullopt, -1, 1)}) {
        EXPECT_EQ(none.date(Calendar::utc()), std::nullopt);
    }
}

TEST(AContact, exchangesItsNameAsAWhole) {
    const Name name{.prefix = "Dr.",
                    .first = "Ada",
                    .middle = "King",
                    .last = "Lovelace",
                    .suffix = "Jr.",
                    .nickname = "Adi",
                    .alias = "A.A.L."};
    Contact contact{.contactID = 1, .firstName = "Old", .tagline = "kept"};
    contact.setName(name);
    EXPECT_EQ(contact.name(), name);
    EXPECT_EQ(contact.middleName, "King");
    contact.setName(Name::empty());
    EXPECT_EQ(contact, (Contact{.contactID = 1, .tagline = "kept"}));
}

/// Addresses by a letter for their kind and a number for their identifier: "e1 u2 s3".
std::vector<AnyElectronicAddress> addresses(const std::string& list) {
    std::vector<AnyElectronicAddress> made;
    for (std::size_t at = 0; at + 1 < list.size(); at += 3) {
        made.push_back({.electronicAddressID = list[at + 1] - '0',
                        .kind = list[at] == 'e'   ? ElectronicAddressKind::email
                                : list[at] == 'u' ? ElectronicAddressKind::url
                                                  : ElectronicAddressKind::socialProfile});
    }
    return made;
}

std::string text(const std::vector<AnyElectronicAddress>& list) {
    std::string text;
    for (const auto& each : list) {
        text += text.empty() ? "" : " ";
        text += "eus"[static_cast<std::size_t>(each.kind)];
        text += std::to_string(*each.objectID().value());
    }
    return text;
}

TEST(AContact, setsTheAddressesOfOneKindAmongTheOthers) {
    struct Case {
        std::string before;
        std::string emails;
        std::string after;
    };
    const Case cases[] = {
        {"", "e1 e2", "e1 e2"},
        {"u1 s2", "e3", "u1 s2 e3"},
        {"e1 u2 e3 s4", "e8 e9", "e8 u2 e9 s4"},
        {"e1 u2 e3 s4", "e9", "e9 u2 s4"},
        {"e1 u2 e3 s4", "", "u2 s4"},
        {"e1 u2", "e7 e8 e9", "e7 e8 e9 u2"},
        {"u1 e2 s3", "e2", "u1 e2 s3"},
        {"e1 u2 e3", "e3 e1 e5", "e3 u2 e1 e5"},
    };
    for (const Case& each : cases) {
        Contact contact{.contactID = 1, .electronicAddresses = addresses(each.before)};
        const Contact emails{.contactID = 2, .electronicAddresses = addresses(each.emails)};
        contact.setEmailAddresses(emails.emailAddresses());
        EXPECT_EQ(text(contact.electronicAddresses), each.after) << each.before << " with " << each.emails;
        EXPECT_EQ(contact.emailAddresses(), emails.emailAddresses());
    }
    // What is set again, unchanged, leaves everything as it was, whatever a value says.
    Contact contact{.contactID = 1, .electronicAddresses = addresses("s1 e2 u3 e4 s5")};
    for (auto& each : contact.electronicAddresses) {
        each.address = "address " + each.objectID().description();
        each.label = AnyLabel{.labelID = 3, .name = "Work"};
        each.createDate = Date(1);
        each.deletionDate = Date(2);
        each.deletionIdentifier = "x";
        each.deletionUserID = 3;
        each.modifyDate = Date(4);
        each.serviceName = "LinkedIn";
    }
    const Contact before = contact;
    contact.setEmailAddresses(contact.emailAddresses());
    contact.setURLAddresses(contact.urlAddresses());
    contact.setSocialProfiles(contact.socialProfiles());
    EXPECT_EQ(contact, before);
}

TEST(AContact, putsADefaultFirst) {
    Contact contact{.contactID = 1, .electronicAddresses = addresses("u1 e2 e3 s4")};
    EXPECT_EQ(contact.defaultPhone(), std::nullopt);
    contact.phones = {Phone{.phoneID = 1}, Phone{.phoneID = 2}, Phone{.phoneID = 3}};
    contact.setDefaultPhone(std::nullopt);
    EXPECT_EQ(contact.phones.size(), 3U);
    contact.setDefaultPhone(Phone{.phoneID = 3, .number = "changed"});
    EXPECT_EQ(contact.phones,
              (std::vector{Phone{.phoneID = 3, .number = "changed"}, Phone{.phoneID = 1}, Phone{.phoneID = 2}}));
    contact.setDefaultPhone(Phone{.phoneID = 9});
    EXPECT_EQ(contact.phones.size(), 4U);
    EXPECT_EQ(contact.defaultPhone(), Phone{.phoneID = 9});

    EXPECT_EQ(contact.defaultEmailAddress()->objectID(), 2);
    contact.setDefaultEmailAddress(contact.emailAddresses()[1]);
    EXPECT_EQ(text(contact.electronicAddresses), "u1 e3 e2 s4");
    contact.setDefaultEmailAddress(EmailAddress{.electronicAddressID = 8});
    EXPECT_EQ(text(contact.electronicAddresses), "u1 e8 e3 e2 s4");
    contact.setDefaultEmailAddress(std::nullopt);
    EXPECT_EQ(text(contact.electronicAddresses), "u1 e8 e3 e2 s4");

    contact.setDefaultGeoAddress(GeoAddress{.geoAddressID = 5, .city = "London"});
    EXPECT_EQ(contact.defaultGeoAddress()->city, "London");
}

TEST(AContact, namesItsPriorities) {
    EXPECT_EQ(displayName(ContactPriority::inactive), "0 (Inactive)");
    EXPECT_EQ(displayName(ContactPriority::p2), "2");
    EXPECT_EQ(displayName(*fromRawValue<ContactPriority>(10)), "10 (High)");
}

static_assert(HasExtraFields<Contact> && AuthorizedAccess<Contact> && BaseRecord<Contact>);

}  // namespace
