// The small things that are done often: whether two sets of teams overlap, sets of identifiers, new identifiers and
// their order.

#include <benchmark/benchmark.h>
#include <kestrel/access/permissions.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/record_types.h>

#include <algorithm>
#include <array>
#include <boost/unordered/unordered_flat_set.hpp>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "work.h"

namespace {

using namespace kestrel;

void require(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "The contenders disagree: %s\n", what.c_str());
    std::exit(1);
}

/// Sets of teams in pairs: those of a user and those that may see a record.
struct TeamPairs {
    /// `size` teams each, of `all`. When they are kept apart, a pair shares either one team or none.
    TeamPairs(std::size_t size, std::int64_t all, bool areApart) {
        std::mt19937_64 engine(size);
        const auto draw = [&](std::int64_t step, std::int64_t start) {
            return start + step * static_cast<std::int64_t>(engine() % static_cast<std::uint64_t>(all / step));
        };
        for (int i = 0; i < 512; ++i) {
            TeamIDs a;
            TeamIDs b;
            while (a.size() < size)
                a.insert(areApart ? draw(2, 0) : draw(1, 1));
            while (b.size() < size)
                b.insert(areApart ? draw(2, 1) : draw(1, 1));
            if (areApart && i % 2 == 0) {
                b.erase(b.begin() + static_cast<std::ptrdiff_t>(engine() % size));
                b.insert(*(a.begin() + static_cast<std::ptrdiff_t>(engine() % size)));
            }
            hashed.emplace_back(std::unordered_set<ObjectID<Team>>(a.begin(), a.end()),
                                std::unordered_set<ObjectID<Team>>(b.begin(), b.end()));
            sorted.emplace_back(PermissionSet(std::move(a)), std::move(b));
        }
    }
    [[nodiscard]] std::size_t overlaps() const {
        std::size_t count = 0;
        for (const auto& [set, teams] : sorted)
            count += set.isAuthorized(teams) ? 1U : 0U;
        return count;
    }
    [[nodiscard]] std::size_t hashedOverlaps() const {
        std::size_t count = 0;
        for (const auto& [set, teams] : hashed) {
            for (const auto& team : set) {
                if (!teams.contains(team)) continue;
                ++count;
                break;
            }
        }
        return count;
    }
    std::vector<std::pair<PermissionSet, TeamIDs>> sorted{};
    std::vector<std::pair<std::unordered_set<ObjectID<Team>>, std::unordered_set<ObjectID<Team>>>> hashed{};
};

