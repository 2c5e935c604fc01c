#include <kestrel/relationships/relationship.h>

namespace kestrel {

namespace {

/// Makes a record the far end; an absent one leaves it missing where a record of that kind, `before`, was.
template <class End, class Record>
void setFarEnd(End& end, std::optional<Record> record, const Record* before, End (*missing)()) {
    if (record) {
        if constexpr (std::is_same_v<Record, Contact>) {
            end = End::contact(*std::move(record));
        } else {
            end = End::company(*std::move(record));
        }
    } else if (before != nullptr) {
        end = missing();
    }
}

}  // namespace

AnyRelationship SeenRelationship::newRecord(std::optional<RelationshipType> type) {
    return {.relationID = ObjectID<AnyRelationship>(), .relationshipType = std::move(type)};
}

void ToRelationship::setContact(std::optional<Contact> contact) {
    setFarEnd(destination, std::move(contact), destination.contact(), Destination::missingDestination);
}

void ToRelationship::setCompany(std::optional<Company> company) {
    setFarEnd(destination, std::move(company), destination.company(), Destination::missingDestination);
}

std::optional<ToContactRelationship> ToContactRelationship::from(ToRelationship relationship) {
    if (relationship.contact() == nullptr) return std::nullopt;
    return ToContactRelationship(std::move(relationship));
}

void FromRelationship::setContact(std::optional<Contact> contact) {
    setFarEnd(source, std::move(contact), source.contact(), Source::missingSource);
}

void FromRelationship::setCompany(std::optional<Company> company) {
    setFarEnd(source, std::move(company), source.company(), Source::missingSource);
}

std::optional<FromContactRelationship> FromContactRelationship::from(FromRelationship relationship) {
    if (relationship.contact() == nullptr) return std::nullopt;
    return FromContactRelationship(std::move(relationship));
}

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
