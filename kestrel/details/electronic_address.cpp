#include <kestrel/coding/wire_form.h>
#include <kestrel/details/electronic_address.h>

namespace kestrel {

KESTREL_FIELDS(EmailAddress, electronicAddressID, address, createDate, deletionDate, deletionIdentifier, deletionUserID,
               label, modifyDate, serviceName);

KESTREL_FIELDS(URLAddress, electronicAddressID, address, createDate, deletionDate, deletionIdentifier, deletionUserID,
               label, modifyDate, serviceName);

KESTREL_FIELDS(SocialProfile, electronicAddressID, address, createDate, deletionDate, deletionIdentifier,
               deletionUserID, label, modifyDate, serviceName);

KESTREL_FIELDS(AnyElectronicAddress, electronicAddressID, address, createDate, deletionDate, deletionIdentifier,
               deletionUserID, kind, label, modifyDate, serviceName);

namespace {

template <class View>
AnyElectronicAddress entryOf(const View& view, ElectronicAddressKind kind) {
    return {.electronicAddressID = view.objectID(),
            .address = view.address,
            .createDate = view.createDate,
            .deletionDate = view.deletionDate,
            .deletionIdentifier = view.deletionIdentifier,
            .deletionUserID = view.deletionUserID,
            .kind = kind,
            .label = view.label,
            .modifyDate = view.modifyDate,
            .serviceName = view.serviceName};
}

template <class View>
std::optional<View> viewOf(const AnyElectronicAddress& entry, ElectronicAddressKind kind) {
    if (entry.kind != kind) return std::nullopt;
    return View{.electronicAddressID = entry.objectID(),
                .address = entry.address,
                .createDate = entry.createDate,
                .deletionDate = entry.deletionDate,
                .deletionIdentifier = entry.deletionIdentifier,
                .deletionUserID = entry.deletionUserID,
                .label = entry.label,
                .modifyDate = entry.modifyDate,
                .serviceName = entry.serviceName};
}

}  // namespace

AnyElectronicAddress AnyElectronicAddress::from(const EmailAddress& address) {
    return entryOf(address, Kind::email);
}

AnyElectronicAddress AnyElectronicAddress::from(const URLAddress& address) {
    return entryOf(address, Kind::url);
}

AnyElectronicAddress AnyElectronicAddress::from(const SocialProfile& profile) {
    return entryOf(profile, Kind::socialProfile);
}

std::optional<EmailAddress> AnyElectronicAddress::email() const {
    return viewOf<EmailAddress>(*this, Kind::email);
}

std::optional<URLAddress> AnyElectronicAddress::url() const {
    return viewOf<URLAddress>(*this, Kind::url);
}

std::optional<SocialProfile> AnyElectronicAddress::socialProfile() const {
    return viewOf<SocialProfile>(*this, Kind::socialProfile);
}

}  // namespace kestrel
