#include <simdjson.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <unordered_map>

#include "contact_fields.h"
#include "peers.h"

namespace peers {
namespace {

using kestrel::Date;

class Chance {
  public:
    explicit Chance(unsigned seed) : engine_(seed) {}
    [[nodiscard]] std::int64_t upTo(std::int64_t limit) {
        return static_cast<std::int64_t>(engine_() % static_cast<std::uint64_t>(limit));
    }
    [[nodiscard]] bool coin() { return (engine_() & 1U) != 0; }
    std::mt19937_64& engine() { return engine_; }

    void fill(std::string& value) {
        // Mostly plain ASCII, as in the databases of most customers; one word in twenty is not, one needs an escape.
        static constexpr std::array words{"Prospecting",
                                          "renewal",
                                          "Zürich",
                                          "license for 40 seats",
                                          "call back in May",
                                          "GTX Pro",
                                          "\"urgent\"",
                                          "follow up",
                                          "quote sent",
                                          "evaluation",
                                          "Q3",
                                          "on-site",
                                          "training",
                                          "contract",
                                          "North",
                                          "budget",
                                          "approved",
                                          "tender",
                                          "demo on Tuesday",
                                          "reference"};
        value.clear();
        for (auto i = upTo(6) + 1; i > 0; --i) {
            if (!value.empty()) value += ' ';
            value += words[static_cast<std::size_t>(upTo(words.size()))];
        }
    }
    void fill(std::int64_t& value) { value = coin() ? upTo(100) : upTo(10'000'000); }
    void fill(bool& value) { value = coin(); }
    void fill(kestrel::ContactPriority& value) { value = static_cast<kestrel::ContactPriority>(upTo(11)); }
    void fill(Date& value) {
        value = Date(static_cast<double>(upTo(800'000'000)) + static_cast<double>(upTo(1000)) / 1000);
    }
    template <class T>
    void fill(std::optional<T>& value) {
        if (coin()) fill(value.emplace());
    }

  private:
    std::mt19937_64 engine_;
};

}  // namespace

std::vector<kestrel::Contact> sampleContacts(std::size_t count) {
    std::vector<kestrel::Contact> values;
    values.reserve(count);
    Chance chance(20'010'101);
    for (std::size_t i = 0; i < count; ++i) {
        kestrel::Contact value{.contactID = static_cast<std::int64_t>(i) + 1};
#define FILL(member) chance.fill(writable(value.member));
        CONTACT_PLAIN_FIELDS(FILL)
#undef FILL
        for (auto team = chance.upTo(3); team > 0; --team) {
            value.permissions.giveReadAccess(chance.upTo(40) + 1);
            value.permissions.giveWriteAccess(chance.upTo(40) + 1);
        }
        if (chance.coin()) {
            value.category = kestrel::Category{.categoryID = chance.upTo(9) + 1, .name = "Key account", .order = 3};
        }
        for (auto left = chance.upTo(4); left > 0; --left) {
            kestrel::AnyElectronicAddress address{.electronicAddressID = chance.upTo(100'000)};
            address.address = "person" + std::to_string(chance.upTo(100'000)) + "@example.org";
            address.kind = chance.coin() ? kestrel::ElectronicAddressKind::email : kestrel::ElectronicAddressKind::url;
            value.electronicAddresses.push_back(std::move(address));
        }
        for (auto left = chance.upTo(3); left > 0; --left) {
            kestrel::GeoAddress address{.geoAddressID = chance.upTo(100'000)};
            chance.fill(address.city);
            chance.fill(address.street);
            address.country = "Schweiz";
            value.geoAddresses.push_back(std::move(address));
        }
        for (auto left = chance.upTo(3); left > 0; --left)
            value.keywords.push_back({.keywordID = chance.upTo(100), .name = "newsletter", .order = 7});
        for (auto left = chance.upTo(4); left > 0; --left)
            value.phones.push_back({.phoneID = chance.upTo(100'000), .number = "+41 44 668 18 00"});
        values.push_back(std::move(value));
    }
    return values;
}

unsigned lookUp(std::string_view name) {
    static const auto table = [] {
        std::unordered_map<std::string_view, unsigned> map;
        for (unsigned i = 0; i < memberCount; ++i)
            map.emplace(memberNames[i], i);
        return map;
    }();
    const auto found = table.find(name);
    return found == table.end() ? static_cast<unsigned>(memberCount) : found->second;
}

namespace {

void writeShuffled(simdjson::dom::element element, std::string& out, std::mt19937& engine) {
    if (element.is_object()) {
        std::vector<simdjson::dom::key_value_pair> members;
        for (auto member : element.get_object())
            members.push_back(member);
        std::ranges::shuffle(members, engine);
        out += '{';
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (i != 0) out += ',';
            out += '"';
            out += members[i].key;
            out += "\":";
            writeShuffled(members[i].value, out, engine);
        }
        out += '}';
    } else if (element.is_array()) {
        out += '[';
        bool first = true;
        for (auto child : element.get_array()) {
            if (!first) out += ',';
            first = false;
            writeShuffled(child, out, engine);
        }
        out += ']';
    } else {
        out += simdjson::minify(element);
    }
}

}  // namespace

std::string shuffleMembers(const std::string& document, unsigned seed) {
    simdjson::dom::parser parser;
    std::mt19937 engine(seed);
    std::string out;
    writeShuffled(parser.parse(document).value(), out, engine);
    return out;
}

}  // namespace peers
