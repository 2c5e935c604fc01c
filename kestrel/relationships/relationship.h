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

/// What the far end of a relationship is: another contact or a company. Copies share the record.
template <class End>
class RelationshipEnd : public Choice<End, Shared<Contact>, Shared<Company>, NoPayload<2>> {
  public:
    /// For the constructor of what derives from this.
    using Base = Choice<End, Shared<Contact>, Shared<Company>, NoPayload<2>>;
    /// What holds the far end.
    using typename Base::Variant;

    /// That contact.
    [[nodiscard]] static End contact(Contact contact) { return End(Shared(std::move(contact))); }
    /// That company.
    [[nodiscard]] static End company(Company company) { return End(Shared(std::move(company))); }

    /// Null when it is something else.
    [[nodiscard]] const Contact* contact() const noexcept { return shared<Contact>(); }
    /// Null when it is something else.
    [[nodiscard]] const Company* company() const noexcept { return shared<Company>(); }

    friend bool operator==(const RelationshipEnd&, const RelationshipEnd&) = default;

  protected:
    /// From what holds the far end.
    explicit RelationshipEnd(Variant value) : Base(std::move(value)) {}
    /// Whether it could not be loaded.
    [[nodiscard]] bool isMissing() const noexcept { return this->caseIndex() == 2; }

  private:
    template <class Record>
    [[nodiscard]] const Record* shared() const noexcept {
        const auto* record = this->template payloadIf<Shared<Record>>();
        return record != nullptr ? record->get() : nullptr;
    }
};

/// What a relationship says whichever end it is seen from.
struct SeenRelationship {
    /// The relationship as it is stored.
    AnyRelationship backingRelationship;

    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return backingRelationship.id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return backingRelationship.objectID(); }
    /// When the relationship was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return backingRelationship.createDate; }
    /// A note on the relationship.
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return backingRelationship.details; }
    /// Sets the note; absent takes it away.
    void setDetails(std::optional<std::string> details) { backingRelationship.details = std::move(details); }
    /// Absent when it is untyped.
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return backingRelationship.relationshipType;
    }
    /// Sets the type; absent leaves it untyped.
    void setRelationshipType(std::optional<RelationshipType> type) {
        backingRelationship.relationshipType = std::move(type);
    }

    friend bool operator==(const SeenRelationship&, const SeenRelationship&) = default;

  protected:
    /// A stored form with a new identifier, of which nothing but the type is set.
    [[nodiscard]] static AnyRelationship newRecord(std::optional<RelationshipType> type);
};

/// A relationship whose far end is a contact: what the views of both directions offer.
template <class Relationship>
class ContactRelationshipView {
  public:
    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return relationship_.id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return relationship_.objectID(); }
    /// When the relationship was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return relationship_.createDate(); }
    /// A note on the relationship.
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return relationship_.details(); }
    /// Sets the note; absent takes it away.
    void setDetails(std::optional<std::string> details) { relationship_.setDetails(std::move(details)); }
    /// Absent when it is untyped.
    [[nodiscard]] const std::optional<RelationshipType>& relationshipType() const noexcept {
        return relationship_.relationshipType();
    }
    /// Sets the type; absent leaves it untyped.
    void setRelationshipType(std::optional<RelationshipType> type) {
        relationship_.setRelationshipType(std::move(type));
    }

    friend bool operator==(const ContactRelationshipView&, const ContactRelationshipView&) = default;

  protected:
    /// Of a relationship whose far end is a contact.
    explicit ContactRelationshipView(Relationship relationship) : relationship_(std::move(relationship)) {}
    /// The relationship itself.
    [[nodiscard]] const Relationship& record() const noexcept { return relationship_; }
    /// The contact at the far end.
    [[nodiscard]] const Contact& farContact() const noexcept { return *relationship_.contact(); }
    /// Puts another contact at the far end.
    void setFarContact(Contact contact) { relationship_.setContact(std::move(contact)); }

  private:
    /// Its far end is a contact.
    Relationship relationship_;
};

