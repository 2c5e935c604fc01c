#include <gtest/gtest.h>
#include <kestrel/access/permission_checker.h>
#include <kestrel/coding/json.h>
#include <kestrel/relationships/contact_info.h>
#include <kestrel/relationships/contact_link.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace {

using namespace kestrel;

const RelationshipType parent{.relationshipTypeID = 7,
                              .forwardName = "is parent of",
                              .reverseName = "is child of",
                              .shortForwardName = "parent",
                              .shortReverseName = "child"};

ToRelationship to(std::int64_t id, RelationshipDestination destination) {
    return {AnyRelationship{.relationID = id, .relationshipType = parent}, std::move(destination)};
}
FromRelationship from(std::int64_t id, RelationshipSource source) {
    return {AnyRelationship{.relationID = id, .relationshipType = parent}, std::move(source)};
}
RelationshipDestination destination(std::int64_t contactID) {
    return RelationshipDestination::contact(Contact{.contactID = contactID});
}

TEST(ARelationship, isCalledByTheDirectionInWhichItIsSeen) {
    const auto forward = ContactRelationship::to(*ToContactRelationship::from(to(1, destination(2))));
    const auto backward = ContactRelationship::from(
        *FromContactRelationship::from(from(1, RelationshipSource::contact(Contact{.contactID = 3}))));
    EXPECT_EQ(forward.directionalName(), "is parent of");
    EXPECT_EQ(forward.directionalShortName(), "parent");
    EXPECT_EQ(forward.relatedContact().id(), 2);
    EXPECT_EQ(backward.directionalName(), "is child of");
    EXPECT_EQ(backward.directionalShortName(), "child");
    EXPECT_EQ(backward.relatedContact().id(), 3);
    EXPECT_EQ(forward.id(), backward.id());
    EXPECT_EQ(forward.from(), nullptr);
    EXPECT_EQ(backward.to(), nullptr);
    const auto untyped = ContactRelationship::to(ToContactRelationship(Contact{.contactID = 2}, std::nullopt));
    EXPECT_EQ(untyped.directionalName(), std::nullopt);
    EXPECT_EQ(untyped.directionalShortName(), std::nullopt);
    EXPECT_TRUE(untyped.id().isNew());
    EXPECT_EQ(untyped.createDate(), std::nullopt);
}

TEST(ARelationship, convertsOnlyWhenItsFarEndIsAContact) {
    ToRelationship relationship = to(1, RelationshipDestination::company(Company{.organizationID = 2}));
    EXPECT_NE(relationship.company(), nullptr);
    EXPECT_EQ(relationship.contact(), nullptr);
    EXPECT_EQ(ToContactRelationship::from(relationship), std::nullopt);
    relationship.setContact(std::nullopt);
    EXPECT_NE(relationship.company(), nullptr);
    relationship.setCompany(std::nullopt);
    EXPECT_TRUE(relationship.destination.isMissingDestination());
    EXPECT_EQ(ToContactRelationship::from(relationship), std::nullopt);
    relationship.setContact(Contact{.contactID = 4});
    EXPECT_EQ(ToContactRelationship::from(relationship)->destination().id(), 4);

    FromRelationship back = from(1, RelationshipSource::missingSource());
    EXPECT_EQ(FromContactRelationship::from(back), std::nullopt);
    back.setCompany(Company{.organizationID = 2});
    back.setContact(std::nullopt);
    EXPECT_NE(back.company(), nullptr);
    back.setDetails("since 1999");
    EXPECT_EQ(back.backingRelationship.details, "since 1999");
}

TEST(AContactInfo, readsAndWritesTheContactThroughTheArrow) {
    ContactInfo info{.contact = {.contactID = 1}, .creator = UserContact{.user = User{.userID = 3}}};
    info->firstName = "Ada";
    info->setName({.first = "Grace", .last = "Hopper"});
    EXPECT_EQ(info.contact.lastName, "Hopper");
    const ContactInfo& reading = info;
    EXPECT_EQ(reading->firstName, "Grace");
    EXPECT_EQ(reading.creator->id(), 3);
    EXPECT_TRUE(reading.creator);
    EXPECT_EQ(reading.creator->contact.value_or(Contact{.contactID = 9}).id(), 9);
    static_assert(!std::is_assignable_v<decltype((info.creator)), UserContact>);
    static_assert(std::is_same_v<decltype(reading.operator->()), const Contact*>);
    info->permissions.giveReadAccess(17);
    EXPECT_EQ(info.permissions(), info.contact.permissions);
    const PermissionChecker checker{.user = User{.userID = 1, .teamIDs = {ObjectID<Team>(18)}}};
    EXPECT_FALSE(checker.canRead(info));
    EXPECT_TRUE(checker.canUpdate(info));
    struct Row {
        [[nodiscard]] Permissions permissions() const { return {.readPermissions = {ObjectID<Team>(18)}}; }
    };
    EXPECT_TRUE(checker.canRead(Row())) << "a host's own type that gives its permissions by value";
    const UserContact user = UserContact::make({.userID = 3, .username = "grace"}, info.contact);
    EXPECT_EQ(user->username, "grace");
}

