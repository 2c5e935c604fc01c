#include <kestrel/relationships/relationship.h>

namespace kestrel {

ToRelationship::ToRelationship(Destination end, std::optional<RelationshipType> type)
    : backingRelationship{.relationID = ObjectID<AnyRelationship>(), .relationshipType = std::move(type)},
      destination(std::move(end)) {}

void ToRelationship::setContact(std::optional<Contact> contact) {
    if (contact) {
        destination = Destination::contact(*std::move(contact));
    } else if (this->contact() != nullptr) {
        destination = Destination::missingDestination();
    }
}

void ToRelationship::setCompany(std::optional<Company> company) {
    if (company) {
        destination = Destination::company(*std::move(company));
    } else if (this->company() != nullptr) {
        destination = Destination::missingDestination();
    }
}

std::optional<ToContactRelationship> ToContactRelationship::from(ToRelationship relationship) {
    if (relationship.contact() == nullptr) return std::nullopt;
    return ToContactRelationship(std::move(relationship));
}

ToContactRelationship::ToContactRelationship(Contact contact, std::optional<RelationshipType> type)
    : backingRelationship_(ToRelationship::Destination::contact(std::move(contact)), std::move(type)) {}

FromRelationship::FromRelationship(Source end, std::optional<RelationshipType> type)
    : backingRelationship{.relationID = ObjectID<AnyRelationship>(), .relationshipType = std::move(type)},
      source(std::move(end)) {}

void FromRelationship::setContact(std::optional<Contact> contact) {
    if (contact) {
        source = Source::contact(*std::move(contact));
    } else if (this->contact() != nullptr) {
        source = Source::missingSource();
    }
}

void FromRelationship::setCompany(std::optional<Company> company) {
    if (company) {
        source = Source::company(*std::move(company));
    } else if (this->company() != nullptr) {
        source = Source::missingSource();
    }
}

std::optional<FromContactRelationship> FromContactRelationship::from(FromRelationship relationship) {
    if (relationship.contact() == nullptr) return std::nullopt;
    return FromContactRelationship(std::move(relationship));
}

FromContactRelationship::FromContactRelationship(Contact contact, std::optional<RelationshipType> type)
    : backingRelationship_(FromRelationship::Source::contact(std::move(contact)), std::move(type)) {}

const AnyRelationship& ContactRelationship::record() const noexcept {
    if (const auto* relationship = to()) return relationship->toRelationshipRecord().backingRelationship;
    return from()->fromRelationshipRecord().backingRelationship;
}

const Contact& ContactRelationship::relatedContact() const noexcept {
    if (const auto* relationship = to()) return relationship->destination();
    return from()->source();
}

std::optional<std::string> ContactRelationship::directionalName() const {
    const auto& type = relationshipType();
    if (!type) return std::nullopt;
    return to() != nullptr ? type->forwardName.get() : type->reverseName.get();
}

std::optional<std::string> ContactRelationship::directionalShortName() const {
    const auto& type = relationshipType();
    if (!type) return std::nullopt;
    return to() != nullptr ? type->shortForwardName.get() : type->shortReverseName.get();
}

}  // namespace kestrel
