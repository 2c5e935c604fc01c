#include <host/contact/stored_contact.h>
#include <host/people/address_uses.h>
#include <host/store/embedded_keys.h>

#include <algorithm>
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

/// Throws RecordMissing when a saved detail is none of those that the contact had before, or is given twice.
template <class Detail>
void requireOwn(const std::vector<Detail>& details, const std::vector<Detail>& before) {
    const auto countIn = [](const std::vector<Detail>& list, const ObjectID<Detail>& id) {
        return std::ranges::count_if(list, [&](const Detail& each) { return each.objectID() == id; });
    };
    for (const Detail& detail : details) {
        const ObjectID<Detail>& id = detail.objectID();
        if (id.isPersistent() && (countIn(before, id) == 0 || countIn(details, id) > 1))
            throw RecordMissing(id.stringValue());
    }
}

std::vector<ImageAsset> picturesOf(const Contact& contact) {
    return contact.imageAsset ? std::vector{*contact.imageAsset} : std::vector<ImageAsset>();
}

void requireOwnDetails(const Contact& contact, const Contact& before) {
    requireOwn(contact.phones, before.phones);
    requireOwn(contact.electronicAddresses, before.electronicAddresses);
    requireOwn(contact.geoAddresses, before.geoAddresses);
    requireOwn(picturesOf(contact), picturesOf(before));
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

/// Links the contact with what its addresses occur in.
void noteAddresses(RecordWriter& records, const Contact& contact) {
    AddressUses addresses(records.database());
    addresses.set(contact);
    addresses.link(records.links());
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
    requireOwnDetails(stored, before.value_or(Contact{.contactID = stored.objectID()}));
    if (before && stored.permissions != before->permissions) records.requireAccessChangeable(*before);
    giveKeys(stored, records.database());
    if (!before) {
        records.insert(stored);
        records.links().add(stored.objectID(), LinkKind::owner, records.user().objectID());
        records.links().add(stored.objectID(), LinkKind::creator, records.user().objectID());
    } else if (stored != *before) {
        stored = copied(stored, before->objectID(), before->createDate, records.now());
        records.update(stored);
    }
    if (stored != before) noteAddresses(records, stored);
    return stored;
}

void markContactDeleted(RecordWriter& records, const ObjectID<Contact>& id) {
    Contact contact = records.deletable(id);
    records.markDeleted(contact);
    records.update(copied(contact, id, contact.createDate, records.now()));
    noteAddresses(records, contact);
}

}  // namespace kestrel::host
