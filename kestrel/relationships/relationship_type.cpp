#include <kestrel/coding/wire_form.h>
#include <kestrel/relationships/relationship_type.h>

namespace kestrel {

KESTREL_FIELDS(EditRelationshipType, relationshipTypeID, createDate, deletionDate, deletionIdentifier, deletionUserID,
               forwardName, isActive, isForCompany, isForContact, reverseName, shortForwardName, shortReverseName);

KESTREL_FIELDS(RelationshipType, relationshipTypeID, createDate, deletionDate, deletionIdentifier, deletionUserID,
               forwardName, isActive, isForCompany, isForContact, reverseName, shortForwardName, shortReverseName);

EditRelationshipType EditRelationshipType::fromRecord(const RelationshipType& record) {
    return {.relationshipTypeID = record.objectID(),
            .createDate = record.createDate.get(),
            .deletionDate = record.deletionDate.get(),
            .deletionIdentifier = record.deletionIdentifier.get(),
            .deletionUserID = record.deletionUserID.get(),
            .forwardName = record.forwardName.get(),
            .isActive = record.isActive.get(),
            .isForCompany = record.isForCompany.get(),
            .isForContact = record.isForContact.get(),
            .reverseName = record.reverseName.get(),
            .shortForwardName = record.shortForwardName.get(),
            .shortReverseName = record.shortReverseName.get()};
}

RelationshipType EditRelationshipType::record() const {
    return {.relationshipTypeID = objectID(),
            .createDate = createDate.get(),
            .deletionDate = deletionDate,
            .deletionIdentifier = deletionIdentifier,
            .deletionUserID = deletionUserID,
            .forwardName = forwardName,
            .isActive = isActive,
            .isForCompany = isForCompany,
            .isForContact = isForContact,
            .reverseName = reverseName,
            .shortForwardName = shortForwardName,
            .shortReverseName = shortReverseName};
}

}  // namespace kestrel
