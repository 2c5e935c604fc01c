// Keyed JSON of opportunities against other libraries: every contender in one run, results compared for equality first,
// and at the end a table of times relative to this library's.

#include <benchmark/benchmark.h>
#include <kestrel/coding/json.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

#include "peers.h"

namespace {

using kestrel::Opportunity;

constexpr std::size_t documentCount = 2'000;

struct Samples {
    std::vector<Opportunity> values = peers::sampleOpportunities(documentCount);
    std::string array = kestrel::encodeJSON(values).value();
    std::string shuffledArray = peers::shuffleMembers(array, 7);
    std::vector<std::string> documents = [this] {
        std::vector<std::string> list;
        for (const auto& value : values)
            list.push_back(kestrel::encodeJSON(value).value());
        return list;
    }();
    std::vector<std::string> shuffledDocuments = [this] {
        std::vector<std::string> list;
        for (unsigned i = 0; i < documents.size(); ++i)
            list.push_back(peers::shuffleMembers(documents[i], i));
        return list;
    }();
};

const Samples& samples() {
    static const Samples made;
    return made;
}

std::vector<Opportunity> decodeArray(std::string_view document) {
    return kestrel::decodeJSON<std::vector<Opportunity>>(document).value();
}
Opportunity decodeOne(std::string_view document) {
    return kestrel::decodeJSON<Opportunity>(document).value();
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "The contenders disagree: %s\n", what);
    std::exit(1);
}

/// Nobody is timed before everybody has given the same answer.
void compareResults() {
    const Samples& s = samples();
    for (const auto* document : {&s.array, &s.shuffledArray}) {
        require(decodeArray(*document) == s.values, "decode array");
        require(peers::decodeArrayBySimdjson(*document) == s.values, "decode array, simdjson");
        require(peers::decodeArrayByRapidJSON(*document) == s.values, "decode array, RapidJSON");
    }
    for (std::size_t i = 0; i < documentCount; ++i) {
        require(decodeOne(s.shuffledDocuments[i]) == s.values[i], "decode one");
        require(peers::decodeOneBySimdjson(s.shuffledDocuments[i]) == s.values[i], "decode one, simdjson");
        require(peers::decodeOneByRapidJSON(s.shuffledDocuments[i]) == s.values[i], "decode one, RapidJSON");
        require(decodeOne(peers::encodeOneByRapidJSON(s.values[i])) == s.values[i], "encode one, RapidJSON");
    }
    require(decodeArray(peers::encodeArrayByRapidJSON(s.values)) == s.values, "encode array, RapidJSON");
}

template <class Work>
void measure(benchmark::State& state, std::size_t bytes, Work work) {
    for (auto _ : state)
        work();
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

void decodeArrayBy(benchmark::State& state, const std::string& document,
                   const std::function<std::vector<Opportunity>(std::string_view)>& decode) {
    measure(state, document.size(), [&] { benchmark::DoNotOptimize(decode(document)); });
}

void decodeOneBy(benchmark::State& state, const std::vector<std::string>& documents,
                 const std::function<Opportunity(std::string_view)>& decode) {
    std::size_t bytes = 0;
    for (const auto& document : documents)
        bytes += document.size();
    measure(state, bytes, [&] {
        for (const auto& document : documents)
            benchmark::DoNotOptimize(decode(document));
    });
}

/// Keeps the shortest time of every benchmark and prints the ratios in the end: noise only ever adds time.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const std::string name = run.run_name.function_name;
            const auto slash = name.rfind('/');
            auto& time = times_[name.substr(0, slash)][name.substr(slash + 1)];
            const double measured = run.GetAdjustedRealTime();
            time = time == 0 ? measured : std::min(time, measured);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override {
        std::printf("\nTime relative to this library (more than 1: the other one takes longer)\n");
        for (const auto& [work, contenders] : times_) {
            const auto own = contenders.find("kestrel");
            if (own == contenders.end()) continue;
            std::printf("%-26s", work.c_str());
            for (const auto& [contender, time] : contenders) {
                if (contender != "kestrel") std::printf("  %s %.2f", contender.c_str(), time / own->second);
            }
            std::printf("\n");
        }
    }

  private:
    std::map<std::string, std::map<std::string, double>> times_;
};

void registerAll() {
    const Samples& s = samples();
    const auto add = [](const char* name, auto body) {
        benchmark::RegisterBenchmark(name, body)->Unit(benchmark::kMillisecond);
    };
    const auto arrays = [&](const std::string& work, const std::string& document) {
        add((work + "/kestrel").c_str(), [&](benchmark::State& state) { decodeArrayBy(state, document, decodeArray); });
        add((work + "/simdjson").c_str(),
            [&](benchmark::State& state) { decodeArrayBy(state, document, peers::decodeArrayBySimdjson); });
        add((work + "/RapidJSON").c_str(),
            [&](benchmark::State& state) { decodeArrayBy(state, document, peers::decodeArrayByRapidJSON); });
    };
    const auto ones = [&](const std::string& work, const std::vector<std::string>& documents) {
        add((work + "/kestrel").c_str(), [&](benchmark::State& state) { decodeOneBy(state, documents, decodeOne); });
        add((work + "/simdjson").c_str(),
            [&](benchmark::State& state) { decodeOneBy(state, documents, peers::decodeOneBySimdjson); });
        add((work + "/RapidJSON").c_str(),
            [&](benchmark::State& state) { decodeOneBy(state, documents, peers::decodeOneByRapidJSON); });
    };
    arrays("decode array", s.array);
    arrays("decode array, shuffled", s.shuffledArray);
    ones("decode one", s.documents);
    ones("decode one, shuffled", s.shuffledDocuments);
    add("encode array/kestrel", [&](benchmark::State& state) {
        measure(state, s.array.size(), [&] { benchmark::DoNotOptimize(kestrel::encodeJSON(s.values)); });
    });
    add("encode array/RapidJSON", [&](benchmark::State& state) {
        measure(state, s.array.size(), [&] { benchmark::DoNotOptimize(peers::encodeArrayByRapidJSON(s.values)); });
    });
    add("encode one/kestrel", [&](benchmark::State& state) {
        measure(state, s.array.size(), [&] {
            for (const auto& value : s.values)
                benchmark::DoNotOptimize(kestrel::encodeJSON(value));
        });
    });
    add("encode one/RapidJSON", [&](benchmark::State& state) {
        measure(state, s.array.size(), [&] {
            for (const auto& value : s.values)
                benchmark::DoNotOptimize(peers::encodeOneByRapidJSON(value));
        });
    });
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    compareResults();
    registerAll();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
