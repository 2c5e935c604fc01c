#include <fuzz/preferences.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <ios>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

// The file of the preferences, of any bytes, and under scripts of writing, opening again, losing the process and being
// damaged.
namespace {

using namespace kestrel;
using fuzzing::require;
using fuzzing::Script;
namespace fs = std::filesystem;

const fs::path& file() {
    return fuzzing::preferencesFile();
}
fs::path besides(const char* suffix) {
    return file().native() + suffix;
}

std::optional<std::string> contentOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    if (!stream) return std::nullopt;
    std::string content(static_cast<std::size_t>(stream.tellg()), '\0');
    stream.seekg(0).read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}
void put(const fs::path& path, const std::optional<std::string>& content) {
    if (content) {
        std::ofstream(path, std::ios::binary) << *content;
    } else {
        unlink(path.c_str());
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
        for (const bool removes : {false, true})
            write("key", removes ? std::nullopt : std::optional<DefaultsValue>("value"));
        if (!content_.empty()) write(content_.begin()->first, DefaultsValue(true));
        open(true);
    }
    void play() {
        open(true);
        constexpr int longest = 6;
        for (int i = 0; i < longest && !script_.atEnd(); ++i) {
            const unsigned step = script_.next();
            switch (step % 8) {
                case 0:
                case 1:
                case 2: {
                    const std::string key = keyFrom(step / 8);
                    write(key, fuzzing::valueFrom(script_));
                    break;
                }
                case 3: write(keyFrom(step / 8), std::nullopt); break;
                case 4: open(true); break;
                case 5: loseProcess(step / 8 % 4 == 0); break;
                case 6: damage(step / 8); break;
                default:
                    require(store_->refresh().has_value() || isDamaged_, "what was written can be read");
                    check(fuzzing::contentOf(*store_));
                    break;
            }
        }
        open(true);
    }

  private:
    std::string keyFrom(unsigned choice) {
        static constexpr std::string_view keys[] = {"a", "b", "key", ""};
        if (choice < 16) return std::string(keys[choice % 4]);
        return std::string(script_.take(choice - 16));
    }
    void check(const fuzzing::PreferencesContent& content) const {
        require(content == content_, "the store has what was stored and nothing else");
    }
    /// With `keeps`, what is there has to be there afterwards.
    void open(bool keeps) {
        store_.reset();
        auto opened = SQLiteUserDefaults::open(file());
        if (opened) {
            store_ = *opened;
            auto content = fuzzing::contentOf(*store_);
            if (keeps) check(content);
            content_ = std::move(content);
            return;
        }
        require(!keeps || isDamaged_, "what was written can be read",
                [&] { return opened.error().localizedDescription; });
        require(!opened.error().domain.empty() && !opened.error().localizedDescription.empty(), "a failure says why");
        store_ = SQLiteUserDefaults::openAnyway(file());
        content_.clear();
        isDamaged_ = true;
        check(fuzzing::contentOf(*store_));
    }
    void write(const std::string& key, const std::optional<DefaultsValue>& value) {
        const auto written = value ? store_->set(key, *value) : store_->removeObject(key);
        require(written || isDamaged_, "what is whole can be written",
                [&] { return written.error().localizedDescription; });
        if (written && value) {
            content_.insert_or_assign(key, fuzzing::shown(*value));
        } else if (written) {
            content_.erase(key);
        }
        check(fuzzing::contentOf(*store_));
    }
    /// As when the process is killed: the files stay as they are. What has been written is there nevertheless.
    void loseProcess(bool losesLog) {
        const auto content = contentOf(file());
        const auto log = contentOf(besides("-wal"));
        store_.reset();
        fuzzing::removePreferences();
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
        fuzzing::removePreferences();
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
    fuzzing::PreferencesContent content_;
    /// Whether the file may be another one than was written.
    bool isDamaged_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t longest = 64 * 1024;
    if (size == 0 || size > longest) return -1;
    fuzzing::removePreferences();
    const std::string_view rest = fuzzing::textOf(data + 1, size - 1);
    if (data[0] % 2 == 0) {
        Player(rest).play();
    } else {
        Player("").playOn(rest);
    }
    return 0;
}
