#include <gtest/gtest.h>
#include <kestrel/coding/json.h>
#include <kestrel/relationships/contact_role.h>
#include <kestrel/relationships/relationship_type.h>

#include <string>
#include <vector>

namespace {

using namespace kestrel;

AnyRoleType roleType(RoleTypeAppliesTo appliesTo, std::optional<std::string> name) {
    return {.roleTypeID = 5, .appliesTo = appliesTo, .isForCompany = true, .name = std::move(name)};
}
const ContactRoleType partner = *roleType(RoleTypeAppliesTo::contact, "Partner").contactRoleType();

TEST(ARoleType, convertsToTheOneViewThatItDescribes) {
    const AnyRoleType person = roleType(RoleTypeAppliesTo::contact, "Partner");
    EXPECT_EQ(person.contactRoleType()->roleTypeRecord(), person);
    EXPECT_EQ(person.contactRoleType()->name(), "Partner");
    EXPECT_EQ(person.companyRoleType(), std::nullopt);
    const AnyRoleType organization = roleType(RoleTypeAppliesTo::organization, "");
    EXPECT_EQ(organization.contactRoleType(), std::nullopt);
    EXPECT_EQ(organization.companyRoleType()->name(), "") << "an empty name is a name";
    for (const auto appliesTo : allCases<RoleTypeAppliesTo>) {
        EXPECT_EQ(roleType(appliesTo, std::nullopt).contactRoleType(), std::nullopt);
        EXPECT_EQ(roleType(appliesTo, std::nullopt).companyRoleType(), std::nullopt);
    }
}

TEST(ARoleType, isEditedThroughACopy) {
    const AnyRoleType record{.roleTypeID = 5,
                             .appliesTo = RoleTypeAppliesTo::organization,
                             .createDate = Date(1),
                             .deletionDate = Date(2),
                             .deletionIdentifier = "3",
                             .deletionUserID = 4,
                             .isActive = false,
                             .isForCompany = true,
                             .isForContact = true,
                             .isForOpportunity = true,
                             .isForProject = true,
                             .name = "Vendor"};
    EXPECT_EQ(record.edit().record(), record);
    EXPECT_EQ(encodeJSON(record.edit()), encodeJSON(record)) << "every field in its place";
    for (const char* flag : {"isActive", "isForCompany", "isForContact", "isForOpportunity", "isForProject"}) {
        std::string one = *encodeJSON(AnyRoleType{.roleTypeID = 5, .isActive = false});
        const std::string off = std::string(flag) + "\":false";
        one.replace(one.find(off), off.size(), std::string(flag) + "\":true");
        const auto flagged = decodeJSON<AnyRoleType>(one);
        EXPECT_EQ(encodeJSON(flagged->edit()), one);
        EXPECT_EQ(flagged->edit().record(), *flagged);
    }
    EditAnyRoleType copy = record.edit();
    copy.name = "Supplier";
    EXPECT_EQ(copy.record().name, "Supplier");
    EXPECT_EQ(record.name, "Vendor");

    const RelationshipType type{.relationshipTypeID = 5,
                                .createDate = Date(1),
                                .deletionDate = Date(2),
                                .deletionIdentifier = "3",
                                .deletionUserID = 4,
                                .forwardName = "is parent of",
                                .isActive = false,
                                .isForCompany = true,
                                .isForContact = true,
                                .reverseName = "is child of",
                                .shortForwardName = "parent",
                                .shortReverseName = "child"};
    EXPECT_EQ(type.edit().record(), type);
    EXPECT_EQ(encodeJSON(type.edit()), encodeJSON(type));
}

TEST(ARole, isSeenThroughTheViewOfItsDestination) {
    const ContactRole atCompany(AnyRole{.roleID = 1}, RoleDestination::company(Company{.organizationID = 2}), {});
    const ContactRole onDeal(AnyRole{.roleID = 1}, RoleDestination::opportunity(Opportunity{.opportunityID = 3}), {});
    const ContactRole onProject(AnyRole{.roleID = 1}, RoleDestination::project(Project{.projectID = 4}), {});
    const ContactRole lost(AnyRole{.roleID = 1}, RoleDestination::missingDestination(), {});
    const auto views = [](const ContactRole& role) {
        return std::string(ContactCompanyRole::from(role) ? "company " : "") +
               (ContactOpportunityRole::from(role) ? "opportunity " : "") +
               (ContactProjectRole::from(role) ? "project " : "");
    };
    EXPECT_EQ(views(atCompany), "company ");
    EXPECT_EQ(views(onDeal), "opportunity ");
    EXPECT_EQ(views(onProject), "project ");
    EXPECT_EQ(views(lost), "");
    EXPECT_EQ(ContactProjectRole::from(onProject)->project().id(), 4);
    EXPECT_EQ(ContactOpportunityRole::from(onDeal)->contactRoleRecord(), onDeal);
}

TEST(ARole, isNewWithoutDateAndMark) {
    const ContactCompanyRole role(Company{.organizationID = 2}, "CEO", "Board", partner);
    EXPECT_TRUE(role.id().isNew());
    EXPECT_EQ(role.createDate(), std::nullopt);
    EXPECT_FALSE(role.isDefault());
    EXPECT_EQ(role.roleType()->name(), "Partner");
    EXPECT_EQ(role.contactRoleRecord().backingRole.roleType, partner.roleTypeRecord());
    EXPECT_NE(ContactRole(RoleDestination::missingDestination(), {}).id(),
              ContactRole(RoleDestination::missingDestination(), {}).id());
    EXPECT_EQ(ContactProjectRole(Project{.projectID = 4}, "Lead", {}).name(), "Lead");
}

TEST(ARole, losesItsDestinationOnlyWhenThatKindIsSetToNothing) {
    ContactRole role(RoleDestination::company(Company{.organizationID = 2}), {});
    role.setProject(std::nullopt);
    role.setOpportunity(std::nullopt);
    EXPECT_EQ(role.company()->id(), 2);
    role.setCompany(std::nullopt);
    EXPECT_TRUE(role.destination.isMissingDestination());
    role.setCompany(std::nullopt);
    role.setOpportunity(Opportunity{.opportunityID = 3});
    EXPECT_EQ(role.opportunity()->id(), 3);
    role.setProject(Project{.projectID = 4});
    EXPECT_EQ(role.opportunity(), nullptr);
    EXPECT_EQ(role.project()->id(), 4);
}

TEST(ARole, keepsTheNameOfAnInvalidType) {
    const auto organization = roleType(RoleTypeAppliesTo::organization, "Vendor");
    ContactRole role(AnyRole{.roleID = 1}, RoleDestination::missingDestination(), RoleTypeStorage::from(organization));
    EXPECT_EQ(role.roleType(), nullptr);
    EXPECT_EQ(role.roleTypeName(), "Vendor");
    role.setRoleType(partner);
    EXPECT_EQ(*role.roleType(), partner);
    EXPECT_EQ(role.roleTypeName(), "Partner");
    role.setRoleType(std::nullopt);
    EXPECT_EQ(role.roleTypeName(), std::nullopt);
    EXPECT_EQ(role.backingRole.roleType, std::nullopt);
    const RoleTypeStorage nameless = RoleTypeStorage::from(roleType(RoleTypeAppliesTo::contact, std::nullopt));
    EXPECT_EQ(nameless.valid(), nullptr);
    EXPECT_EQ(ContactRole(AnyRole{.roleID = 1}, RoleDestination::missingDestination(), nameless).roleTypeName(),
              std::nullopt);
}

TEST(ACompanyRole, joinsTitleAndDepartment) {
    const auto joined = [](std::optional<std::string> name, std::optional<std::string> department) {
        return ContactCompanyRole(Company{.organizationID = 2}, std::move(name), std::move(department), {})
            .nameAndDepartment();
    };
    EXPECT_EQ(joined({}, {}), std::nullopt);
    EXPECT_EQ(joined("CEO", {}), "CEO");
    EXPECT_EQ(joined({}, "Board"), "Board");
    EXPECT_EQ(joined("CEO", "Board"), "CEO, Board");
    EXPECT_EQ(joined("", "Board"), ", Board") << "an empty title takes its place";
    ContactCompanyRole role(Company{.organizationID = 2}, {}, {}, {});
    role.setDefault(true);
    EXPECT_TRUE(role.contactRoleRecord().backingRole.isDefaultForContact);
    role.setCompany(Company{.organizationID = 9});
    EXPECT_EQ(role.company().id(), 9);
    EXPECT_EQ(role.contactRoleRecord().company()->id(), 9);
}

/// Roles with identifiers from 1 on, by their destination (c, o, p or - for missing) and * for a marked one.
std::vector<ContactRole> roles(const std::string& list) {
    std::vector<ContactRole> made;
    for (const char c : list) {
        if (c == '*') {
            made.back().setDefault(true);
            continue;
        }
        const auto id = static_cast<std::int64_t>(made.size()) + 1;
        made.emplace_back(AnyRole{.roleID = id},
                          c == 'c'   ? RoleDestination::company(Company{.organizationID = id})
                          : c == 'o' ? RoleDestination::opportunity(Opportunity{.opportunityID = id})
                          : c == 'p' ? RoleDestination::project(Project{.projectID = id})
                                     : RoleDestination::missingDestination(),
                          std::nullopt);
    }
    return made;
}

TEST(AContact, hasADefaultRole) {
    const auto defaultOf = [](const std::string& list) -> std::int64_t {
        const auto all = roles(list);
        const ContactRole* role = Contact::defaultRole(all);
        return role != nullptr ? *role->id().value() : 0;
    };
    EXPECT_EQ(defaultOf(""), 0);
    EXPECT_EQ(defaultOf("op-"), 0);
    EXPECT_EQ(defaultOf("opcc"), 3);
    EXPECT_EQ(defaultOf("cc*c*"), 2);
    EXPECT_EQ(defaultOf("cp*"), 2) << "a marked role counts wherever it is";
}

TEST(AContact, choosesItsDefaultRoleAmongCompanies) {
    const auto chosen = [](const std::string& list, std::int64_t index) {
        return Contact::setDefaultRole(index, roles(list));
    };
    EXPECT_EQ(chosen("c*cp", 1), roles("cc*p"));
    EXPECT_EQ(chosen("c*cc*", 0), roles("c*cc"));
    EXPECT_EQ(chosen("c*cp", 2), roles("ccp")) << "another role clears the companies' marks and is not marked";
    EXPECT_EQ(chosen("c*o*-", 2), roles("co*-")) << "marks of other roles stay";
    for (const std::int64_t outside : {-1, 3, 5})
        EXPECT_EQ(chosen("c*cp", outside), roles("c*cp"));
}

}  // namespace
