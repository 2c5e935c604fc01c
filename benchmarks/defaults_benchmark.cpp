// The store of preferences against plain SQLite: reading one value, and writing one so that it is on the disk. Compares
// the results first, then times both in one run and prints the ratios. Takes the arguments of Google Benchmark. The
// files lie in the temporary folder: TMPDIR names another disk.

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <kestrel/platform/system.h>
#include <tests/temporary_folder.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ratio_reporter.h"

namespace {

using namespace kestrel;
namespace fs = std::filesystem;

constexpr int keyCount = 200;

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "The contenders disagree: %s\n", what);
    std::exit(1);
}

std::string textOf(int key) {
    return "The value of the preference with the number " + std::to_string(key);
}

/// A table of preferences as one writes it at first, with the statements prepared.
class PlainSQLite {
  public:
    explicit PlainSQLite(const fs::path& file) : database_(open(file)) {}

    void set(const std::string& key, std::int64_t number) {
        insert_.bindNoCopy(1, key);
        insert_.bind(2, number);
        finish();
    }
    void set(const std::string& key, const std::string& text) {
        insert_.bindNoCopy(1, key);
        insert_.bindNoCopy(2, text);
        finish();
    }
    std::int64_t integer(const std::string& key) { return value(key).getInt64(); }
    std::string text(const std::string& key) { return value(key).getString(); }

  private:
    static SQLite::Database open(const fs::path& file) {
        SQLite::Database database(file.native(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX);
        (void)database.execAndGet("PRAGMA journal_mode=WAL");
        database.exec("PRAGMA synchronous=FULL");
        database.exec("CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, value) WITHOUT ROWID");
        return database;
    }
    void finish() {
        insert_.exec();
        insert_.reset();
    }
    SQLite::Column value(const std::string& key) {
        select_.reset();
        select_.bindNoCopy(1, key);
        select_.executeStep();
        return select_.getColumn(0);
    }

    SQLite::Database database_;
    SQLite::Statement insert_{database_, "INSERT OR REPLACE INTO defaults (key, value) VALUES (?, ?)"};
    SQLite::Statement select_{database_, "SELECT value FROM defaults WHERE key = ?"};
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    const test::TemporaryFolder folder;
    const auto opened = platform::openUserDefaults(folder / "defaults.sqlite");
    require(opened.has_value(), "the store opens");
    const auto store = *opened;
    PlainSQLite plain(folder / "plain.sqlite");

    std::vector<std::string> numbers;
    std::vector<std::string> texts;
    for (int i = 0; i < keyCount; ++i) {
        numbers.push_back("Number" + std::to_string(i));
        texts.push_back("Text" + std::to_string(i));
        require(store->set(numbers.back(), std::int64_t{i}).has_value(), "the store is written");
        require(store->set(texts.back(), textOf(i)).has_value(), "the store is written");
        plain.set(numbers.back(), i);
        plain.set(texts.back(), textOf(i));
    }
    for (int i = 0; i < keyCount; ++i) {
        const auto at = static_cast<std::size_t>(i);
        require(store->integer(numbers[at]) == i && plain.integer(numbers[at]) == i, "a number");
        require(store->object(texts[at]) == DefaultsValue(textOf(i)) && plain.text(texts[at]) == textOf(i), "a text");
    }

    std::size_t next = 0;
    const auto each = [&next](const std::vector<std::string>& keys) -> const std::string& {
        return keys[next++ % keyCount];
    };
    const auto add = [](const char* work, const char* contender, auto step) {
        benchmark::RegisterBenchmark((std::string(work) + '/' + contender).c_str(),
                                     [step](benchmark::State& state) mutable {
                                         for (auto _ : state)
                                             step();
                                     });
    };
    add("read a number", "kestrel", [&] { benchmark::DoNotOptimize(store->integer(each(numbers))); });
    add("read a number", "sqlite", [&] { benchmark::DoNotOptimize(plain.integer(each(numbers))); });
    add("read a text", "kestrel", [&] { benchmark::DoNotOptimize(store->object(each(texts))); });
    add("read a text", "sqlite", [&] { benchmark::DoNotOptimize(plain.text(each(texts))); });
    std::int64_t written = keyCount;
    add("write a number durably", "kestrel", [&] { (void)store->set(each(numbers), written++); });
    add("write a number durably", "sqlite", [&] { plain.set(each(numbers), written++); });
    add("write the same number", "kestrel", [&] { (void)store->set("same", std::int64_t{7}); });
    add("write the same number", "sqlite", [&] { plain.set("same", std::int64_t{7}); });

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const auto& key : numbers)
        require(store->object(key).has_value(), "a number that was written");
    benchmark::Shutdown();
    return 0;
}
