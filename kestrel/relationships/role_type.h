#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

/// What a role type describes: a person or an organisation.
enum class RoleTypeAppliesTo : std::uint8_t {
    contact = 0,      ///< a person
    organization = 1  ///< an organisation
};

struct AnyRoleType;
class ContactRoleType;
class CompanyRoleType;

/// A copy of a role type to be edited.
struct EditAnyRoleType {
    using Coded = void;

    ReadOnly<ObjectID<AnyRoleType>, EditAnyRoleType> roleTypeID;
    /// Whether the role describes a person or an organisation.
    RoleTypeAppliesTo appliesTo{};
    /// When the record was created.
    ReadOnly<std::optional<Date>, EditAnyRoleType> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Whether it is offered for new roles.
    bool isActive{true};
    /// May be used for roles at companies.
    bool isForCompany{};
    /// May be used for roles of contacts.
    bool isForContact{};
    /// May be used for roles on opportunities.
    bool isForOpportunity{};
    /// May be used for roles on projects.
    bool isForProject{};
    /// The name to show; without one it has no typed view.
    std::optional<std::string> name{};

    [[nodiscard]] const ObjectID<AnyRoleType>& objectID() const noexcept { return roleTypeID.get(); }
    [[nodiscard]] const ObjectID<AnyRoleType>& id() const noexcept { return roleTypeID.get(); }

    /// A copy of all members.
    [[nodiscard]] static EditAnyRoleType fromRecord(const AnyRoleType& record);
    /// The role type as edited.
    [[nodiscard]] AnyRoleType record() const;

    friend bool operator==(const EditAnyRoleType&, const EditAnyRoleType&) = default;
};
extern template struct Codec<EditAnyRoleType>;

/// A role type: what a contact is to a company, an opportunity or a project. It changes through `edit()`.
struct AnyRoleType {
    static constexpr auto recordName = recordNameOf<AnyRoleType>;
    static constexpr auto entityName = entityNameOf<AnyRoleType>;
    /// What `appliesTo` tells.
    using AppliesTo = RoleTypeAppliesTo;

    ReadOnly<ObjectID<AnyRoleType>, AnyRoleType> roleTypeID;
    /// Whether the role describes a person or an organisation.
    ReadOnly<RoleTypeAppliesTo, AnyRoleType> appliesTo{};
    /// When the record was created.
    ReadOnly<std::optional<Date>, AnyRoleType> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    ReadOnly<std::optional<Date>, AnyRoleType> deletionDate{};
    /// A marker of the deletion.
    ReadOnly<std::optional<std::string>, AnyRoleType> deletionIdentifier{};
    /// Key of the user who deleted it.
    ReadOnly<std::optional<std::int64_t>, AnyRoleType> deletionUserID{};
    /// Whether it is offered for new roles.
    ReadOnly<bool, AnyRoleType> isActive{true};
    /// May be used for roles at companies.
    ReadOnly<bool, AnyRoleType> isForCompany{};
    /// May be used for roles of contacts.
    ReadOnly<bool, AnyRoleType> isForContact{};
    /// May be used for roles on opportunities.
    ReadOnly<bool, AnyRoleType> isForOpportunity{};
    /// May be used for roles on projects.
    ReadOnly<bool, AnyRoleType> isForProject{};
    /// The name to show; without one it has no typed view.
    ReadOnly<std::optional<std::string>, AnyRoleType> name{};

    [[nodiscard]] const ObjectID<AnyRoleType>& objectID() const noexcept { return roleTypeID.get(); }
    [[nodiscard]] const ObjectID<AnyRoleType>& id() const noexcept { return roleTypeID.get(); }

    /// A copy to be edited.
    [[nodiscard]] EditAnyRoleType edit() const { return EditAnyRoleType::fromRecord(*this); }
    /// The typed view of a named role type that describes a person; absent for others.
    [[nodiscard]] std::optional<ContactRoleType> contactRoleType() const;
    /// The typed view of a named role type that describes an organisation; absent for others.
    [[nodiscard]] std::optional<CompanyRoleType> companyRoleType() const;

    friend bool operator==(const AnyRoleType&, const AnyRoleType&) = default;
};
extern template struct Codec<AnyRoleType>;

