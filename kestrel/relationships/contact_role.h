#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/shared.h>
#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>
#include <kestrel/relationships/any_role.h>
#include <kestrel/relationships/role_type.h>
#include <concepts>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

// A contact's roles: what it is at companies, on opportunities and on projects. `ContactRole` is a stored role with its
// destination and its type resolved; the views for the three kinds of destination offer what such roles have.
//
// Records within are read by pointers, which are null where there is none and live as long as the role is not changed.

/// Where a contact has a role. Copies share the record.
class RoleDestination
    : public Choice<RoleDestination, Shared<Company>, Shared<Opportunity>, Shared<Project>, NoPayload<3>> {
  public:
    /// At that company.
    [[nodiscard]] static RoleDestination company(Company company) {
        return RoleDestination(Shared(std::move(company)));
    }
    /// On that opportunity.
    [[nodiscard]] static RoleDestination opportunity(Opportunity opportunity) {
        return RoleDestination(Shared(std::move(opportunity)));
    }
    /// On that project.
    [[nodiscard]] static RoleDestination project(Project project) {
        return RoleDestination(Shared(std::move(project)));
    }
    /// It could not be loaded.
    [[nodiscard]] static RoleDestination missingDestination() { return RoleDestination(NoPayload<3>{}); }

    /// Null when it is something else.
    [[nodiscard]] const Company* company() const noexcept { return shared<Company>(); }
    /// Null when it is something else.
    [[nodiscard]] const Opportunity* opportunity() const noexcept { return shared<Opportunity>(); }
    /// Null when it is something else.
    [[nodiscard]] const Project* project() const noexcept { return shared<Project>(); }
    /// Whether it could not be loaded.
    [[nodiscard]] bool isMissingDestination() const noexcept { return caseIndex() == 3; }

    friend bool operator==(const RoleDestination&, const RoleDestination&) = default;

  private:
    explicit RoleDestination(Variant value) : Choice(std::move(value)) {}
    template <class Record>
    [[nodiscard]] const Record* shared() const noexcept {
        const auto* record = payloadIf<Shared<Record>>();
        return record != nullptr ? record->get() : nullptr;
    }
};

/// A role's type, which need not be one that describes a person: then it is `invalid`, but keeps its name.
class RoleTypeStorage : public Choice<RoleTypeStorage, ContactRoleType, AnyRoleType> {
  public:
    /// One that describes a person.
    [[nodiscard]] static RoleTypeStorage valid(ContactRoleType type) { return RoleTypeStorage(std::move(type)); }
    /// One that does not, or has no name.
    [[nodiscard]] static RoleTypeStorage invalid(AnyRoleType type) { return RoleTypeStorage(std::move(type)); }
    /// Valid when the type converts to one that describes a person.
    [[nodiscard]] static RoleTypeStorage from(const AnyRoleType& type);

    [[nodiscard]] const ContactRoleType* valid() const noexcept { return payloadIf<ContactRoleType>(); }
    [[nodiscard]] const AnyRoleType* invalid() const noexcept { return payloadIf<AnyRoleType>(); }

    friend bool operator==(const RoleTypeStorage&, const RoleTypeStorage&) = default;

  private:
    explicit RoleTypeStorage(Variant value) : Choice(std::move(value)) {}
};

/// A contact's role with its destination and its type.
struct ContactRole {
    /// Where it is.
    using Destination = RoleDestination;
    /// What it is.
    using RoleTypeStorage = kestrel::RoleTypeStorage;

    /// The role as it is stored.
    AnyRole backingRole;
    /// Absent when the role has no type.
    std::optional<RoleTypeStorage> backingRoleType{};
    /// Missing until it is set.
    Destination destination = Destination::missingDestination();

    /// A stored role.
    ContactRole(AnyRole record, Destination at, std::optional<RoleTypeStorage> type)
        : backingRole(std::move(record)), backingRoleType(std::move(type)), destination(std::move(at)) {}
    /// A new role: its identifier is a new one, it has no creation date and is not the default.
    ContactRole(Destination at, std::optional<ContactRoleType> type);

    [[nodiscard]] const ObjectID<AnyRole>& id() const noexcept { return backingRole.id(); }
    [[nodiscard]] const ObjectID<AnyRole>& objectID() const noexcept { return backingRole.objectID(); }
    /// When the role was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRole.createDate; }

