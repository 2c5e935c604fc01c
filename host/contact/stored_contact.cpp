#include <host/contact/stored_contact.h>
#include <host/store/embedded_keys.h>

#include <utility>
#include <vector>

namespace kestrel::host {
namespace {

// Copies under another identifier. Identifiers are replaced only with the whole record; the bindings do not compile
// when a record gets another member.

Phone copied(const Phone& phone, std::int64_t key) {
    const auto& [id, createDate, deletionDate, deletionIdentifier, deletionUserID, label, modifyDate, number] = phone;
    return {key, createDate, deletionDate, deletionIdentifier, deletionUserID, label, modifyDate, number};
}

AnyElectronicAddress copied(const AnyElectronicAddress& entry, std::int64_t key) {
    const auto& [id, address, createDate, deletionDate, deletionIdentifier, deletionUserID, kind, label, modifyDate,
                 serviceName] = entry;
    return {key,  address, createDate, deletionDate, deletionIdentifier, deletionUserID,
            kind, label,   modifyDate, serviceName};
}

GeoAddress copied(const GeoAddress& address, std::int64_t key) {
    const auto& [id, city, country, countryCode, createDate, deletionDate, deletionIdentifier, deletionUserID, label,
                 latitude, longitude, modifyDate, postalCode, state, street] = address;
    return {key,
            city,
            country,
            countryCode,
            createDate,
            deletionDate,
            deletionIdentifier,
            deletionUserID,
            label,
            latitude,
            longitude,
            modifyDate,
            postalCode,
            state,
            street};
}

ImageAsset copied(const ImageAsset& image, std::int64_t key) {
    const auto& [id, createDate, data, deletionDate, deletionIdentifier, deletionUserID, height, mimeType, modifyDate,
                 name, width] = image;
    return {key,      createDate, data, deletionDate, deletionIdentifier, deletionUserID, height,
            mimeType, modifyDate, name, width};
}

/// The contact under an identifier and with its two dates.
Contact copied(const Contact& contact, const ObjectID<Contact>& asID, const std::optional<Date>& created,
               const std::optional<Date>& modified) {
    const auto& [contactID, alias, anniversaryDay, anniversaryMonth, anniversaryYear, birthDay, birthMonth, birthYear,
                 createDate, creditation, deletionDate, deletionIdentifier, deletionUserID, details, extra1, extra10,
                 extra11, extra12, extra2, extra3, extra4, extra5, extra6, extra7, extra8, extra9, extraDate1,
                 extraDate2, extraDate3, extraDate4, firstName, hobbies, imageAsset, individualSalutation, isFlagged,
                 lastName, middleName, modifyDate, nickname, prefix, priority, relationshipToMe, suffix, tagline,
                 category, electronicAddresses, geoAddresses, keywords, phones, permissions] = contact;
    return {asID,
            alias,
            anniversaryDay,
            anniversaryMonth,
            anniversaryYear,
            birthDay,
            birthMonth,
            birthYear,
            created,
            creditation,
            deletionDate,
            deletionIdentifier,
            deletionUserID,
            details,
            extra1,
            extra10,
            extra11,
            extra12,
            extra2,
            extra3,
            extra4,
            extra5,
            extra6,
            extra7,
            extra8,
            extra9,
            extraDate1,
            extraDate2,
            extraDate3,
            extraDate4,
            firstName,
            hobbies,
            imageAsset,
            individualSalutation,
            isFlagged,
            lastName,
            middleName,
            modified,
            nickname,
            prefix,
            priority,
            relationshipToMe,
            suffix,
            tagline,
            category,
            electronicAddresses,
            geoAddresses,
            keywords,
            phones,
            permissions};
}

template <class Detail>
void giveKeys(std::vector<Detail>& details, EmbeddedKeys& keys) {
    std::vector<Detail> saved;
    saved.reserve(details.size());
    for (Detail& detail : details) {
        const bool isSaved = detail.objectID().isPersistent();
        saved.push_back(isSaved ? std::move(detail) : copied(detail, keys.next<Detail>()));
    }
    details = std::move(saved);
}

void giveKeys(Contact& contact, SQLite::Database& database) {
    EmbeddedKeys keys(database);
    giveKeys(contact.phones, keys);
    giveKeys(contact.electronicAddresses, keys);
    giveKeys(contact.geoAddresses, keys);
    if (contact.imageAsset && !contact.imageAsset->objectID().isPersistent())
        contact.imageAsset = copied(*contact.imageAsset, keys.next<ImageAsset>());
    keys.finish();
}

}  // namespace

Contact storeContact(RecordWriter& records, const Contact& contact) {
    const bool isNew = contact.objectID().isNew();
    const auto before = isNew ? std::nullopt : std::optional(records.changeable(contact.objectID()));
    Contact stored = before ? copied(contact, before->objectID(), before->createDate, before->modifyDate)
                            : copied(contact, records.newID<Contact>(), records.now(), records.now());
    stored.deletionDate.reset();
    stored.deletionIdentifier.reset();
    stored.deletionUserID.reset();
    giveKeys(stored, records.database());
    if (!before) {
        records.insert(stored);
        records.links().add(stored.objectID(), LinkKind::owner, records.user().objectID());
        records.links().add(stored.objectID(), LinkKind::creator, records.user().objectID());
    } else if (stored != *before) {
        stored = copied(stored, before->objectID(), before->createDate, records.now());
        records.update(stored);
    }
    return stored;
}

void markContactDeleted(RecordWriter& records, const ObjectID<Contact>& id) {
    Contact contact = records.deletable(id);
    records.markDeleted(contact);
    records.update(copied(contact, id, contact.createDate, records.now()));
}

}  // namespace kestrel::host
