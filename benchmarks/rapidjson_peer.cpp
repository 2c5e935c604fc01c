#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <cstdlib>

#include "contact_fields.h"
#include "peers.h"

namespace peers {
namespace {

using kestrel::Contact;
using kestrel::Date;
using kestrel::ObjectID;
using Value = rapidjson::Value;

void read(const Value& from, std::string& to) {
    to.assign(from.GetString(), from.GetStringLength());
}
void read(const Value& from, std::int64_t& to) {
    to = from.GetInt64();
}
void read(const Value& from, bool& to) {
    to = from.GetBool();
}
void read(const Value& from, Date& to) {
    to = Date(from.GetDouble());
}
template <class T>
void read(const Value& from, std::optional<T>& to) {
    if (from.IsNull()) {
        to.reset();
    } else {
        read(from, to.emplace());
    }
}

std::int64_t readKey(const Value& from, std::string_view recordName) {
    if (std::string_view(from["recordName"].GetString()) != recordName) std::abort();
    return from["primaryKey"].GetInt64();
}

void read(const Value& from, kestrel::PermissionSet& to) {
    for (const auto& team : from["teamIDs"].GetArray())
        to.add(readKey(team, "Team"));
}

kestrel::Category readCategory(const Value& from) {
    kestrel::Category to{.categoryID = readKey(from["categoryID"], "Category")};
    if (from.HasMember("name")) read(from["name"], to.name);
    read(from["order"], to.order);
    read(from["isActive"], to.isActive);
    return to;
}

void read(const Value& from, kestrel::ContactPriority& to) {
    to = static_cast<kestrel::ContactPriority>(from.GetInt64());
}

/// A member that need not be there.
template <class T>
void readMember(const Value& from, const char* key, T& to) {
    const auto found = from.FindMember(key);
    if (found != from.MemberEnd()) read(found->value, to);
}

kestrel::AnyElectronicAddress readElectronicAddress(const Value& from) {
    kestrel::AnyElectronicAddress to{.electronicAddressID =
                                         readKey(from["electronicAddressID"], "AnyElectronicAddress")};
    readMember(from, "address", to.address);
    to.kind = static_cast<kestrel::ElectronicAddressKind>(from["kind"].GetInt64());
    return to;
}

kestrel::GeoAddress readGeoAddress(const Value& from) {
    kestrel::GeoAddress to{.geoAddressID = readKey(from["geoAddressID"], "GeoAddress")};
    readMember(from, "city", to.city);
    readMember(from, "country", to.country);
    readMember(from, "street", to.street);
    return to;
}

kestrel::Keyword readKeyword(const Value& from) {
    kestrel::Keyword to{.keywordID = readKey(from["keywordID"], "Keyword")};
    read(from["isActive"], to.isActive);
    readMember(from, "name", to.name);
    read(from["order"], to.order);
    return to;
}

kestrel::Phone readPhone(const Value& from) {
    kestrel::Phone to{.phoneID = readKey(from["phoneID"], "Phone")};
    readMember(from, "number", to.number);
    return to;
}

template <class Record>
void readList(const Value& from, std::vector<Record>& to, Record (*readOne)(const Value&)) {
    to.reserve(from.Size());
    for (const auto& each : from.GetArray())
        to.push_back(readOne(each));
}

Contact fill(const Value& from) {
    Contact to{.contactID = 0};
    for (const auto& [key, value] : from.GetObject()) {
        switch (lookUp({key.GetString(), key.GetStringLength()})) {
#define READ(name) \
    case name: read(value, writable(to.name)); break;
            CONTACT_PLAIN_FIELDS(READ)
#undef READ
            case contactID: writable(to.contactID) = readKey(value, "Contact"); break;
            case permissions:
                read(value["readPermissions"], to.permissions.readPermissions);
                read(value["writePermissions"], to.permissions.writePermissions);
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

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void put(Writer& writer, const std::string& value) {
    writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}
void put(Writer& writer, std::int64_t value) {
    writer.Int64(value);
}
void put(Writer& writer, bool value) {
    writer.Bool(value);
}
void put(Writer& writer, kestrel::ContactPriority value) {
    writer.Int64(static_cast<std::int64_t>(value));
}
void put(Writer& writer, Date value) {
    writer.Double(value.sinceReferenceDate());
}
template <class T>
void put(Writer& writer, const ObjectID<T>& id) {
    writer.StartObject();
    writer.Key("recordName");
    writer.String(kestrel::recordNameOf<T>.data(), static_cast<rapidjson::SizeType>(kestrel::recordNameOf<T>.size()));
    writer.Key("primaryKey");
    writer.Int64(*id.value());
    writer.EndObject();
}
void put(Writer& writer, const kestrel::PermissionSet& set) {
    writer.StartObject();
    writer.Key("teamIDs");
    writer.StartArray();
    for (const auto& team : set.teamIDs)
        put(writer, team);
    writer.EndArray();
    writer.EndObject();
}

void put(Writer& writer, const kestrel::AnyElectronicAddress& address);
void put(Writer& writer, const kestrel::GeoAddress& address);
void put(Writer& writer, const kestrel::Keyword& keyword);
void put(Writer& writer, const kestrel::Phone& phone);
template <class T>
void put(Writer& writer, const std::vector<T>& values) {
    writer.StartArray();
    for (const auto& each : values)
        put(writer, each);
    writer.EndArray();
}
template <class T>
void member(Writer& writer, const char* key, const T& value) {
    writer.Key(key);
    put(writer, value);
}
template <class T>
void member(Writer& writer, const char* key, const std::optional<T>& value) {
    if (value) member(writer, key, *value);
}
void put(Writer& writer, const kestrel::AnyElectronicAddress& address) {
    writer.StartObject();
    member(writer, "electronicAddressID", address.objectID());
    member(writer, "address", address.address);
    member(writer, "kind", static_cast<std::int64_t>(address.kind));
    writer.EndObject();
}
void put(Writer& writer, const kestrel::GeoAddress& address) {
    writer.StartObject();
    member(writer, "geoAddressID", address.objectID());
    member(writer, "city", address.city);
    member(writer, "country", address.country);
    member(writer, "street", address.street);
    writer.EndObject();
}
void put(Writer& writer, const kestrel::Keyword& keyword) {
    writer.StartObject();
    member(writer, "keywordID", keyword.objectID());
    member(writer, "isActive", keyword.isActive);
    member(writer, "name", keyword.name);
    member(writer, "order", keyword.order);
    writer.EndObject();
}
void put(Writer& writer, const kestrel::Phone& phone) {
    writer.StartObject();
    member(writer, "phoneID", phone.objectID());
    member(writer, "number", phone.number);
    writer.EndObject();
}
void write(Writer& writer, const Contact& value) {
    writer.StartObject();
    member(writer, "contactID", value.objectID());
#define WRITE(name) member(writer, #name, kestrel::CodingAccess::member(value.name));
    CONTACT_PLAIN_FIELDS(WRITE)
#undef WRITE
    writer.Key("permissions");
    writer.StartObject();
    member(writer, "readPermissions", value.permissions.readPermissions);
    member(writer, "writePermissions", value.permissions.writePermissions);
    writer.EndObject();
    if (value.category) {
        writer.Key("category");
        writer.StartObject();
        member(writer, "categoryID", value.category->objectID());
        member(writer, "isActive", value.category->isActive);
        member(writer, "name", value.category->name);
        member(writer, "order", value.category->order);
        writer.EndObject();
    }
    member(writer, "electronicAddresses", value.electronicAddresses);
    member(writer, "geoAddresses", value.geoAddresses);
    member(writer, "keywords", value.keywords);
    member(writer, "phones", value.phones);
    writer.EndObject();
}

}  // namespace

std::vector<Contact> decodeArrayByRapidJSON(std::string_view document) {
    rapidjson::Document tree;
    tree.Parse(document.data(), document.size());
    if (tree.HasParseError()) std::abort();
    std::vector<Contact> values;
    values.reserve(tree.Size());
    for (const auto& value : tree.GetArray())
        values.push_back(fill(value));
    return values;
}

Contact decodeOneByRapidJSON(std::string_view document) {
    rapidjson::Document tree;
    tree.Parse(document.data(), document.size());
    if (tree.HasParseError()) std::abort();
    return fill(tree);
}

std::string encodeArrayByRapidJSON(const std::vector<Contact>& values) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartArray();
    for (const auto& value : values)
        write(writer, value);
    writer.EndArray();
    return {buffer.GetString(), buffer.GetSize()};
}

std::string encodeOneByRapidJSON(const Contact& value) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    write(writer, value);
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace peers
