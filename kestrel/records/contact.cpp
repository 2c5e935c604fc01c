#include <kestrel/coding/wire_form.h>
#include <kestrel/records/contact.h>
#include <algorithm>
#include <utility>

namespace kestrel {

KESTREL_FIELDS(Contact, contactID, alias, anniversaryDay, anniversaryMonth, anniversaryYear, birthDay, birthMonth,
               birthYear, createDate, creditation, deletionDate, deletionIdentifier, deletionUserID, details, extra1,
               extra10, extra11, extra12, extra2, extra3, extra4, extra5, extra6, extra7, extra8, extra9, extraDate1,
               extraDate2, extraDate3, extraDate4, firstName, hobbies, imageAsset, individualSalutation, isFlagged,
               lastName, middleName, modifyDate, nickname, prefix, priority, relationshipToMe, suffix, tagline,
               permissions, category, electronicAddresses, geoAddresses, keywords, phones);

namespace {

std::optional<PartialDate> partialDate(std::int64_t year, std::int64_t month, std::int64_t day) {
    if (day == 0 || month == 0) return std::nullopt;
    return PartialDate::make(year == 0 ? std::nullopt : std::optional(year), month, day);
}

template <class View>
std::vector<View> viewsOf(const std::vector<AnyElectronicAddress>& entries,
                          std::optional<View> (AnyElectronicAddress::*view)() const) {
    std::vector<View> views;
    for (const AnyElectronicAddress& entry : entries) {
        if (auto found = (entry.*view)()) views.push_back(*std::move(found));
    }
    return views;
}

template <class View>
void replaceKind(std::vector<AnyElectronicAddress>& entries, ElectronicAddressKind kind, std::span<const View> views) {
    const auto places = std::ranges::count(entries, kind, &AnyElectronicAddress::kind);
    std::vector<AnyElectronicAddress> merged;
    merged.reserve(entries.size() + views.size());
    std::size_t next = 0;
    const auto addUpTo = [&](std::size_t end) {
        for (; next < std::min(end, views.size()); ++next)
            merged.push_back(AnyElectronicAddress::from(views[next]));
    };
    std::ptrdiff_t place = 0;
    for (AnyElectronicAddress& entry : entries) {
        if (entry.kind != kind) {
            merged.push_back(std::move(entry));
        } else {
            ++place;
            addUpTo(place == places ? views.size() : next + 1);
        }
    }
    addUpTo(views.size());
    entries = std::move(merged);
}

template <class Value>
std::optional<Value> firstOf(const std::vector<Value>& values) {
    if (values.empty()) return std::nullopt;
    return values.front();
}

template <class Value>
void putFirst(std::vector<Value>& values, const std::optional<Value>& value) {
    if (!value) return;
    const auto old = std::ranges::find(values, value->objectID(), [](const Value& each) { return each.objectID(); });
    if (old != values.end()) values.erase(old);
    values.insert(values.begin(), *value);
}

}  // namespace

Name Contact::name() const {
    return {.prefix = prefix,
            .first = firstName,
            .middle = middleName,
            .last = lastName,
            .suffix = suffix,
            .nickname = nickname,
            .alias = alias};
}

void Contact::setName(const Name& name) {
    prefix = name.prefix;
    firstName = name.first;
    middleName = name.middle;
    lastName = name.last;
    suffix = name.suffix;
    nickname = name.nickname;
    alias = name.alias;
}

std::optional<PartialDate> Contact::birthDate() const {
    return partialDate(birthYear, birthMonth, birthDay);
}

void Contact::setBirthDate(const std::optional<PartialDate>& date) {
    birthDay = date ? date->day : 0;
    birthMonth = date ? date->month : 0;
    birthYear = date ? date->year.value_or(0) : 0;
}

std::optional<PartialDate> Contact::anniversaryDate() const {
    return partialDate(anniversaryYear, anniversaryMonth, anniversaryDay);
}

void Contact::setAnniversaryDate(const std::optional<PartialDate>& date) {
    anniversaryDay = date ? date->day : 0;
    anniversaryMonth = date ? date->month : 0;
    anniversaryYear = date ? date->year.value_or(0) : 0;
}

std::vector<EmailAddress> Contact::emailAddresses() const {
    return viewsOf(electronicAddresses, &AnyElectronicAddress::email);
}

void Contact::setEmailAddresses(std::span<const EmailAddress> addresses) {
    replaceKind(electronicAddresses, ElectronicAddressKind::email, addresses);
}

std::vector<URLAddress> Contact::urlAddresses() const {
    return viewsOf(electronicAddresses, &AnyElectronicAddress::url);
}

void Contact::setURLAddresses(std::span<const URLAddress> addresses) {
    replaceKind(electronicAddresses, ElectronicAddressKind::url, addresses);
}

std::vector<SocialProfile> Contact::socialProfiles() const {
    return viewsOf(electronicAddresses, &AnyElectronicAddress::socialProfile);
}

void Contact::setSocialProfiles(std::span<const SocialProfile> profiles) {
    replaceKind(electronicAddresses, ElectronicAddressKind::socialProfile, profiles);
}

std::optional<Phone> Contact::defaultPhone() const {
    return firstOf(phones);
}

void Contact::setDefaultPhone(const std::optional<Phone>& phone) {
    putFirst(phones, phone);
}

std::optional<EmailAddress> Contact::defaultEmailAddress() const {
    for (const AnyElectronicAddress& entry : electronicAddresses) {
        if (auto address = entry.email()) return address;
    }
    return std::nullopt;
}

void Contact::setDefaultEmailAddress(const std::optional<EmailAddress>& address) {
    if (!address) return;
    std::vector<EmailAddress> addresses = emailAddresses();
    putFirst(addresses, address);
    setEmailAddresses(addresses);
}

std::optional<GeoAddress> Contact::defaultGeoAddress() const {
    return firstOf(geoAddresses);
}

void Contact::setDefaultGeoAddress(const std::optional<GeoAddress>& address) {
    putFirst(geoAddresses, address);
}

}  // namespace kestrel
