#include <fuzz/fuzzing.h>
#include <fuzz/preferences.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <sqlite3.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

// The file of the preferences while another program changes it, rightly or wrongly: rows of any kind and value come and
// go beside those that the store writes itself. One file stays open from input to input, so that runs are quick.
namespace {

using namespace kestrel;
using fuzzing::require;
using fuzzing::Script;

/// What a column of SQLite may hold.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string, Data>;

/// The other program.
class Stranger {
  public:
    explicit Stranger(const std::string& file) {
        sqlite3* opened = nullptr;
        require(sqlite3_open(file.c_str(), &opened) == SQLITE_OK, "the file can be opened");
        database_.reset(opened);
        run("PRAGMA synchronous=OFF");
        insert_ = prepare("INSERT OR REPLACE INTO defaults (key, kind, value) VALUES (?, ?, ?)");
        remove_ = prepare("DELETE FROM defaults WHERE key = ?");
    }

    void run(const char* command) const {
        require(sqlite3_exec(database_.get(), command, nullptr, nullptr, nullptr) == SQLITE_OK, "a command runs",
                sqlite3_errmsg(database_.get()));
    }
    void insert(std::string_view key, std::string_view kind, const Cell& value) const {
        struct Binder {
            sqlite3_stmt* statement;

            void operator()(std::monostate) const { sqlite3_bind_null(statement, 3); }
            void operator()(std::int64_t number) const { sqlite3_bind_int64(statement, 3, number); }
            void operator()(double number) const { sqlite3_bind_double(statement, 3, number); }
            void operator()(const std::string& text) const { bindText(statement, 3, text); }
            void operator()(const Data& data) const {
                sqlite3_bind_blob(statement, 3, data.bytes.empty() ? "" : static_cast<const void*>(data.bytes.data()),
                                  static_cast<int>(data.bytes.size()), SQLITE_TRANSIENT);
            }
        };
        bindText(insert_.get(), 1, key);
        bindText(insert_.get(), 2, kind);
        std::visit(Binder(insert_.get()), value);
        step(insert_.get());
    }
    void remove(std::string_view key) const {
        bindText(remove_.get(), 1, key);
        step(remove_.get());
    }

  private:
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    [[nodiscard]] std::unique_ptr<sqlite3_stmt, Closer> prepare(const char* command) const {
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v2(database_.get(), command, -1, &statement, nullptr) == SQLITE_OK, "a command is one",
                sqlite3_errmsg(database_.get()));
        return std::unique_ptr<sqlite3_stmt, Closer>(statement);
    }
    static void bindText(sqlite3_stmt* statement, int place, std::string_view text) {
        sqlite3_bind_text(statement, place, text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT);
    }
    void step(sqlite3_stmt* statement) const {
        require(sqlite3_step(statement) == SQLITE_DONE, "a row is written", sqlite3_errmsg(database_.get()));
        sqlite3_reset(statement);
    }

    std::unique_ptr<sqlite3, Closer> database_;
    std::unique_ptr<sqlite3_stmt, Closer> insert_, remove_;
};

constexpr std::array<std::string_view, 7> kinds{"string", "data", "integer", "double", "boolean", "date", "url"};

/// What a row of another program is read as, where that is beyond doubt.
enum class Reading : std::uint8_t { absent, present, either };

Reading readingOf(std::string_view kind, const Cell& value) {
    const bool isWhole = std::holds_alternative<std::int64_t>(value);
    if (kind == "string" || kind == "data") return Reading::present;
    if (kind == "integer" || kind == "boolean") return isWhole ? Reading::present : Reading::absent;
    if (kind == "double") {
        const auto* data = std::get_if<Data>(&value);
        const auto* number = std::get_if<double>(&value);
        // What is no number is stored as NULL.
        const bool isStored = isWhole || (number != nullptr && !std::isnan(*number));
        return isStored || (data != nullptr && data->bytes.size() == sizeof(double)) ? Reading::present
                                                                                     : Reading::absent;
    }
    return kind == "date" || kind == "url" ? Reading::either : Reading::absent;
}