    /// The role's title.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return backingRole.name; }
    /// Sets the title; absent takes it away.
    void setName(std::optional<std::string> name) { backingRole.name = std::move(name); }
    /// The department at the destination.
    [[nodiscard]] const std::optional<std::string>& department() const noexcept { return backingRole.department; }
    /// Sets the department; absent takes it away.
    void setDepartment(std::optional<std::string> department) { backingRole.department = std::move(department); }
    /// Whether it is marked as the contact's default role.
    [[nodiscard]] bool isDefault() const noexcept { return backingRole.isDefaultForContact; }
    /// Sets the mark of this role alone; see Contact::setDefaultRole.
    void setDefault(bool isDefault) noexcept { backingRole.isDefaultForContact = isDefault; }

    ///@{
    /// The destination when it is of that kind, else null. Setting one makes it the destination; setting an absent one
    /// makes the destination missing when it was of that kind, and changes nothing otherwise.
    [[nodiscard]] const Company* company() const noexcept { return destination.company(); }
    void setCompany(std::optional<Company> company);
    [[nodiscard]] const Opportunity* opportunity() const noexcept { return destination.opportunity(); }
    void setOpportunity(std::optional<Opportunity> opportunity);
    [[nodiscard]] const Project* project() const noexcept { return destination.project(); }
    void setProject(std::optional<Project> project);
    ///@}

    /// Null when the role has no type, or an invalid one.
    [[nodiscard]] const ContactRoleType* roleType() const noexcept {
        return backingRoleType ? backingRoleType->valid() : nullptr;
    }
    /// Sets the stored role's type too. An absent one leaves the role without a type.
    void setRoleType(std::optional<ContactRoleType> roleType);
    /// The name of the type, valid or not; absent when the role has none, or an invalid one without a name.
    [[nodiscard]] std::optional<std::string> roleTypeName() const;

    friend bool operator==(const ContactRole&, const ContactRole&) = default;
};

/// A role at a company, with the company at hand. Only such roles have a department and take part in the choice of a
/// contact's default role.
class ContactCompanyRole {
  public:
    /// Absent unless the role's destination is a company.
    [[nodiscard]] static std::optional<ContactCompanyRole> from(ContactRole role);
    /// A new role: its identifier is a new one, it has no creation date and is not the default.
    ContactCompanyRole(Company at, std::optional<std::string> name, std::optional<std::string> department,
                       std::optional<ContactRoleType> type);

    /// The role itself.
    [[nodiscard]] const ContactRole& contactRoleRecord() const noexcept { return backingRole_; }
    /// The company, which is always there.
    [[nodiscard]] const Company& company() const noexcept { return *backingRole_.company(); }
    /// Makes another company the destination.
    void setCompany(Company company) { backingRole_.setCompany(std::move(company)); }
    [[nodiscard]] const ObjectID<AnyRole>& id() const noexcept { return backingRole_.id(); }
    [[nodiscard]] const ObjectID<AnyRole>& objectID() const noexcept { return backingRole_.objectID(); }
    /// When the role was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRole_.createDate(); }

    /// The role's title.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return backingRole_.name(); }
    /// Sets the title; absent takes it away.
    void setName(std::optional<std::string> name) { backingRole_.setName(std::move(name)); }
    /// The department at the company.
    [[nodiscard]] const std::optional<std::string>& department() const noexcept { return backingRole_.department(); }
    /// Sets the department; absent takes it away.
    void setDepartment(std::optional<std::string> department) { backingRole_.setDepartment(std::move(department)); }
    /// Whether it is marked as the contact's default role.
    [[nodiscard]] bool isDefault() const noexcept { return backingRole_.isDefault(); }
    /// Sets the mark of this role alone; see Contact::setDefaultRole.
    void setDefault(bool isDefault) noexcept { backingRole_.setDefault(isDefault); }
    /// Null when the role has no type, or an invalid one.
    [[nodiscard]] const ContactRoleType* roleType() const noexcept { return backingRole_.roleType(); }
    /// An absent one leaves the role without a type.
    void setRoleType(std::optional<ContactRoleType> roleType) { backingRole_.setRoleType(std::move(roleType)); }

