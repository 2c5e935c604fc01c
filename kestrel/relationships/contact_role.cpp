#include <kestrel/relationships/contact_role.h>
#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace kestrel {

namespace {

std::optional<AnyRoleType> recordOf(const std::optional<ContactRoleType>& roleType) {
    return roleType ? std::optional(roleType->roleTypeRecord()) : std::nullopt;
}

std::optional<RoleTypeStorage> storageOf(std::optional<ContactRoleType> roleType) {
    return roleType ? std::optional(RoleTypeStorage::valid(*std::move(roleType))) : std::nullopt;
}

/// A new role at a destination, as the views of roles begin.
ContactRole newRole(RoleDestination destination, std::optional<std::string> name, std::optional<std::string> department,
                    std::optional<ContactRoleType> roleType) {
    ContactRole role(std::move(destination), std::move(roleType));
    role.setName(std::move(name));
    role.setDepartment(std::move(department));
    return role;
}

}  // namespace

RoleTypeStorage RoleTypeStorage::from(const AnyRoleType& type) {
    if (auto roleType = type.contactRoleType()) return valid(*std::move(roleType));
    return invalid(type);
}

ContactRole::ContactRole(Destination at, std::optional<ContactRoleType> type)
    : backingRole{.roleID = ObjectID<AnyRole>(), .roleType = recordOf(type)},
      backingRoleType(storageOf(std::move(type))),
      destination(std::move(at)) {}

void ContactRole::setCompany(std::optional<Company> company) {
    if (company) {
        destination = Destination::company(*std::move(company));
    } else if (this->company() != nullptr) {
        destination = Destination::missingDestination();
    }
}

void ContactRole::setOpportunity(std::optional<Opportunity> opportunity) {
    if (opportunity) {
        destination = Destination::opportunity(*std::move(opportunity));
    } else if (this->opportunity() != nullptr) {
        destination = Destination::missingDestination();
    }
}

void ContactRole::setProject(std::optional<Project> project) {
    if (project) {
        destination = Destination::project(*std::move(project));
    } else if (this->project() != nullptr) {
        destination = Destination::missingDestination();
    }
}

void ContactRole::setRoleType(std::optional<ContactRoleType> roleType) {
    backingRole.roleType = recordOf(roleType);
    backingRoleType = storageOf(std::move(roleType));
}

std::optional<std::string> ContactRole::roleTypeName() const {
    if (!backingRoleType) return std::nullopt;
    if (const ContactRoleType* type = backingRoleType->valid()) return type->name();
    return backingRoleType->invalid()->name.get();
}

std::optional<ContactCompanyRole> ContactCompanyRole::from(ContactRole role) {
    if (role.company() == nullptr) return std::nullopt;
    return ContactCompanyRole(std::move(role));
}

ContactCompanyRole::ContactCompanyRole(Company at, std::optional<std::string> name,
                                       std::optional<std::string> department, std::optional<ContactRoleType> type)
    : backingRole_(
          newRole(RoleDestination::company(std::move(at)), std::move(name), std::move(department), std::move(type))) {}

std::optional<std::string> ContactCompanyRole::nameAndDepartment() const {
    if (!name()) return department();
    if (!department()) return name();
    return *name() + ", " + *department();
}

std::optional<ContactOpportunityRole> ContactOpportunityRole::from(ContactRole role) {
    if (role.opportunity() == nullptr) return std::nullopt;
    return ContactOpportunityRole(std::move(role));
}

ContactOpportunityRole::ContactOpportunityRole(Opportunity at, std::optional<std::string> name,
                                               std::optional<ContactRoleType> type)
    : backingRole_(
          newRole(RoleDestination::opportunity(std::move(at)), std::move(name), std::nullopt, std::move(type))) {}

std::optional<ContactProjectRole> ContactProjectRole::from(ContactRole role) {
    if (role.project() == nullptr) return std::nullopt;
    return ContactProjectRole(std::move(role));
}

ContactProjectRole::ContactProjectRole(Project at, std::optional<std::string> name, std::optional<ContactRoleType> type)
    : backingRole_(newRole(RoleDestination::project(std::move(at)), std::move(name), std::nullopt, std::move(type))) {}

const ContactRole* Contact::defaultRole(std::span<const ContactRole> roles) {
    auto found = std::ranges::find_if(roles, &ContactRole::isDefault);
    if (found == roles.end()) {
        found = std::ranges::find_if(roles, [](const ContactRole& role) { return role.company() != nullptr; });
    }
    return found == roles.end() ? nullptr : &*found;
}

std::vector<ContactRole> Contact::setDefaultRole(std::int64_t index, std::vector<ContactRole> roles) {
    if (index < 0 || static_cast<std::size_t>(index) >= roles.size()) return roles;
    for (ContactRole& role : roles) {
        if (role.company() != nullptr) role.setDefault(false);
    }
    ContactRole& chosen = roles[static_cast<std::size_t>(index)];
    if (chosen.company() != nullptr) chosen.setDefault(true);
    return roles;
}

}  // namespace kestrel