void checkRead(const DefaultsValue& read, std::string_view kind, const Cell& value) {
    require(kinds[read.index()] == kind, "a row is read as what it says to be", kind);
    const auto* whole = std::get_if<std::int64_t>(&value);
    const auto* text = std::get_if<std::string>(&value);
    const auto* data = std::get_if<Data>(&value);
    if (kind == "integer") require(std::get<std::int64_t>(read) == *whole, "a number is read as it is");
    if (kind == "boolean") require(std::get<bool>(read) == (*whole != 0), "a truth is read as it is");
    if (kind == "string" && text != nullptr) require(std::get<std::string>(read) == *text, "a text is kept", *text);
    if (kind == "data" && data != nullptr) require(std::get<Data>(read) == *data, "bytes are kept");
}

Cell cellFrom(Script& script) {
    const unsigned choice = script.next();
    const std::size_t size = choice / 5;
    switch (choice % 5) {
        case 0: return {};
        case 1: return static_cast<std::int64_t>(script.next()) - (static_cast<std::int64_t>(script.next()) << size);
        case 2: return fuzzing::unusualNumber(script.next());
        case 3: return std::string(script.take(size));
        default: return fuzzing::dataOf(script.take(size));
    }
}

/// A store with a stranger at its file.
class Scene {
  public:
    Scene() : store_(openStore()), stranger_(store_->file().native()) {}

    void play(Script script) {
        stranger_.run("DELETE FROM defaults");
        content_.clear();
        refresh();
        constexpr int longest = 6;
        for (int i = 0; i < longest && !script.atEnd(); ++i) {
            const unsigned step = script.next();
            const std::string key = keyFrom(step / 8, script);
            switch (step % 8) {
                case 0:
                case 1:
                case 2: strangerWrites(key, script); break;
                case 3:
                    stranger_.remove(key);
                    content_.erase(key);
                    refresh();
                    break;
                case 4:
                    require(store_->removeObject(key).has_value(), "a value can be removed", key);
                    content_.erase(key);
                    break;
                case 5: newerReleaseWrites(key); break;
                default: {
                    const DefaultsValue value = fuzzing::valueFrom(script);
                    write(key, value);
                    break;
                }
            }
            check();
        }
    }

  private:
    static std::shared_ptr<SQLiteUserDefaults> openStore() {
        fuzzing::removePreferences();
        auto store = SQLiteUserDefaults::open(fuzzing::preferencesFile());
        require(store.has_value() && (*store)->set("key", true).has_value(), "there is a file");
        return *store;
    }
    static std::string keyFrom(unsigned choice, Script& script) {
        static constexpr std::string_view keys[] = {"a", "b", "key", ""};
        return std::string(choice < 24 ? keys[choice % 4] : script.take(choice - 24));
    }

    void refresh() const { require(store_->refresh().has_value(), "what is there can be read"); }
    void check() const {
        require(fuzzing::contentOf(*store_) == content_, "the store has what was stored and nothing else");
    }
    void write(const std::string& key, const DefaultsValue& value) {
        require(store_->set(key, value).has_value(), "a value can be written", key);
        content_.insert_or_assign(key, fuzzing::shown(value));
    }
    void strangerWrites(const std::string& key, Script& script) {
        const unsigned choice = script.next();
        const std::string kind(choice < 240 ? kinds[choice % kinds.size()] : script.take(choice - 240));
        const Cell value = cellFrom(script);
        stranger_.insert(key, kind, value);
        refresh();
        const std::optional<DefaultsValue> read = store_->object(key);
        const Reading expected = readingOf(kind, value);
        require(expected == Reading::either || read.has_value() == (expected == Reading::present),
                "a row is read if it can be", kind);
        if (!read) {
            content_.erase(key);
            return;
        }
        checkRead(*read, kind, value);
        content_.insert_or_assign(key, fuzzing::shown(*read));
        // What was read can be written, and is the same.
        write("copy", *read);
    }
    /// Its file is left alone, and what was read before stays.
    void newerReleaseWrites(const std::string& key) {
        stranger_.run("PRAGMA user_version=2");
        require(!store_->refresh().has_value(), "a newer file is not read");
        require(!store_->set(key, "lost").has_value(), "a newer file is not written");
        check();
        stranger_.run("PRAGMA user_version=1");
        refresh();
    }

    std::shared_ptr<SQLiteUserDefaults> store_;
    Stranger stranger_;
    fuzzing::PreferencesContent content_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Scene scene;
    scene.play(Script(fuzzing::textOf(data, size)));
    return 0;
}