    /// Title and department, those of them that are present, with ", " between; absent when neither is. An empty title
    /// is present.
    [[nodiscard]] std::optional<std::string> nameAndDepartment() const;

    friend bool operator==(const ContactCompanyRole&, const ContactCompanyRole&) = default;

  private:
    explicit ContactCompanyRole(ContactRole role) : backingRole_(std::move(role)) {}

    /// Its destination is a company.
    ContactRole backingRole_;
};

/// A role on an opportunity, with the opportunity at hand.
class ContactOpportunityRole {
  public:
    /// Absent unless the role's destination is an opportunity.
    [[nodiscard]] static std::optional<ContactOpportunityRole> from(ContactRole role);
    /// A new role: its identifier is a new one, it has no creation date and is not the default.
    ContactOpportunityRole(Opportunity at, std::optional<std::string> name, std::optional<ContactRoleType> type);

    /// The role itself.
    [[nodiscard]] const ContactRole& contactRoleRecord() const noexcept { return backingRole_; }
    /// The opportunity, which is always there.
    [[nodiscard]] const Opportunity& opportunity() const noexcept { return *backingRole_.opportunity(); }
    [[nodiscard]] const ObjectID<AnyRole>& id() const noexcept { return backingRole_.id(); }
    [[nodiscard]] const ObjectID<AnyRole>& objectID() const noexcept { return backingRole_.objectID(); }
    /// When the role was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRole_.createDate(); }
    /// The role's title.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return backingRole_.name(); }
    /// Null when the role has no type, or an invalid one.
    [[nodiscard]] const ContactRoleType* roleType() const noexcept { return backingRole_.roleType(); }

    friend bool operator==(const ContactOpportunityRole&, const ContactOpportunityRole&) = default;

  private:
    explicit ContactOpportunityRole(ContactRole role) : backingRole_(std::move(role)) {}

    /// Its destination is an opportunity.
    ContactRole backingRole_;
};

/// A role on a project, with the project at hand.
class ContactProjectRole {
  public:
    /// Absent unless the role's destination is a project.
    [[nodiscard]] static std::optional<ContactProjectRole> from(ContactRole role);
    /// A new role: its identifier is a new one, it has no creation date and is not the default.
    ContactProjectRole(Project at, std::optional<std::string> name, std::optional<ContactRoleType> type);

    /// The role itself.
    [[nodiscard]] const ContactRole& contactRoleRecord() const noexcept { return backingRole_; }
    /// The project, which is always there.
    [[nodiscard]] const Project& project() const noexcept { return *backingRole_.project(); }
    [[nodiscard]] const ObjectID<AnyRole>& id() const noexcept { return backingRole_.id(); }
    [[nodiscard]] const ObjectID<AnyRole>& objectID() const noexcept { return backingRole_.objectID(); }
    /// When the role was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRole_.createDate(); }
    /// The role's title.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return backingRole_.name(); }
    /// Null when the role has no type, or an invalid one.
    [[nodiscard]] const ContactRoleType* roleType() const noexcept { return backingRole_.roleType(); }

    friend bool operator==(const ContactProjectRole&, const ContactProjectRole&) = default;

  private:
    explicit ContactProjectRole(ContactRole role) : backingRole_(std::move(role)) {}

    /// Its destination is a project.
    ContactRole backingRole_;
};

/// What the views of a role offer in common.
template <class View>
concept ContactRoleSpecialization = requires(const View& view, const ContactRole& role) {
    { View::from(role) } -> std::same_as<std::optional<View>>;
    { view.contactRoleRecord() } -> std::same_as<const ContactRole&>;
    { view.objectID() } -> std::same_as<const ObjectID<AnyRole>&>;
    { view.createDate() } -> std::same_as<const std::optional<Date>&>;
    { view.name() } -> std::same_as<const std::optional<std::string>&>;
    { view.roleType() } -> std::same_as<const ContactRoleType*>;
};
static_assert(ContactRoleSpecialization<ContactCompanyRole> && ContactRoleSpecialization<ContactOpportunityRole> &&
              ContactRoleSpecialization<ContactProjectRole>);

}  // namespace kestrel
