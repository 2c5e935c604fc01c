#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <cstdlib>
#include <unordered_map>

#include "opportunity_fields.h"
#include "peers.h"

namespace peers {
namespace {

using kestrel::Date;
using kestrel::ObjectID;
using kestrel::Opportunity;
using Value = rapidjson::Value;

void read(const Value& from, std::string& to) {
    to.assign(from.GetString(), from.GetStringLength());
}
void read(const Value& from, std::int64_t& to) {
    to = from.GetInt64();
}
void read(const Value& from, double& to) {
    to = from.GetDouble();
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

enum Member : unsigned {
#define LIST(member) member,
    OPPORTUNITY_PLAIN_FIELDS(LIST)
#undef LIST
        permissions,
    category,
    opportunityID,
    memberCount
};

unsigned lookUp(std::string_view key) {
    static const auto table = [] {
        std::unordered_map<std::string_view, unsigned> map;
#define LIST(member) map.emplace(#member, member);
        OPPORTUNITY_PLAIN_FIELDS(LIST)
#undef LIST
        map.emplace("permissions", permissions);
        map.emplace("category", category);
        map.emplace("opportunityID", opportunityID);
        return map;
    }();
    const auto found = table.find(key);
    return found == table.end() ? static_cast<unsigned>(memberCount) : found->second;
}

Opportunity fill(const Value& from) {
    Opportunity to{.opportunityID = readKey(from["opportunityID"], "Opportunity")};
    for (const auto& [key, value] : from.GetObject()) {
        switch (lookUp({key.GetString(), key.GetStringLength()})) {
#define READ(name) \
    case name: read(value, to.name); break;
            OPPORTUNITY_PLAIN_FIELDS(READ)
#undef READ
            case opportunityID: break;
            case permissions:
                read(value["readPermissions"], to.permissions.readPermissions);
                read(value["writePermissions"], to.permissions.writePermissions);
                break;
            case category: to.category = readCategory(value); break;
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
void put(Writer& writer, double value) {
    writer.Double(value);
}
void put(Writer& writer, bool value) {
    writer.Bool(value);
}
void put(Writer& writer, Date value) {
    writer.Double(value.sinceReferenceDate());
}
template <class T>
void put(Writer& writer, const ObjectID<T>& id) {
    writer.StartObject();
    writer.Key("recordName");
    put(writer, std::string(kestrel::recordNameOf<T>));
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

template <class T>
void member(Writer& writer, const char* key, const T& value) {
    writer.Key(key);
    put(writer, value);
}
template <class T>
void member(Writer& writer, const char* key, const std::optional<T>& value) {
    if (value) member(writer, key, *value);
}
void write(Writer& writer, const Opportunity& value) {
    writer.StartObject();
    member(writer, "opportunityID", value.objectID());
#define WRITE(name) member(writer, #name, value.name);
    OPPORTUNITY_PLAIN_FIELDS(WRITE)
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
    writer.EndObject();
}

}  // namespace

std::vector<Opportunity> decodeArrayByRapidJSON(std::string_view document) {
    rapidjson::Document tree;
    tree.Parse(document.data(), document.size());
    if (tree.HasParseError()) std::abort();
    std::vector<Opportunity> values;
    values.reserve(tree.Size());
    for (const auto& value : tree.GetArray())
        values.push_back(fill(value));
    return values;
}

Opportunity decodeOneByRapidJSON(std::string_view document) {
    rapidjson::Document tree;
    tree.Parse(document.data(), document.size());
    if (tree.HasParseError()) std::abort();
    return fill(tree);
}

std::string encodeArrayByRapidJSON(const std::vector<Opportunity>& values) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartArray();
    for (const auto& value : values)
        write(writer, value);
    writer.EndArray();
    return {buffer.GetString(), buffer.GetSize()};
}

std::string encodeOneByRapidJSON(const Opportunity& value) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    write(writer, value);
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace peers
