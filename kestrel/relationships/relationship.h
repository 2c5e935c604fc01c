#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/shared.h>
#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/relationships/any_relationship.h>
#include <concepts>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

// Relationships of a contact, seen from either end: the stored record is the same, and which end the far one is decides
// how the relationship is called.
//
// Records within are read by pointers, which are null where there is none and live as long as the relationship is not
// changed.

/// The far end of a relationship seen from its source: another contact or a company. Copies share the record.
class RelationshipDestination : public Choice<RelationshipDestination, Shared<Contact>, Shared<Company>, NoPayload<2>> {
  public:
    [[nodiscard]] static RelationshipDestination contact(Contact contact) {
        return RelationshipDestination(Shared(std::move(contact)));
    }
    [[nodiscard]] static RelationshipDestination company(Company company) {
        return RelationshipDestination(Shared(std::move(company)));
    }
    /// It could not be loaded.
    [[nodiscard]] static RelationshipDestination missingDestination() {
        return RelationshipDestination(NoPayload<2>{});
    }

    [[nodiscard]] const Contact* contact() const noexcept { return shared<Contact>(); }
    [[nodiscard]] const Company* company() const noexcept { return shared<Company>(); }
    [[nodiscard]] bool isMissingDestination() const noexcept { return caseIndex() == 2; }

    friend bool operator==(const RelationshipDestination&, const RelationshipDestination&) = default;

  private:
    explicit RelationshipDestination(Variant value) : Choice(std::move(value)) {}
    template <class Record>
    [[nodiscard]] const Record* shared() const noexcept {
        const auto* record = payloadIf<Shared<Record>>();
        return record != nullptr ? record->get() : nullptr;
    }
};

/// A relationship seen from its source: it points to its destination.
struct ToRelationship {
    using Destination = RelationshipDestination;

    AnyRelationship backingRelationship;
    Destination destination = Destination::missingDestination();

    /// A stored relationship.
    ToRelationship(AnyRelationship record, Destination end)
        : backingRelationship(std::move(record)), destination(std::move(end)) {}
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    ToRelationship(Destination end, std::optional<RelationshipType> type);

    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return backingRelationship.id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return backingRelationship.objectID(); }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRelationship.createDate; }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return backingRelationship.details; }
    void setDetails(std::optional<std::string> details) { backingRelationship.details = std::move(details); }
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return backingRelationship.relationshipType;
    }
    void setRelationshipType(std::optional<RelationshipType> type) {
        backingRelationship.relationshipType = std::move(type);
    }

    // The destination when it is of that kind. Setting one makes it the destination; setting an absent one makes the
    // destination missing when it was of that kind, and changes nothing otherwise.
    [[nodiscard]] const Contact* contact() const noexcept { return destination.contact(); }
    void setContact(std::optional<Contact> contact);
    [[nodiscard]] const Company* company() const noexcept { return destination.company(); }
    void setCompany(std::optional<Company> company);

    friend bool operator==(const ToRelationship&, const ToRelationship&) = default;
};

/// A relationship to another contact, with that contact at hand.
class ToContactRelationship {
  public:
    /// Absent unless the destination is a contact.
    [[nodiscard]] static std::optional<ToContactRelationship> from(ToRelationship relationship);
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    ToContactRelationship(Contact contact, std::optional<RelationshipType> type);

    [[nodiscard]] const ToRelationship& toRelationshipRecord() const noexcept { return backingRelationship_; }
    [[nodiscard]] const Contact& destination() const noexcept { return *backingRelationship_.contact(); }
    void setDestination(Contact destination) { backingRelationship_.setContact(std::move(destination)); }
    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return backingRelationship_.id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return backingRelationship_.objectID(); }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRelationship_.createDate(); }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return backingRelationship_.details(); }
    void setDetails(std::optional<std::string> details) { backingRelationship_.setDetails(std::move(details)); }
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return backingRelationship_.relationshipType();
    }
    void setRelationshipType(std::optional<RelationshipType> type) {
        backingRelationship_.setRelationshipType(std::move(type));
    }

    friend bool operator==(const ToContactRelationship&, const ToContactRelationship&) = default;

  private:
    explicit ToContactRelationship(ToRelationship relationship) : backingRelationship_(std::move(relationship)) {}

    /// Its destination is a contact.
    ToRelationship backingRelationship_;
};

/// What the views of a relationship seen from its source offer.
template <class View>
concept ToRelationshipSpecialization = requires(const View& view, const ToRelationship& relationship) {
    { View::from(relationship) } -> std::same_as<std::optional<View>>;
    { view.toRelationshipRecord() } -> std::same_as<const ToRelationship&>;
    { view.objectID() } -> std::same_as<const ObjectID<AnyRelationship>&>;
    { view.createDate() } -> std::same_as<const std::optional<Date>&>;
    { view.details() } -> std::same_as<const std::optional<std::string>&>;
    { view.relationshipType() } -> std::same_as<const std::optional<RelationshipType>&>;
};
static_assert(ToRelationshipSpecialization<ToContactRelationship>);

/// The far end of a relationship seen from its destination: another contact or a company. Copies share the record.
class RelationshipSource : public Choice<RelationshipSource, Shared<Contact>, Shared<Company>, NoPayload<2>> {
  public:
    [[nodiscard]] static RelationshipSource contact(Contact contact) {
        return RelationshipSource(Shared(std::move(contact)));
    }
    [[nodiscard]] static RelationshipSource company(Company company) {
        return RelationshipSource(Shared(std::move(company)));
    }
    /// It could not be loaded.
    [[nodiscard]] static RelationshipSource missingSource() { return RelationshipSource(NoPayload<2>{}); }

