#include <fuzz/preferences.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <system_error>
#include <variant>

/// The system has no watches to give: taking one back costs the kernel milliseconds, a hundred times what is tested
/// here, and nobody runs the main loop that would tell of changes.
// NOLINTNEXTLINE(readability-identifier-naming): the system's name.
extern "C" int inotify_init1(int /*flags*/) {
    errno = EMFILE;
    return -1;
}

namespace kestrel::fuzzing {

namespace fs = std::filesystem;

namespace {

/// A folder in memory, for as long as the program runs.
class Folder {
  public:
    Folder() {
        const fs::path memory = "/dev/shm";
        path_ = (fs::is_directory(memory) ? memory : fs::temp_directory_path()) /
                ("kestrel-fuzz-" + std::to_string(getpid()));
        fs::create_directories(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    [[nodiscard]] const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

}  // namespace

const fs::path& preferencesFile() {
    static const Folder folder;
    static const fs::path path = folder.path() / "defaults.db";
    return path;
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
