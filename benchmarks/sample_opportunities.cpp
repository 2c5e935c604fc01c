#include <simdjson.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "opportunity_fields.h"
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
    void fill(double& value) {
        value = coin() ? static_cast<double>(upTo(1'000'000)) : static_cast<double>(upTo(100'000'000)) / 100;
    }
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

std::vector<kestrel::Opportunity> sampleOpportunities(std::size_t count) {
    std::vector<kestrel::Opportunity> values;
    values.reserve(count);
    Chance chance(20'010'101);
    for (std::size_t i = 0; i < count; ++i) {
        kestrel::Opportunity value{.opportunityID = static_cast<std::int64_t>(i) + 1};
#define FILL(member) chance.fill(value.member);
        OPPORTUNITY_PLAIN_FIELDS(FILL)
#undef FILL
        for (auto team = chance.upTo(4); team > 0; --team) {
            value.permissions.giveReadAccess(chance.upTo(40) + 1);
            value.permissions.giveWriteAccess(chance.upTo(40) + 1);
        }
        if (chance.coin()) {
            value.category = kestrel::Category{.categoryID = chance.upTo(9) + 1, .name = "Key account", .order = 3};
        }
        values.push_back(std::move(value));
    }
    return values;
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
