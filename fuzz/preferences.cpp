#include <fuzz/preferences.h>
#include <sqlite3.h>
#include <sys/inotify.h>
#include <tests/temporary_folder.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <variant>

/// The system has no watches to give: taking one back costs the kernel milliseconds, a hundred times what is tested
/// here, and nobody runs the main loop that would tell of changes.
// NOLINTNEXTLINE(readability-identifier-naming): the system's name.
extern "C" int inotify_init1(int /*flags*/) {
    errno = EMFILE;
    return -1;
}

/// The C library's own allocator, without what the sanitizer puts in between.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier): the system's names.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);
extern "C" void __libc_free(void* memory);
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)

namespace kestrel::fuzzing {

namespace fs = std::filesystem;

namespace {

/// Has SQLite take its memory where the sanitizer does not look: SQLite is not what is tested here, and watching over
/// its memory takes most of the time. What the store reads of it is watched over by the tests of the store. In front of
/// a block stands its size.
void hurrySQLite() {
    struct Block {
        alignas(std::max_align_t) std::size_t size;

        static Block* of(void* memory) { return static_cast<Block*>(memory) - 1; }
        static void* made(void* block, int size) {
            if (block == nullptr) return nullptr;
            auto* made = static_cast<Block*>(block);
            made->size = static_cast<std::size_t>(size);
            return made + 1;
        }
        static std::size_t total(int size) { return sizeof(Block) + static_cast<std::size_t>(size); }
    };
    static constexpr sqlite3_mem_methods methods{
        .xMalloc = [](int size) { return Block::made(__libc_malloc(Block::total(size)), size); },
        .xFree = [](void* memory) { __libc_free(Block::of(memory)); },
        .xRealloc = [](void* memory,
                       int size) { return Block::made(__libc_realloc(Block::of(memory), Block::total(size)), size); },
        .xSize = [](void* memory) { return memory == nullptr ? 0 : static_cast<int>(Block::of(memory)->size); },
        .xRoundup = [](int size) { return (size + 7) & ~7; },
        .xInit = [](void*) { return SQLITE_OK; },
        .xShutdown = [](void*) {},
        .pAppData = nullptr};
    require(sqlite3_config(SQLITE_CONFIG_MALLOC, &methods) == SQLITE_OK, "SQLite has not begun");
}

/// For as long as the program runs.
struct Place {
    Place() { hurrySQLite(); }

    test::TemporaryFolder folder{fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()};
    fs::path file = folder / "defaults.db";
};

}  // namespace

const fs::path& preferencesFile() {
    static const Place place;
    return place.file;
}

void removePreferences() {
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        unlink((preferencesFile().native() + suffix).c_str());
}

std::string shown(const DefaultsValue& value) {
    struct Shower {
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const Data& data) const {
            return {reinterpret_cast<const char*>(data.bytes.data()), data.bytes.size()};
        }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(double number) const { return std::to_string(std::bit_cast<std::uint64_t>(number)); }
        std::string operator()(bool truth) const { return truth ? "true" : "false"; }
        std::string operator()(Date date) const { return (*this)(date.sinceReferenceDate()); }
        std::string operator()(const URL& url) const { return url.text(); }
    };
    return std::to_string(value.index()) + ":" + std::visit(Shower(), value);
}

PreferencesContent contentOf(const SQLiteUserDefaults& store) {
    PreferencesContent content;
    for (const std::string& key : store.keys()) {
        const auto value = store.object(key);
        require(value.has_value(), "what has a name has a value", key);
        content.emplace(key, shown(*value));
        // Read as whatever else it may be.
        (void)store.integer(key);
        (void)store.doubleValue(key);
        (void)store.boolean(key);
        (void)store.url(key);
    }
    return content;
}

Data dataOf(std::string_view bytes) {
    Data data;
    std::ranges::transform(bytes, std::back_inserter(data.bytes), [](char c) { return static_cast<std::byte>(c); });
    return data;
}

double unusualNumber(unsigned choice) {
    static constexpr double numbers[] = {0.0,
                                         -0.0,
                                         1.5,
                                         1e300,
                                         -5e-324,
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()};
    return numbers[choice % std::size(numbers)];
}

DefaultsValue valueFrom(Script& script) {
    const unsigned kind = script.next();
    switch (kind % 7) {
        case 0: return std::string(script.take(kind / 7));
        case 1: return dataOf(script.take(kind / 7));
        case 2: return static_cast<std::int64_t>(script.next()) << (script.next() % 57U);
        case 3: return unusualNumber(script.next());
        case 4: return script.next() % 2 != 0;
        case 5: return Date(static_cast<double>(script.next()) * 86'400.5 - 1e6);
        default: return URL::parse("https://example.com/" + std::to_string(script.next())).value();
    }
}

}  // namespace kestrel::fuzzing