    [[nodiscard]] const Contact* contact() const noexcept { return shared<Contact>(); }
    [[nodiscard]] const Company* company() const noexcept { return shared<Company>(); }
    [[nodiscard]] bool isMissingSource() const noexcept { return caseIndex() == 2; }

    friend bool operator==(const RelationshipSource&, const RelationshipSource&) = default;

  private:
    explicit RelationshipSource(Variant value) : Choice(std::move(value)) {}
    template <class Record>
    [[nodiscard]] const Record* shared() const noexcept {
        const auto* record = payloadIf<Shared<Record>>();
        return record != nullptr ? record->get() : nullptr;
    }
};

/// A relationship seen from its destination: it points back to its source.
struct FromRelationship {
    using Source = RelationshipSource;

    AnyRelationship backingRelationship;
    Source source = Source::missingSource();

    /// A stored relationship.
    FromRelationship(AnyRelationship record, Source end)
        : backingRelationship(std::move(record)), source(std::move(end)) {}
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    FromRelationship(Source end, std::optional<RelationshipType> type);

    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return backingRelationship.id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return backingRelationship.objectID(); }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRelationship.createDate; }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return backingRelationship.details; }
    void setDetails(std::optional<std::string> details) { backingRelationship.details = std::move(details); }
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return backingRelationship.relationshipType;
    }
    void setRelationshipType(std::optional<RelationshipType> type) {
        backingRelationship.relationshipType = std::move(type);
    }

    // The source when it is of that kind. Setting one makes it the source; setting an absent one makes the source
    // missing when it was of that kind, and changes nothing otherwise.
    [[nodiscard]] const Contact* contact() const noexcept { return source.contact(); }
    void setContact(std::optional<Contact> contact);
    [[nodiscard]] const Company* company() const noexcept { return source.company(); }
    void setCompany(std::optional<Company> company);

    friend bool operator==(const FromRelationship&, const FromRelationship&) = default;
};

/// A relationship from another contact, with that contact at hand.
class FromContactRelationship {
  public:
    /// Absent unless the source is a contact.
    [[nodiscard]] static std::optional<FromContactRelationship> from(FromRelationship relationship);
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    FromContactRelationship(Contact contact, std::optional<RelationshipType> type);

    [[nodiscard]] const FromRelationship& fromRelationshipRecord() const noexcept { return backingRelationship_; }
    [[nodiscard]] const Contact& source() const noexcept { return *backingRelationship_.contact(); }
    void setSource(Contact source) { backingRelationship_.setContact(std::move(source)); }
    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return backingRelationship_.id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return backingRelationship_.objectID(); }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRelationship_.createDate(); }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return backingRelationship_.details(); }
    void setDetails(std::optional<std::string> details) { backingRelationship_.setDetails(std::move(details)); }
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return backingRelationship_.relationshipType();
    }
    void setRelationshipType(std::optional<RelationshipType> type) {
        backingRelationship_.setRelationshipType(std::move(type));
    }

    friend bool operator==(const FromContactRelationship&, const FromContactRelationship&) = default;

  private:
    explicit FromContactRelationship(FromRelationship relationship) : backingRelationship_(std::move(relationship)) {}

    /// Its source is a contact.
    FromRelationship backingRelationship_;
};

/// What the views of a relationship seen from its destination offer.
template <class View>
concept FromRelationshipSpecialization = requires(const View& view, const FromRelationship& relationship) {
    { View::from(relationship) } -> std::same_as<std::optional<View>>;
    { view.fromRelationshipRecord() } -> std::same_as<const FromRelationship&>;
    { view.objectID() } -> std::same_as<const ObjectID<AnyRelationship>&>;
    { view.createDate() } -> std::same_as<const std::optional<Date>&>;
    { view.details() } -> std::same_as<const std::optional<std::string>&>;
    { view.relationshipType() } -> std::same_as<const std::optional<RelationshipType>&>;
};
static_assert(FromRelationshipSpecialization<FromContactRelationship>);

/// A relationship with another contact in either direction, for lists of them all.
class ContactRelationship : public Choice<ContactRelationship, ToContactRelationship, FromContactRelationship> {
  public:
    [[nodiscard]] static ContactRelationship to(ToContactRelationship relationship) {
        return ContactRelationship(std::move(relationship));
    }
    [[nodiscard]] static ContactRelationship from(FromContactRelationship relationship) {
        return ContactRelationship(std::move(relationship));
    }

    [[nodiscard]] const ToContactRelationship* to() const noexcept { return payloadIf<ToContactRelationship>(); }
    [[nodiscard]] const FromContactRelationship* from() const noexcept { return payloadIf<FromContactRelationship>(); }

    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return record().id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return record().objectID(); }
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return record().createDate; }
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return record().details; }
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return record().relationshipType;
    }
    /// The contact at the other end.
    [[nodiscard]] const Contact& relatedContact() const noexcept;
    /// The name of the relationship, read from the contact whose list it is in to the related one: the type's forward
    /// name for `to`, its reverse name for `from`; absent without a type.
    [[nodiscard]] std::optional<std::string> directionalName() const;
    /// The short name in this direction; absent without a type.
    [[nodiscard]] std::optional<std::string> directionalShortName() const;

    friend bool operator==(const ContactRelationship&, const ContactRelationship&) = default;

  private:
    explicit ContactRelationship(Variant value) : Choice(std::move(value)) {}
    [[nodiscard]] const AnyRelationship& record() const noexcept;
};

}  // namespace kestrel
