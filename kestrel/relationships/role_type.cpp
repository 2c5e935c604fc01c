#include <kestrel/coding/wire_form.h>
#include <kestrel/relationships/role_type.h>

namespace kestrel {

KESTREL_FIELDS(EditAnyRoleType, roleTypeID, appliesTo, createDate, deletionDate, deletionIdentifier, deletionUserID,
               isActive, isForCompany, isForContact, isForOpportunity, isForProject, name);

KESTREL_FIELDS(AnyRoleType, roleTypeID, appliesTo, createDate, deletionDate, deletionIdentifier, deletionUserID,
               isActive, isForCompany, isForContact, isForOpportunity, isForProject, name);

EditAnyRoleType EditAnyRoleType::fromRecord(const AnyRoleType& record) {
    return {.roleTypeID = record.objectID(),
            .appliesTo = record.appliesTo.get(),
            .createDate = record.createDate.get(),
            .deletionDate = record.deletionDate.get(),
            .deletionIdentifier = record.deletionIdentifier.get(),
            .deletionUserID = record.deletionUserID.get(),
            .isActive = record.isActive.get(),
            .isForCompany = record.isForCompany.get(),
            .isForContact = record.isForContact.get(),
            .isForOpportunity = record.isForOpportunity.get(),
            .isForProject = record.isForProject.get(),
            .name = record.name.get()};
}

AnyRoleType EditAnyRoleType::record() const {
    return {.roleTypeID = objectID(),
            .appliesTo = appliesTo,
            .createDate = createDate.get(),
            .deletionDate = deletionDate,
            .deletionIdentifier = deletionIdentifier,
            .deletionUserID = deletionUserID,
            .isActive = isActive,
            .isForCompany = isForCompany,
            .isForContact = isForContact,
            .isForOpportunity = isForOpportunity,
            .isForProject = isForProject,
            .name = name};
}

std::optional<ContactRoleType> ContactRoleType::from(const AnyRoleType& roleType) {
    if (!roleType.name.get() || roleType.appliesTo != RoleTypeAppliesTo::contact) return std::nullopt;
    return ContactRoleType(roleType);
}

std::optional<CompanyRoleType> CompanyRoleType::from(const AnyRoleType& roleType) {
    if (!roleType.name.get() || roleType.appliesTo != RoleTypeAppliesTo::organization) return std::nullopt;
    return CompanyRoleType(roleType);
}

std::optional<ContactRoleType> AnyRoleType::contactRoleType() const {
    return ContactRoleType::from(*this);
}

std::optional<CompanyRoleType> AnyRoleType::companyRoleType() const {
    return CompanyRoleType::from(*this);
}

std::string debugMirror(const ContactRoleType& view) {
    return "ContactRoleType of " + debugMirror(view.roleTypeRecord());
}

std::string debugMirror(const CompanyRoleType& view) {
    return "CompanyRoleType of " + debugMirror(view.roleTypeRecord());
}

}  // namespace kestrel
