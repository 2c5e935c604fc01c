#include <cstdlib>
#include <nlohmann/json.hpp>

#include "contact_fields.h"
#include "peers.h"

namespace peers {
namespace {

using kestrel::Contact;
using kestrel::Date;
using kestrel::ObjectID;
using Value = nlohmann::ordered_json;

void read(const Value& from, std::string& to) {
    to = from.get_ref<const std::string&>();
}
void read(const Value& from, std::int64_t& to) {
    to = from.get<std::int64_t>();
}
void read(const Value& from, bool& to) {
    to = from.get<bool>();
}
void read(const Value& from, Date& to) {
    to = Date(from.get<double>());
}
void read(const Value& from, kestrel::ContactPriority& to) {
    to = static_cast<kestrel::ContactPriority>(from.get<std::int64_t>());
}
template <class T>
void read(const Value& from, std::optional<T>& to) {
    read(from, to.emplace());
}

std::int64_t readKey(const Value& from, std::string_view recordName) {
    if (from.at("recordName").get_ref<const std::string&>() != recordName) std::abort();
    return from.at("primaryKey").get<std::int64_t>();
}

void read(const Value& from, kestrel::PermissionSet& to) {
    for (const auto& team : from.at("teamIDs"))
        to.add(readKey(team, "Team"));
}

/// A member that need not be there.
template <class T>
void readMember(const Value& from, const char* key, T& to) {
    const auto found = from.find(key);
    if (found != from.end()) read(*found, to);
}

kestrel::Category readCategory(const Value& from) {
    kestrel::Category to{.categoryID = readKey(from.at("categoryID"), "Category")};
    readMember(from, "name", to.name);
    read(from.at("order"), to.order);
    read(from.at("isActive"), to.isActive);
    return to;
}

kestrel::AnyElectronicAddress readElectronicAddress(const Value& from) {
    kestrel::AnyElectronicAddress to{.electronicAddressID =
                                         readKey(from.at("electronicAddressID"), "AnyElectronicAddress")};
    readMember(from, "address", to.address);
    to.kind = static_cast<kestrel::ElectronicAddressKind>(from.at("kind").get<std::int64_t>());
    return to;
}

kestrel::GeoAddress readGeoAddress(const Value& from) {
    kestrel::GeoAddress to{.geoAddressID = readKey(from.at("geoAddressID"), "GeoAddress")};
    readMember(from, "city", to.city);
    readMember(from, "country", to.country);
    readMember(from, "street", to.street);
    return to;
}

kestrel::Keyword readKeyword(const Value& from) {
    kestrel::Keyword to{.keywordID = readKey(from.at("keywordID"), "Keyword")};
    read(from.at("isActive"), to.isActive);
    readMember(from, "name", to.name);
    read(from.at("order"), to.order);
    return to;
}

kestrel::Phone readPhone(const Value& from) {
    kestrel::Phone to{.phoneID = readKey(from.at("phoneID"), "Phone")};
    readMember(from, "number", to.number);
    return to;
}

template <class Record>
void readList(const Value& from, std::vector<Record>& to, Record (*readOne)(const Value&)) {
    to.reserve(from.size());
    for (const auto& each : from)
        to.push_back(readOne(each));
}

Contact fill(const Value& from) {
    Contact to{.contactID = 0};
    for (const auto& [key, value] : from.items()) {
        switch (lookUp(key)) {
#define READ(name) \
    case name: read(value, writable(to.name)); break;
            CONTACT_PLAIN_FIELDS(READ)
#undef READ
            case contactID: writable(to.contactID) = readKey(value, "Contact"); break;
            case permissions:
                read(value.at("readPermissions"), to.permissions.readPermissions);
                read(value.at("writePermissions"), to.permissions.writePermissions);
                break;
            case category: to.category = readCategory(value); break;
            case electronicAddresses: readList(value, to.electronicAddresses, readElectronicAddress); break;
            case geoAddresses: readList(value, to.geoAddresses, readGeoAddress); break;
            case keywords: readList(value, to.keywords, readKeyword); break;
            case phones: readList(value, to.phones, readPhone); break;
            default: std::abort();
        }
    }
    return to;
}

Value tree(const std::string& value) {
    return value;
}
Value tree(std::int64_t value) {
    return value;
}
Value tree(bool value) {
    return value;
}
Value tree(Date value) {
    return value.sinceReferenceDate();
}
Value tree(kestrel::ContactPriority value) {
    return static_cast<std::int64_t>(value);
}
template <class T>
Value tree(const ObjectID<T>& id) {
    return {{"recordName", kestrel::recordNameOf<T>}, {"primaryKey", *id.value()}};
}
Value tree(const kestrel::PermissionSet& set) {
    Value teams = Value::array();
    for (const auto& team : set.teamIDs)
        teams.push_back(tree(team));
    return {{"teamIDs", std::move(teams)}};
}
template <class T>
void put(Value& object, const char* key, const T& value) {
    object[key] = tree(value);
}
template <class T>
void put(Value& object, const char* key, const std::optional<T>& value) {
    if (value) put(object, key, *value);
}
Value tree(const kestrel::AnyElectronicAddress& address) {
    Value object = {{"electronicAddressID", tree(address.objectID())}};
    put(object, "address", address.address);
    put(object, "kind", static_cast<std::int64_t>(address.kind));
    return object;
}
Value tree(const kestrel::GeoAddress& address) {
    Value object = {{"geoAddressID", tree(address.objectID())}};
    put(object, "city", address.city);
    put(object, "country", address.country);
    put(object, "street", address.street);
    return object;
}
Value tree(const kestrel::Keyword& keyword) {
    Value object = {{"keywordID", tree(keyword.objectID())}};
    put(object, "isActive", keyword.isActive);
    put(object, "name", keyword.name);
    put(object, "order", keyword.order);
    return object;
}
Value tree(const kestrel::Phone& phone) {
    Value object = {{"phoneID", tree(phone.objectID())}};
    put(object, "number", phone.number);
    return object;
}
Value tree(const Contact& value);
template <class T>
Value list(const std::vector<T>& values) {
    Value array = Value::array();
    for (const auto& each : values)
        array.push_back(tree(each));
    return array;
}

Value tree(const Contact& value) {
    Value object = Value::object();
    put(object, "contactID", value.objectID());
#define WRITE(name) put(object, #name, kestrel::CodingAccess::member(value.name));
    CONTACT_PLAIN_FIELDS(WRITE)
#undef WRITE
    object["permissions"] = {{"readPermissions", tree(value.permissions.readPermissions)},
                             {"writePermissions", tree(value.permissions.writePermissions)}};
    if (value.category) {
        Value category = {{"categoryID", tree(value.category->objectID())}};
        put(category, "isActive", value.category->isActive);
        put(category, "name", value.category->name);
        put(category, "order", value.category->order);
        object["category"] = std::move(category);
    }
    object["electronicAddresses"] = list(value.electronicAddresses);
    object["geoAddresses"] = list(value.geoAddresses);
    object["keywords"] = list(value.keywords);
    object["phones"] = list(value.phones);
    return object;
}

}  // namespace

std::vector<Contact> decodeArrayByNlohmann(std::string_view document) {
    std::vector<Contact> values;
    readList(Value::parse(document), values, fill);
    return values;
}

Contact decodeOneByNlohmann(std::string_view document) {
    return fill(Value::parse(document));
}

std::string encodeArrayByNlohmann(const std::vector<Contact>& values) {
    return list(values).dump();
}

std::string encodeOneByNlohmann(const Contact& value) {
    return tree(value).dump();
}

}  // namespace peers
