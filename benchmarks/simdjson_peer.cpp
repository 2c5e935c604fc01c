#include <simdjson.h>
#include <cstdio>
#include <cstdlib>
#include <unordered_map>

#include "opportunity_fields.h"
#include "peers.h"

namespace peers {
namespace {

using kestrel::Date;
using kestrel::ObjectID;
using kestrel::Opportunity;
using simdjson::dom::element;

void read(element from, std::string& to) {
    to = from.get_string().value();
}
void read(element from, std::int64_t& to) {
    to = from.get_int64().value();
}
void read(element from, double& to) {
    to = from.get_double().value();
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

enum Member : unsigned {
#define LIST(member) member,
    OPPORTUNITY_PLAIN_FIELDS(LIST)
#undef LIST
        opportunityID,
    permissions,
    category,
    memberCount
};

constexpr std::string_view names[] = {
#define LIST(member) #member,
    OPPORTUNITY_PLAIN_FIELDS(LIST)
#undef LIST
        "opportunityID",
    "permissions", "category"};

unsigned lookUp(std::string_view key) {
    static const auto table = [] {
        std::unordered_map<std::string_view, unsigned> map;
        for (unsigned i = 0; i < memberCount; ++i)
            map.emplace(names[i], i);
        return map;
    }();
    const auto found = table.find(key);
    return found == table.end() ? static_cast<unsigned>(memberCount) : found->second;
}

Opportunity fill(element from) {
    Opportunity to{.opportunityID = ObjectID<Opportunity>(0)};
    unsigned expected = 0;
    for (auto [key, value] : from.get_object()) {
        unsigned member = memberCount;
        for (unsigned next = expected; next < memberCount && next < expected + 3; ++next) {
            if (key == names[next]) member = next;
        }
        if (member == memberCount) member = lookUp(key);
        switch (member) {
#define READ(name) \
    case name: read(value, to.name); break;
            OPPORTUNITY_PLAIN_FIELDS(READ)
#undef READ
            case opportunityID: {
                // The identifier is fixed in a record: the record is made anew, still empty, as it is the first member.
                Opportunity identified{.opportunityID = readKey(value, "Opportunity")};
                if (expected != 0) {
#define MOVE(name) identified.name = std::move(to.name);
                    OPPORTUNITY_PLAIN_FIELDS(MOVE)
#undef MOVE
                    identified.permissions = std::move(to.permissions);
                    identified.category = std::move(to.category);
                }
                to = std::move(identified);
                break;
            }
            case permissions: read(value, to.permissions); break;
            case category: to.category = readCategory(value); break;
            default: std::abort();
        }
        expected = member == opportunityID ? 0 : member + 1;
    }
    return to;
}

}  // namespace

std::vector<Opportunity> decodeArrayBySimdjson(std::string_view document) {
    static simdjson::dom::parser parser;
    std::vector<Opportunity> values;
    auto elements = parser.parse(document.data(), document.size()).get_array().value();
    values.reserve(elements.size());
    for (auto value : elements)
        values.push_back(fill(value));
    return values;
}

Opportunity decodeOneBySimdjson(std::string_view document) {
    static simdjson::dom::parser parser;
    return fill(parser.parse(document.data(), document.size()).value());
}

}  // namespace peers