/// A named role type that describes a person, with its name at hand.
class ContactRoleType {
  public:
    /// Absent for a role type without a name, or one that describes an organisation. What it may be used for plays no
    /// part.
    [[nodiscard]] static std::optional<ContactRoleType> from(const AnyRoleType& roleType);

    /// The role type itself.
    [[nodiscard]] const AnyRoleType& roleTypeRecord() const noexcept { return backingRoleType_; }
    [[nodiscard]] const ObjectID<AnyRoleType>& id() const noexcept { return backingRoleType_.id(); }
    [[nodiscard]] const ObjectID<AnyRoleType>& objectID() const noexcept { return backingRoleType_.id(); }
    /// Its name, which is always there.
    [[nodiscard]] const std::string& name() const noexcept { return *backingRoleType_.name.get(); }
    /// Whether it is offered for new roles.
    [[nodiscard]] bool isActive() const noexcept { return backingRoleType_.isActive; }
    /// When the role type was created.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRoleType_.createDate; }
    /// May be used for roles at companies.
    [[nodiscard]] bool isForCompany() const noexcept { return backingRoleType_.isForCompany; }
    /// May be used for roles on opportunities.
    [[nodiscard]] bool isForOpportunity() const noexcept { return backingRoleType_.isForOpportunity; }
    /// May be used for roles on projects.
    [[nodiscard]] bool isForProject() const noexcept { return backingRoleType_.isForProject; }

    friend bool operator==(const ContactRoleType&, const ContactRoleType&) = default;

  private:
    explicit ContactRoleType(AnyRoleType roleType) : backingRoleType_(std::move(roleType)) {}

    /// It has a name.
    AnyRoleType backingRoleType_;
};
/// The debug mirror of the view.
[[nodiscard]] std::string debugMirror(const ContactRoleType& view);

/// A named role type that describes an organisation, with its name at hand.
class CompanyRoleType {
  public:
    /// Absent for a role type without a name, or one that describes a person. What it may be used for plays no
    /// part.
    [[nodiscard]] static std::optional<CompanyRoleType> from(const AnyRoleType& roleType);

    /// The role type itself.
    [[nodiscard]] const AnyRoleType& roleTypeRecord() const noexcept { return backingRoleType_; }
    [[nodiscard]] const ObjectID<AnyRoleType>& id() const noexcept { return backingRoleType_.id(); }
    [[nodiscard]] const ObjectID<AnyRoleType>& objectID() const noexcept { return backingRoleType_.id(); }
    /// Its name, which is always there.
    [[nodiscard]] const std::string& name() const noexcept { return *backingRoleType_.name.get(); }
    /// Whether it is offered for new roles.
    [[nodiscard]] bool isActive() const noexcept { return backingRoleType_.isActive; }
    /// When the role type was created.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRoleType_.createDate; }
    /// May be used for roles on opportunities.
    [[nodiscard]] bool isForOpportunity() const noexcept { return backingRoleType_.isForOpportunity; }
    /// May be used for roles on projects.
    [[nodiscard]] bool isForProject() const noexcept { return backingRoleType_.isForProject; }

    friend bool operator==(const CompanyRoleType&, const CompanyRoleType&) = default;

  private:
    explicit CompanyRoleType(AnyRoleType roleType) : backingRoleType_(std::move(roleType)) {}

    /// It has a name.
    AnyRoleType backingRoleType_;
};
/// The debug mirror of the view.
[[nodiscard]] std::string debugMirror(const CompanyRoleType& view);

/// What the typed views of a role type offer in common.
template <class View>
concept RoleTypeSpecialization = requires(const View& view, const AnyRoleType& record) {
    { View::from(record) } -> std::same_as<std::optional<View>>;
    { view.roleTypeRecord() } -> std::same_as<const AnyRoleType&>;
    { view.objectID() } -> std::same_as<const ObjectID<AnyRoleType>&>;
    { view.name() } -> std::same_as<const std::string&>;
    { view.isActive() } -> std::same_as<bool>;
    { view.createDate() } -> std::same_as<const std::optional<Date>&>;
    { view.isForOpportunity() } -> std::same_as<bool>;
    { view.isForProject() } -> std::same_as<bool>;
};
static_assert(RoleTypeSpecialization<ContactRoleType> && RoleTypeSpecialization<CompanyRoleType>);

}  // namespace kestrel
