// Keyed JSON of contacts against other libraries.

#include <benchmark/benchmark.h>
#include <kestrel/coding/json.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <expected>
#include <functional>
#include <string>

#include "peers.h"
#include "work.h"

namespace {

using kestrel::Contact;

constexpr std::size_t documentCount = 2'000;

struct Samples {
    std::vector<Contact> values = peers::sampleContacts(documentCount);
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

std::vector<Contact> decodeArray(std::string_view document) {
    return kestrel::decodeJSON<std::vector<Contact>>(document).value();
}
/// As it comes: the others give back a contact, and throw.
std::expected<Contact, kestrel::DecodingError> decodeOne(std::string_view document) {
    return kestrel::decodeJSON<Contact>(document);
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
        require(peers::decodeArrayByNlohmann(*document) == s.values, "decode array, nlohmann-json");
    }
    for (std::size_t i = 0; i < documentCount; ++i) {
        require(decodeOne(s.shuffledDocuments[i]) == s.values[i], "decode one");
        require(peers::decodeOneBySimdjson(s.shuffledDocuments[i]) == s.values[i], "decode one, simdjson");
        require(peers::decodeOneByRapidJSON(s.shuffledDocuments[i]) == s.values[i], "decode one, RapidJSON");
        require(peers::decodeOneByNlohmann(s.shuffledDocuments[i]) == s.values[i], "decode one, nlohmann-json");
        require(decodeOne(peers::encodeOneByRapidJSON(s.values[i])) == s.values[i], "encode one, RapidJSON");
        require(decodeOne(peers::encodeOneByNlohmann(s.values[i])) == s.values[i], "encode one, nlohmann-json");
    }
    require(decodeArray(peers::encodeArrayByRapidJSON(s.values)) == s.values, "encode array, RapidJSON");
    require(decodeArray(peers::encodeArrayByNlohmann(s.values)) == s.values, "encode array, nlohmann-json");
}

template <class Work>
void measure(benchmark::State& state, std::size_t bytes, Work work) {
    for (auto _ : state)
        work();
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

void decodeArrayBy(benchmark::State& state, const std::string& document,
                   const std::function<std::vector<Contact>(std::string_view)>& decode) {
    measure(state, document.size(), [&] { benchmark::DoNotOptimize(decode(document)); });
}

template <class Decode>
void decodeOneBy(benchmark::State& state, const std::vector<std::string>& documents, Decode decode) {
    std::size_t bytes = 0;
    for (const auto& document : documents)
        bytes += document.size();
    measure(state, bytes, [&] {
        for (const auto& document : documents)
            benchmark::DoNotOptimize(decode(document));
    });
}

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
        add((work + "/nlohmann").c_str(),
            [&](benchmark::State& state) { decodeArrayBy(state, document, peers::decodeArrayByNlohmann); });
    };
    const auto ones = [&](const std::string& work, const std::vector<std::string>& documents) {
        add((work + "/kestrel").c_str(), [&](benchmark::State& state) { decodeOneBy(state, documents, decodeOne); });
        add((work + "/simdjson").c_str(),
            [&](benchmark::State& state) { decodeOneBy(state, documents, peers::decodeOneBySimdjson); });
        add((work + "/RapidJSON").c_str(),
            [&](benchmark::State& state) { decodeOneBy(state, documents, peers::decodeOneByRapidJSON); });
        add((work + "/nlohmann").c_str(),
            [&](benchmark::State& state) { decodeOneBy(state, documents, peers::decodeOneByNlohmann); });
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
    add("encode array/nlohmann", [&](benchmark::State& state) {
        measure(state, s.array.size(), [&] { benchmark::DoNotOptimize(peers::encodeArrayByNlohmann(s.values)); });
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
    // As many as the caches hold together with what is written, and as the processor learns: which members are absent.
    const auto encodeFew = [&s](benchmark::State& state, auto encode) {
        constexpr std::ptrdiff_t few = 50;
        const std::vector<Contact> values(s.values.begin(), s.values.begin() + few);
        for (auto _ : state) {
            for (const Contact& value : values)
                benchmark::DoNotOptimize(encode(value));
        }
    };
    add("encode one, in cache/kestrel", [encodeFew](benchmark::State& state) {
        encodeFew(state, [](const Contact& value) { return kestrel::encodeJSON(value); });
    });
    add("encode one, in cache/RapidJSON",
        [encodeFew](benchmark::State& state) { encodeFew(state, peers::encodeOneByRapidJSON); });
    add("encode one/nlohmann", [&](benchmark::State& state) {
        measure(state, s.array.size(), [&] {
            for (const auto& value : s.values)
                benchmark::DoNotOptimize(peers::encodeOneByNlohmann(value));
        });
    });
}

/// What the allocator holds for what `make` makes, in bytes.
template <class Make>
std::size_t heapOf(Make make) {
    const std::size_t before = ::mallinfo2().uordblks;
    const auto made = make();
    benchmark::DoNotOptimize(made);
    return ::mallinfo2().uordblks - before;
}

}  // namespace

namespace benchmarks {

void addCoding() {
    compareResults();
    registerAll();
}

void printContactMemory() {
    const Samples& s = samples();
    const std::size_t heap = heapOf([&] { return std::vector<Contact>(s.values); });
    std::printf("\nA contact: sizeof %zu bytes, on the heap %zu more on average; 100,000 of them: %.0f MB\n",
                sizeof(Contact), heap / s.values.size() - sizeof(Contact),
                static_cast<double>(heap / s.values.size()) * 100'000 / 1e6);
}

}  // namespace benchmarks