void addOverlap(std::size_t size, bool areApart) {
    constexpr std::int64_t teamsOfACompany = 40;
    constexpr std::int64_t teamsOfMany = 2'000;
    const auto pairs = std::make_shared<const TeamPairs>(size, areApart ? teamsOfMany : teamsOfACompany, areApart);
    require(pairs->overlaps() == pairs->hashedOverlaps(), "team overlap");
    const std::string work = "team overlap of " + std::to_string(size) + (areApart ? ", apart" : "");
    benchmark::RegisterBenchmark((work + "/kestrel").c_str(), [pairs](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(pairs->overlaps());
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((work + "/unordered_set").c_str(), [pairs](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(pairs->hashedOverlaps());
    })->Unit(benchmark::kMicrosecond);
}

/// An identifier as an entity's name and a key.
using NamedID = std::pair<std::string, std::int64_t>;
struct NamedHash {
    std::size_t operator()(const NamedID& id) const noexcept {
        return std::hash<std::string>{}(id.first) * 31 + std::hash<std::int64_t>{}(id.second);
    }
};

/// Identifiers in no order, as records come when they are looked at.
std::vector<std::int64_t> shuffledKeys(std::int64_t count) {
    std::vector<std::int64_t> keys(static_cast<std::size_t>(count));
    std::iota(keys.begin(), keys.end(), 0);
    std::ranges::shuffle(keys, std::mt19937_64(1));
    return keys;
}

/// Filling a set, and looking for everything in it.
template <class MakeSet, class Contains>
void addSetOf(const std::string& name, MakeSet fill, Contains countFound) {
    benchmark::RegisterBenchmark(("a set of 1000000 identifiers/" + name).c_str(), [fill](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(fill());
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("1000000 identifiers looked up/" + name).c_str(), [fill, countFound](
                                                                                        benchmark::State& state) {
        const auto set = fill();
        for (auto _ : state)
            benchmark::DoNotOptimize(countFound(set));
    })->Unit(benchmark::kMillisecond);
}

void addIdentifierSet() {
    constexpr std::int64_t count = 1'000'000;
    const auto keys = std::make_shared<const std::vector<std::int64_t>>(shuffledKeys(count / 2));
    const auto fill = [keys] {
        boost::unordered_flat_set<AnyObjectID, std::hash<AnyObjectID>> set;
        for (const std::int64_t key : *keys) {
            set.insert(ObjectID<Contact>(key));
            set.insert(ObjectID<Opportunity>(key));
        }
        return set;
    };
    const auto fillNamed = [keys] {
        std::unordered_set<NamedID, NamedHash> set;
        for (const std::int64_t key : *keys) {
            set.emplace("Contact", key);
            set.emplace("Opportunity", key);
        }
        return set;
    };
    const auto countFound = [keys](const auto& set) {
        std::size_t found = 0;
        for (auto key = keys->rbegin(); key != keys->rend(); ++key) {
            found += set.contains(ObjectID<Contact>(*key)) ? 1U : 0U;
            found += set.contains(ObjectID<Opportunity>(*key)) ? 1U : 0U;
        }
        return found;
    };
    const auto countNamed = [keys](const auto& set) {
        std::size_t found = 0;
        for (auto key = keys->rbegin(); key != keys->rend(); ++key) {
            found += set.contains(NamedID("Contact", *key)) ? 1U : 0U;
            found += set.contains(NamedID("Opportunity", *key)) ? 1U : 0U;
        }
        return found;
    };
    const auto set = fill();
    require(set.size() == count && countFound(set) == count, "identifiers");
    require(countNamed(fillNamed()) == count, "identifiers by name");
    addSetOf("kestrel", fill, countFound);
    addSetOf("names in unordered_set", fillNamed, countNamed);
}

void addNewIdentifiers() {
    benchmark::RegisterBenchmark("a new UUID/kestrel", [](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(UUID::random());
    });
    benchmark::RegisterBenchmark("a new UUID/operating system", [](benchmark::State& state) {
        std::ifstream random("/dev/urandom", std::ios::binary);
        random.rdbuf()->pubsetbuf(nullptr, 0);
        for (auto _ : state) {
            std::array<char, 16> bytes{};
            random.read(bytes.data(), bytes.size());
            benchmark::DoNotOptimize(bytes);
        }
    });
    std::vector<UUID> ids(1'024);
    for (UUID& id : ids)
        id = UUID::random();
    std::vector<std::string> texts;
    for (const UUID& id : ids)
        texts.push_back(id.text());
    for (std::size_t i = 1; i < ids.size(); ++i)
        require((ids[i - 1] < ids[i]) == (texts[i - 1] < texts[i]), "order of identifiers");
    const auto add = [](const std::string& name, auto values) {
        benchmark::RegisterBenchmark(name.c_str(), [values](benchmark::State& state) {
            for (auto _ : state) {
                std::size_t ascending = 0;
                for (std::size_t i = 1; i < values.size(); ++i)
                    ascending += values[i - 1] < values[i] ? 1U : 0U;
                benchmark::DoNotOptimize(ascending);
            }
        })->Unit(benchmark::kMicrosecond);
    };
    add("order of identifiers/kestrel", ids);
    add("order of identifiers/texts", texts);
}

}  // namespace

void benchmarks::addSmallThings() {
    for (const std::size_t size : {2U, 8U, 16U}) {
        addOverlap(size, false);
        addOverlap(size, true);
    }
    addIdentifierSet();
    addNewIdentifiers();
}