TEST(AContactInfo, joinsItsRelationshipsWithOtherContactsOnce) {
    const ContactInfo info = ContactInfo::make(
        {.contactID = 1}, {},
        {to(10, destination(2)), to(11, RelationshipDestination::company(Company{.organizationID = 3})),
         to(12, destination(4)), to(10, destination(5)), to(13, RelationshipDestination::missingDestination())},
        {from(12, RelationshipSource::contact(Contact{.contactID = 6})),
         from(11, RelationshipSource::contact(Contact{.contactID = 7})),
         from(14, RelationshipSource::company(Company{.organizationID = 8})),
         from(15, RelationshipSource::contact(Contact{.contactID = 9}))},
        {}, {});
    EXPECT_EQ(info.toRelationships().size(), 3U);
    EXPECT_EQ(info.fromRelationships().size(), 3U);
    std::string joined;
    for (const ContactRelationship& each : info.joinedRelationships()) {
        joined += (each.to() != nullptr ? ">" : "<") + std::to_string(*each.id().value()) + ":" +
                  std::to_string(*each.relatedContact().id().value()) + " ";
    }
    EXPECT_EQ(joined, ">10:2 >12:4 <11:7 <15:9 ");
}

TEST(AContactInfo, choosesItsDefaultRoleByIdentifier) {
    const auto company = [](std::int64_t id, bool isDefault) {
        return ContactRole(AnyRole{.roleID = id, .isDefaultForContact = isDefault},
                           RoleDestination::company(Company{.organizationID = id}), std::nullopt);
    };
    ContactInfo info{.contact = {.contactID = 1}};
    info.allRoles = {company(1, false), company(2, true),
                     ContactRole(AnyRole{.roleID = 3}, RoleDestination::project(Project{.projectID = 3}), std::nullopt),
                     company(4, false)};
    const auto before = info.allRoles;
    EXPECT_EQ(info.companyRoles().size(), 3U);
    EXPECT_EQ(info.projectRoles().size(), 1U);
    EXPECT_TRUE(info.opportunityRoles().empty());
    EXPECT_EQ(info.defaultRole()->id(), 2);
    info.setDefaultRole(99);
    EXPECT_EQ(info.allRoles, before);
    info.setDefaultRole(4);
    EXPECT_EQ(info.defaultRole()->id(), 4);
    EXPECT_FALSE(info.allRoles[1].isDefault());
    info.setDefaultRole(3);
    EXPECT_EQ(info.defaultRole()->id(), 1) << "the first role at a company, for want of a mark";
    for (const ContactRole& role : info.allRoles)
        EXPECT_FALSE(role.isDefault());
    info.allRoles[2].setDefault(true);
    EXPECT_EQ(info.defaultRole(), std::nullopt) << "the default role is none at a company";
}

TEST(AContactLink, namesTheRecordAtTheOtherEnd) {
    const std::vector<ContactLinkRecord> records{
        ContactLinkRecord::relationship(*ToContactRelationship::from(to(1, destination(2)))),
        ContactLinkRecord::companyRole(ContactCompanyRole(Company{.organizationID = 3}, {}, {}, {})),
        ContactLinkRecord::opportunityRole(ContactOpportunityRole(Opportunity{.opportunityID = 4}, {}, {})),
        ContactLinkRecord::projectRole(ContactProjectRole(Project{.projectID = 5}, {}, {})),
        ContactLinkRecord::email(Email{.emailID = 6}),
    };
    const std::vector<ContactLink> expected{ContactLink::relationship(2), ContactLink::companyRole(3),
                                            ContactLink::opportunityRole(4), ContactLink::projectRole(5),
                                            ContactLink::email(6)};
    const std::vector<std::string> forms{R"({"relationship":{"_0":{"recordName":"Contact","primaryKey":2}}})",
                                         R"({"companyRole":{"_0":{"recordName":"Company","primaryKey":3}}})",
                                         R"({"opportunityRole":{"_0":{"recordName":"Opportunity","primaryKey":4}}})",
                                         R"({"projectRole":{"_0":{"recordName":"Project","primaryKey":5}}})",
                                         R"({"email":{"_0":{"recordName":"Email","primaryKey":6}}})"};
    std::unordered_set<ContactLink> links;
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].contactLink(), expected[i]);
        EXPECT_EQ(encodeJSON(expected[i]), forms[i]);
        EXPECT_EQ(decodeJSON<ContactLink>(forms[i]), expected[i]);
        links.insert(records[i].contactLink());
    }
    EXPECT_EQ(links.size(), 5U);
    const auto query = ContactLinkQuery::destination(LinkTarget::company(3));
    EXPECT_EQ(query.destination()->company(), 3);
}

}  // namespace