/// What every view of a relationship offers.
template <class View>
concept SpecializedRelationship = requires(const View& view) {
    { view.objectID() } -> std::same_as<const ObjectID<AnyRelationship>&>;
    { view.createDate() } -> std::same_as<const std::optional<Date>&>;
    { view.details() } -> std::same_as<const std::optional<std::string>&>;
    { view.relationshipType() } -> std::same_as<const std::optional<RelationshipType>&>;
};

/// The far end of a relationship seen from its source.
class RelationshipDestination : public RelationshipEnd<RelationshipDestination> {
  public:
    /// It could not be loaded.
    [[nodiscard]] static RelationshipDestination missingDestination() {
        return RelationshipDestination(NoPayload<2>{});
    }

    /// Whether it could not be loaded.
    [[nodiscard]] bool isMissingDestination() const noexcept { return isMissing(); }

    friend bool operator==(const RelationshipDestination&, const RelationshipDestination&) = default;

  private:
    friend RelationshipEnd<RelationshipDestination>;
    explicit RelationshipDestination(Variant value) : RelationshipEnd(std::move(value)) {}
};

/// A relationship seen from its source: it points to its destination.
struct ToRelationship : SeenRelationship {
    /// What it points to.
    using Destination = RelationshipDestination;

    /// Missing until it is set.
    Destination destination = Destination::missingDestination();

    /// A stored relationship.
    ToRelationship(AnyRelationship record, Destination end)
        : SeenRelationship{std::move(record)}, destination(std::move(end)) {}
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    ToRelationship(Destination end, std::optional<RelationshipType> type)
        : ToRelationship(newRecord(std::move(type)), std::move(end)) {}

    ///@{
    /// The destination when it is of that kind, else null. Setting one makes it the destination; setting an absent one
    /// makes the destination missing when it was of that kind, and changes nothing otherwise.
    [[nodiscard]] const Contact* contact() const noexcept { return destination.contact(); }
    void setContact(std::optional<Contact> contact);
    [[nodiscard]] const Company* company() const noexcept { return destination.company(); }
    void setCompany(std::optional<Company> company);
    ///@}

    friend bool operator==(const ToRelationship&, const ToRelationship&) = default;
};

/// A relationship to another contact, with that contact at hand.
class ToContactRelationship : public ContactRelationshipView<ToRelationship> {
  public:
    /// Absent unless the destination is a contact.
    [[nodiscard]] static std::optional<ToContactRelationship> from(ToRelationship relationship);
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    ToContactRelationship(Contact contact, std::optional<RelationshipType> type)
        : ContactRelationshipView(
              ToRelationship(ToRelationship::Destination::contact(std::move(contact)), std::move(type))) {}

    /// The relationship itself.
    [[nodiscard]] const ToRelationship& toRelationshipRecord() const noexcept { return record(); }
    /// The other contact.
    [[nodiscard]] const Contact& destination() const noexcept { return farContact(); }
    /// Makes another contact the destination.
    void setDestination(Contact destination) { setFarContact(std::move(destination)); }

    friend bool operator==(const ToContactRelationship&, const ToContactRelationship&) = default;

  private:
    explicit ToContactRelationship(ToRelationship relationship) : ContactRelationshipView(std::move(relationship)) {}
};

/// What the views of a relationship seen from its source offer.
template <class View>
concept ToRelationshipSpecialization =
    SpecializedRelationship<View> && requires(const View& view, const ToRelationship& relationship) {
        { View::from(relationship) } -> std::same_as<std::optional<View>>;
        { view.toRelationshipRecord() } -> std::same_as<const ToRelationship&>;
    };
static_assert(ToRelationshipSpecialization<ToContactRelationship>);

/// The far end of a relationship seen from its destination.
class RelationshipSource : public RelationshipEnd<RelationshipSource> {
  public:
    /// It could not be loaded.
    [[nodiscard]] static RelationshipSource missingSource() { return RelationshipSource(NoPayload<2>{}); }

    /// Whether it could not be loaded.
    [[nodiscard]] bool isMissingSource() const noexcept { return isMissing(); }

    friend bool operator==(const RelationshipSource&, const RelationshipSource&) = default;

