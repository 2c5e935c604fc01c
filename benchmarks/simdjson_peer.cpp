#include <simdjson.h>
#include <cstdlib>

#include "contact_fields.h"
#include "peers.h"

namespace peers {
namespace {

using kestrel::Contact;
using kestrel::Date;
using kestrel::ObjectID;
using simdjson::dom::element;

void read(element from, std::string& to) {
    to = from.get_string().value();
}
void read(element from, std::int64_t& to) {
    to = from.get_int64().value();
}
void read(element from, bool& to) {
    to = from.get_bool().value();
}
void read(element from, Date& to) {
    to = Date(from.get_double().value());
}
template <class T>
void read(element from, std::optional<T>& to) {
    if (from.is_null()) {
        to.reset();
    } else {
        read(from, to.emplace());
    }
}

std::int64_t readKey(element from, std::string_view recordName) {
    if (std::string_view(from["recordName"]) != recordName) std::abort();
    return from["primaryKey"].get_int64().value();
}

void read(element from, kestrel::PermissionSet& to) {
    for (auto team : from["teamIDs"].get_array())
        to.add(readKey(team, "Team"));
}

void read(element from, kestrel::Permissions& to) {
    read(from["readPermissions"].value(), to.readPermissions);
    read(from["writePermissions"].value(), to.writePermissions);
}

kestrel::Category readCategory(element from) {
    kestrel::Category to{.categoryID = readKey(from["categoryID"].value(), "Category")};
    for (auto [key, value] : from.get_object()) {
        if (key == "name") read(value, to.name);
        if (key == "order") read(value, to.order);
        if (key == "isActive") read(value, to.isActive);
    }
    return to;
}

void read(element from, kestrel::ContactPriority& to) {
    to = static_cast<kestrel::ContactPriority>(from.get_int64().value());
}

kestrel::AnyElectronicAddress readElectronicAddress(element from) {
    kestrel::AnyElectronicAddress to{.electronicAddressID = 0};
    for (auto [key, value] : from.get_object()) {
        if (key == "electronicAddressID") writable(to.electronicAddressID) = readKey(value, "AnyElectronicAddress");
        if (key == "address") read(value, to.address);
        if (key == "kind") to.kind = static_cast<kestrel::ElectronicAddressKind>(value.get_int64().value());
    }
    return to;
}

kestrel::GeoAddress readGeoAddress(element from) {
    kestrel::GeoAddress to{.geoAddressID = 0};
    for (auto [key, value] : from.get_object()) {
        if (key == "geoAddressID") writable(to.geoAddressID) = readKey(value, "GeoAddress");
        if (key == "city") read(value, to.city);
        if (key == "country") read(value, to.country);
        if (key == "street") read(value, to.street);
    }
    return to;
}

kestrel::Keyword readKeyword(element from) {
    kestrel::Keyword to{.keywordID = 0};
    for (auto [key, value] : from.get_object()) {
        if (key == "keywordID") writable(to.keywordID) = readKey(value, "Keyword");
        if (key == "isActive") read(value, to.isActive);
        if (key == "name") read(value, to.name);
        if (key == "order") read(value, to.order);
    }
    return to;
}

kestrel::Phone readPhone(element from) {
    kestrel::Phone to{.phoneID = 0};
    for (auto [key, value] : from.get_object()) {
        if (key == "phoneID") writable(to.phoneID) = readKey(value, "Phone");
        if (key == "number") read(value, to.number);
    }
    return to;
}

template <class Record>
void readList(element from, std::vector<Record>& to, Record (*readOne)(element)) {
    for (auto each : from.get_array())
        to.push_back(readOne(each));
}

Contact fill(element from) {
    Contact to{.contactID = 0};
    unsigned expected = 0;
    for (auto [key, value] : from.get_object()) {
        unsigned member = memberCount;
        for (unsigned next = expected; next < memberCount && next < expected + 3; ++next) {
            if (key == memberNames[next]) member = next;
        }
        if (member == memberCount) member = lookUp(key);
        switch (member) {
#define READ(name) \
    case name: read(value, writable(to.name)); break;
            CONTACT_PLAIN_FIELDS(READ)
#undef READ
            case contactID: writable(to.contactID) = readKey(value, "Contact"); break;
            case permissions: read(value, to.permissions); break;
            case category: to.category = readCategory(value); break;
            case electronicAddresses: readList(value, to.electronicAddresses, readElectronicAddress); break;
            case geoAddresses: readList(value, to.geoAddresses, readGeoAddress); break;
            case keywords: readList(value, to.keywords, readKeyword); break;
            case phones: readList(value, to.phones, readPhone); break;
            default: std::abort();
        }
        expected = member == contactID ? 0 : member + 1;
    }
    return to;
}

}  // namespace

std::vector<Contact> decodeArrayBySimdjson(std::string_view document) {
    static simdjson::dom::parser parser;
    std::vector<Contact> values;
    auto elements = parser.parse(document.data(), document.size()).get_array().value();
    values.reserve(elements.size());
    for (auto value : elements)
        values.push_back(fill(value));
    return values;
}

Contact decodeOneBySimdjson(std::string_view document) {
    static simdjson::dom::parser parser;
    return fill(parser.parse(document.data(), document.size()).value());
}

}  // namespace peers
