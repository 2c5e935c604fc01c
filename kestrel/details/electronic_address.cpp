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
std::optional<View> viewOf(const AnyElectronicAddress& entry) {
    if (entry.kind != View::kind) return std::nullopt;
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

std::optional<EmailAddress> AnyElectronicAddress::email() const {
    return viewOf<EmailAddress>(*this);
}

std::optional<URLAddress> AnyElectronicAddress::url() const {
    return viewOf<URLAddress>(*this);
}

std::optional<SocialProfile> AnyElectronicAddress::socialProfile() const {
    return viewOf<SocialProfile>(*this);
}

}  // namespace kestrel