  private:
    friend RelationshipEnd<RelationshipSource>;
    explicit RelationshipSource(Variant value) : RelationshipEnd(std::move(value)) {}
};

/// A relationship seen from its destination: it points back to its source.
struct FromRelationship : SeenRelationship {
    /// What it points back to.
    using Source = RelationshipSource;

    /// Missing until it is set.
    Source source = Source::missingSource();

    /// A stored relationship.
    FromRelationship(AnyRelationship record, Source end)
        : SeenRelationship{std::move(record)}, source(std::move(end)) {}
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    FromRelationship(Source end, std::optional<RelationshipType> type)
        : FromRelationship(newRecord(std::move(type)), std::move(end)) {}

    ///@{
    /// The source when it is of that kind, else null. Setting one makes it the source; setting an absent one makes the
    /// source missing when it was of that kind, and changes nothing otherwise.
    [[nodiscard]] const Contact* contact() const noexcept { return source.contact(); }
    void setContact(std::optional<Contact> contact);
    [[nodiscard]] const Company* company() const noexcept { return source.company(); }
    void setCompany(std::optional<Company> company);
    ///@}

    friend bool operator==(const FromRelationship&, const FromRelationship&) = default;
};

/// A relationship from another contact, with that contact at hand.
class FromContactRelationship : public ContactRelationshipView<FromRelationship> {
  public:
    /// Absent unless the source is a contact.
    [[nodiscard]] static std::optional<FromContactRelationship> from(FromRelationship relationship);
    /// A new relationship: its identifier is a new one, and nothing but its type is set.
    FromContactRelationship(Contact contact, std::optional<RelationshipType> type)
        : ContactRelationshipView(
              FromRelationship(FromRelationship::Source::contact(std::move(contact)), std::move(type))) {}

    /// The relationship itself.
    [[nodiscard]] const FromRelationship& fromRelationshipRecord() const noexcept { return record(); }
    /// The other contact.
    [[nodiscard]] const Contact& source() const noexcept { return farContact(); }
    /// Makes another contact the source.
    void setSource(Contact source) { setFarContact(std::move(source)); }

    friend bool operator==(const FromContactRelationship&, const FromContactRelationship&) = default;

  private:
    explicit FromContactRelationship(FromRelationship relationship)
        : ContactRelationshipView(std::move(relationship)) {}
};

/// What the views of a relationship seen from its destination offer.
template <class View>
concept FromRelationshipSpecialization =
    SpecializedRelationship<View> && requires(const View& view, const FromRelationship& relationship) {
        { View::from(relationship) } -> std::same_as<std::optional<View>>;
        { view.fromRelationshipRecord() } -> std::same_as<const FromRelationship&>;
    };
static_assert(FromRelationshipSpecialization<FromContactRelationship>);

/// A relationship with another contact in either direction, for lists of them all.
class ContactRelationship : public Choice<ContactRelationship, ToContactRelationship, FromContactRelationship> {
  public:
    /// One of which the contact is the source.
    [[nodiscard]] static ContactRelationship to(ToContactRelationship relationship) {
        return ContactRelationship(std::move(relationship));
    }
    /// One of which the contact is the destination.
    [[nodiscard]] static ContactRelationship from(FromContactRelationship relationship) {
        return ContactRelationship(std::move(relationship));
    }

    [[nodiscard]] const ToContactRelationship* to() const noexcept { return payloadIf<ToContactRelationship>(); }
    [[nodiscard]] const FromContactRelationship* from() const noexcept { return payloadIf<FromContactRelationship>(); }

    [[nodiscard]] const ObjectID<AnyRelationship>& id() const noexcept { return record().id(); }
    [[nodiscard]] const ObjectID<AnyRelationship>& objectID() const noexcept { return record().objectID(); }
    /// When the relationship was created; absent for a new one.
    [[nodiscard]] const std::optional<Date>& createDate() const noexcept { return record().createDate; }
    /// A note on the relationship.
    [[nodiscard]] const std::optional<std::string>& details() const noexcept { return record().details; }
    /// Absent when it is untyped.
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
