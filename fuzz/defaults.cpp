#include <fuzz/fuzzing.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// The system has no watches to give: taking one back costs the kernel milliseconds, a hundred times what is tested
/// here, and nobody runs the main loop that would tell of changes.
// NOLINTNEXTLINE(readability-identifier-naming): the system's name.
extern "C" int inotify_init1(int /*flags*/) {
    errno = EMFILE;
    return -1;
}

// The file of the preferences, of any bytes, and under scripts of writing, opening again, losing the process and being
// damaged.
namespace {

using namespace kestrel;
using fuzzing::require;
using fuzzing::Script;
namespace fs = std::filesystem;

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

const fs::path& file() {
    static const Folder folder;
    static const fs::path path = folder.path() / "defaults.db";
    return path;
}
fs::path besides(const char* suffix) {
    return file().native() + suffix;
}

std::optional<std::string> contentOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return std::nullopt;
    return std::string{std::istreambuf_iterator<char>(stream), {}};
}
void put(const fs::path& path, const std::optional<std::string>& content) {
    if (content) {
        std::ofstream(path, std::ios::binary) << *content;
    } else {
        unlink(path.c_str());
    }
}
void removeFiles() {
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        unlink(besides(suffix).c_str());
}

/// Values as texts that are equal when the values are, bit for bit.
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

using Content = std::map<std::string, std::string>;

Content contentOf(const SQLiteUserDefaults& store) {
    Content content;
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

DefaultsValue valueFrom(Script& script) {
    const unsigned kind = script.next();
    switch (kind % 7) {
        case 0: return std::string(script.take(kind / 7));
        case 1: {
            Data data;
            for (const char c : script.take(kind / 7))
                data.bytes.push_back(static_cast<std::byte>(c));
            return data;
        }
        case 2: return static_cast<std::int64_t>(script.next()) << (script.next() % 57U);
        case 3: {
            static constexpr double numbers[] = {0.0,
                                                 -0.0,
                                                 1.5,
                                                 1e300,
                                                 -5e-324,
                                                 std::numeric_limits<double>::infinity(),
                                                 -std::numeric_limits<double>::infinity(),
                                                 std::numeric_limits<double>::quiet_NaN()};
            return numbers[script.next() % std::size(numbers)];
        }
        case 4: return script.next() % 2 != 0;
        case 5: return Date(static_cast<double>(script.next()) * 86'400.5 - 1e6);
        default: return URL::parse("https://example.com/" + std::to_string(script.next())).value();
    }
}

class Player {
  public:
    explicit Player(std::string_view script) : script_(script) {}

    /// The file is what the script says, from the start.
    void playOn(std::string_view bytes) {
        put(file(), std::string(bytes));
        isDamaged_ = true;
        open(false);
        check();
        for (const bool removes : {false, true}) {
            write("key", removes ? std::nullopt : std::optional<DefaultsValue>("value"));
            check();
        }
        if (!content_.empty()) write(content_.begin()->first, DefaultsValue(true));
        check();
        open(true);
    }
    void play() {
        open(true);
        constexpr int longest = 10;
        for (int i = 0; i < longest && !script_.atEnd(); ++i) {
            const unsigned step = script_.next();
            switch (step % 8) {
                case 0:
                case 1:
                case 2: {
                    const std::string key = keyFrom(step / 8);
                    write(key, valueFrom(script_));
                    break;
                }
                case 3: write(keyFrom(step / 8), std::nullopt); break;
                case 4: open(true); break;
                case 5: loseProcess(step / 8 % 4 == 0); break;
                case 6: damage(step / 8); break;
                default: require(store_->refresh().has_value() || isDamaged_, "what was written can be read"); break;
            }
            check();
        }
        open(true);
        check();
    }

  private:
    std::string keyFrom(unsigned choice) {
        static constexpr std::string_view keys[] = {"a", "b", "key", ""};
        if (choice < 16) return std::string(keys[choice % 4]);
        return std::string(script_.take(choice - 16));
    }
    void check() const { require(contentOf(*store_) == content_, "the store has what was stored and nothing else"); }
    /// With `keeps`, what is there has to be there afterwards.
    void open(bool keeps) {
        store_.reset();
        auto opened = SQLiteUserDefaults::open(file());
        if (opened) {
            store_ = *opened;
            if (keeps) check();
            content_ = contentOf(*store_);
            return;
        }
        require(!keeps || isDamaged_, "what was written can be read",
                [&] { return opened.error().localizedDescription; });
        require(!opened.error().domain.empty() && !opened.error().localizedDescription.empty(), "a failure says why");
        store_ = SQLiteUserDefaults::openAnyway(file());
        content_.clear();
        isDamaged_ = true;
    }
    void write(const std::string& key, const std::optional<DefaultsValue>& value) {
        const auto written = value ? store_->set(key, *value) : store_->removeObject(key);
        if (!written) {
            require(isDamaged_, "what is whole can be written", [&] { return written.error().localizedDescription; });
            return;
        }
        if (value) {
            content_.insert_or_assign(key, shown(*value));
        } else {
            content_.erase(key);
        }
    }
    /// As when the process is killed: the files stay as they are. What has been written is there nevertheless.
    void loseProcess(bool losesLog) {
        const auto content = contentOf(file());
        const auto log = contentOf(besides("-wal"));
        store_.reset();
        removeFiles();
        put(file(), content);
        if (!losesLog) put(besides("-wal"), log);
        if (losesLog && log && !log->empty()) {
            // Then older values are there again, or none.
            open(false);
        } else {
            open(true);
        }
    }
    void damage(unsigned how) {
        const auto content = contentOf(file());
        const auto log = contentOf(besides("-wal"));
        store_.reset();
        removeFiles();
        put(file(), content);
        put(besides("-wal"), log);
        const fs::path path = how % 2 != 0 && log ? besides("-wal") : file();
        auto bytes = contentOf(path).value_or("");
        const std::size_t at =
            bytes.empty() ? 0 : ((std::size_t{script_.next()} << 8U) | script_.next()) % bytes.size();
        switch (how / 2 % 4) {
            case 0:
                if (!bytes.empty()) bytes[at] = static_cast<char>(script_.next());
                break;
            case 1: bytes.resize(at); break;
            case 2: bytes.append(script_.take(script_.next())); break;
            default: bytes.replace(at, 4, script_.take(4)); break;
        }
        put(path, bytes);
        isDamaged_ = true;
        open(false);
    }

    Script script_;
    std::shared_ptr<SQLiteUserDefaults> store_;
    Content content_;
    /// Whether the file may be another one than was written.
    bool isDamaged_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t longest = 64 * 1024;
    if (size == 0 || size > longest) return -1;
    removeFiles();
    const std::string_view rest = fuzzing::textOf(data + 1, size - 1);
    if (data[0] % 2 == 0) {
        Player(rest).play();
    } else {
        Player("").playOn(rest);
    }
    return 0;
}
