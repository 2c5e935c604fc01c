#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <kestrel/localization/localized.h>
#include <kestrel/platform/linux/file_watch.h>
#include <kestrel/platform/linux/glib_support.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <kestrel/platform/system.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <limits>
#include <system_error>
#include <thread>
#include <utility>

namespace kestrel {

namespace {

namespace fs = std::filesystem;
using platform::FileDescriptor;

constexpr std::chrono::milliseconds patience{5000};
constexpr std::int64_t layoutVersion = 1;

/// Why the file cannot be used. Thrown and caught within this file, as what SQLiteCpp throws.
struct Failure {
    std::string domain;
    std::int64_t code;
    std::string reason;
};

[[noreturn]] void failWithSystemError(const fs::path& path, int error) {
    throw Failure{.domain = "POSIX",
                  .code = error,
                  .reason = path.native() + ": " + std::error_code(error, std::generic_category()).message()};
}

/// What does not let this process write the file: it, or the folder in which the log is made.
std::optional<Failure> obstacle(const fs::path& file) {
    for (const auto& path : {file, file.parent_path()}) {
        if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) continue;
        const int error = errno;
        return Failure{.domain = "POSIX",
                       .code = error,
                       .reason = path.native() + ": " + std::error_code(error, std::generic_category()).message()};
    }
    return std::nullopt;
}

Failure failureOf(const SQLite::Exception& error, const fs::path& file) {
    // "Unable to open database file" is all that SQLite says of missing rights.
    const int code = error.getErrorCode();
    if (code == SQLITE_CANTOPEN || code == SQLITE_READONLY || code == SQLITE_PERM) {
        if (auto obstructing = obstacle(file)) return std::move(*obstructing);
    }
    return {.domain = "SQLite", .code = error.getExtendedErrorCode(), .reason = error.what()};
}

enum class Purpose { reading, writing };

PlatformError errorOf(const Failure& failure, const fs::path& file, Purpose purpose) {
    const auto& path = file.native();
    return {.domain = failure.domain,
            .code = failure.code,
            .localizedDescription =
                purpose == Purpose::reading
                    ? localized("The preferences in “%1$@” cannot be read: %2$@",
                                "Error; 1: the path of a file, 2: a technical reason", {path, failure.reason})
                    : localized("The preferences in “%1$@” cannot be saved: %2$@",
                                "Error; 1: the path of a file, 2: a technical reason", {path, failure.reason}),
            .localizedFailureReason = failure.reason,
            .userInfo = {{"path", path}}};
}

/// Does what may fail; what it throws becomes an error.
template <class Attempt>
std::expected<void, PlatformError> attempt(const fs::path& file, Purpose purpose, Attempt what) {
    try {
        what();
        return {};
    } catch (const SQLite::Exception& error) {
        return std::unexpected(errorOf(failureOf(error, file), file, purpose));
    } catch (const Failure& failure) {
        return std::unexpected(errorOf(failure, file, purpose));
    }
}

/// Which file a path leads to.
struct FileIdentity {
    dev_t device{};
    ino_t number{};

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

std::optional<FileIdentity> identityOf(const fs::path& file) {
    struct stat status{};
    if (stat(file.c_str(), &status) == 0) return FileIdentity{.device = status.st_dev, .number = status.st_ino};
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    failWithSystemError(file, errno);
}

fs::path logOf(const fs::path& file) {
    return file.native() + "-wal";
}

/// Makes the folder and those above it, for the user alone, and each of them durable in the one above.
void makeFolders(const fs::path& folder) {
    int error = mkdir(folder.c_str(), S_IRWXU) == 0 ? 0 : errno;
    if (error == ENOENT && folder.has_relative_path()) {
        makeFolders(folder.parent_path());
        error = mkdir(folder.c_str(), S_IRWXU) == 0 ? 0 : errno;
    }
    if (error == EEXIST) return;
    if (error != 0) failWithSystemError(folder, error);
    const FileDescriptor above(::open(folder.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (above) fsync(above.number());
}

// ---- values
//
// kind      value
// string    TEXT, of any bytes
// data      BLOB
// integer   INTEGER
// double    REAL; what REAL does not keep (NaN becomes NULL, -0.0 becomes 0.0, infinity has no literal) as a BLOB of
// the
//           eight bytes of the IEEE 754 form, the first one with the sign
// boolean   INTEGER, 0 or 1
// date      as a double: seconds since 2001-01-01T00:00:00Z
// url       TEXT

constexpr std::array<const char*, std::variant_size_v<DefaultsValue>> kinds{"string",  "data", "integer", "double",
                                                                            "boolean", "date", "url"};

void bindBytes(SQLite::Statement& statement, int place, const void* bytes, std::size_t size) {
    // Above what the library is compiled for; below what its size parameter holds.
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw Failure{.domain = "SQLite", .code = SQLITE_TOOBIG, .reason = sqlite3_errstr(SQLITE_TOOBIG)};
    }
    statement.bindNoCopy(place, bytes, static_cast<int>(size));
}

void bindDouble(SQLite::Statement& statement, int place, double number) {
    const bool isNegativeZero = number == 0 && std::signbit(number);
    if (std::isfinite(number) && !isNegativeZero) return statement.bind(place, number);
    std::array<std::uint8_t, sizeof number> bytes{};
    auto bits = std::bit_cast<std::uint64_t>(number);
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(bits >> 56U);
        bits <<= 8U;
    }
    statement.bind(place, bytes.data(), static_cast<int>(bytes.size()));
}

void bindValue(SQLite::Statement& statement, int place, const DefaultsValue& value) {
    struct Binder {
        SQLite::Statement& statement;
        int place;

        void operator()(const std::string& text) const {
            if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
                return bindBytes(statement, place, text.data(), text.size());
            }
            statement.bindNoCopy(place, text);
        }
        void operator()(const Data& data) const { bindBytes(statement, place, data.bytes.data(), data.bytes.size()); }
        void operator()(std::int64_t number) const { statement.bind(place, number); }
        void operator()(double number) const { bindDouble(statement, place, number); }
        void operator()(bool truth) const { statement.bind(place, truth ? 1 : 0); }
        void operator()(Date date) const { bindDouble(statement, place, date.sinceReferenceDate()); }
        void operator()(const URL& url) const { (*this)(url.text()); }
    };
    std::visit(Binder{.statement = statement, .place = place}, value);
}

std::optional<double> readDouble(const SQLite::Column& column) {
    if (!column.isBlob())
        return column.isFloat() || column.isInteger() ? std::optional(column.getDouble()) : std::nullopt;
    if (column.getBytes() != sizeof(double)) return std::nullopt;
    const auto* bytes = static_cast<const std::uint8_t*>(column.getBlob());
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof bits; ++i)
        bits = bits << 8U | bytes[i];
    return std::bit_cast<double>(bits);
}

/// Absent for what a later release may have stored, or another program wrongly.
std::optional<DefaultsValue> readValue(std::string_view kind, const SQLite::Column& column) {
    if (kind == "string") return column.getString();
    if (kind == "data") {
        const auto* bytes = static_cast<const std::byte*>(column.getBlob());
        return Data{.bytes = {bytes, bytes + column.getBytes()}};
    }
    if (kind == "integer" && column.isInteger()) return column.getInt64();
    if (kind == "double") return readDouble(column);
    if (kind == "boolean" && column.isInteger()) return column.getInt64() != 0;
    if (kind == "date") return readDouble(column).and_then(Date::fromSeconds);
    if (kind == "url") return URL::parse(column.getString());
    return std::nullopt;
}

/// Bit for bit: another zero is another value, and what is no number is the same as itself.
bool isSame(const DefaultsValue& a, const DefaultsValue& b) {
    const auto* first = std::get_if<double>(&a);
    const auto* second = std::get_if<double>(&b);
    if (first != nullptr && second != nullptr) {
        return std::bit_cast<std::uint64_t>(*first) == std::bit_cast<std::uint64_t>(*second);
    }
    if (const auto* date = std::get_if<Date>(&a)) {
        const auto* other = std::get_if<Date>(&b);
        return other != nullptr && isSame(date->sinceReferenceDate(), other->sinceReferenceDate());
    }
    return a == b;
}

}  // namespace

struct SQLiteUserDefaults::Connection {
    Connection(const fs::path& file, FileIdentity which)
        : database(file.native(), SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, static_cast<int>(patience.count())),
          identity(which) {
        database.exec("PRAGMA synchronous=FULL");
    }
    /// The file as it stands, without its log: nobody can write it meanwhile but through a log.
    struct Still {};
    Connection(const fs::path& file, Still)
        : database(uriOf(file), SQLite::OPEN_READONLY | SQLite::OPEN_URI | SQLite::OPEN_NOMUTEX) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() = default;

    [[nodiscard]] static std::string uriOf(const fs::path& file) {
        std::string uri = "file:";
        for (const auto& part : file.relative_path())
            uri += '/' + percentEncoded(part.native());
        return uri + "?immutable=1";
    }

    /// Changes when another connection has committed something.
    [[nodiscard]] std::int64_t currentVersion() {
        (void)versionQuery.tryReset();
        versionQuery.executeStep();
        const std::int64_t current = versionQuery.getColumn(0).getInt64();
        (void)versionQuery.tryReset();
        return current;
    }
    [[nodiscard]] std::int64_t ask(const char* query) { return database.execAndGet(query).getInt64(); }

    /// Sees to the log. Fails when another connection is just using the file in another way; that passes.
    void useLog() {
        if (usesLog) return;
        const auto end = std::chrono::steady_clock::now() + patience;
        for (;;) {
            try {
                // File systems without shared memory stay with a journal, which is as durable.
                (void)database.execAndGet("PRAGMA journal_mode=WAL");
                usesLog = true;
                return;
            } catch (const SQLite::Exception& error) {
                if (error.getErrorCode() != SQLITE_BUSY || std::chrono::steady_clock::now() > end) throw;
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
    }
    /// Within a transaction that writes.
    void makeTable() {
        if (hasTable) return;
        database.exec(
            "CREATE TABLE IF NOT EXISTS defaults (key TEXT PRIMARY KEY NOT NULL, kind TEXT NOT NULL, value) "
            "WITHOUT ROWID");
        database.exec("PRAGMA user_version=" + std::to_string(layoutVersion));
    }

    SQLite::Database database;
    SQLite::Statement versionQuery{database, "PRAGMA data_version"};
    std::optional<SQLite::Statement> insert{};
    std::optional<SQLite::Statement> remove{};
    FileIdentity identity{};
    /// The file of the log, once there is one.
    std::optional<FileIdentity> log{};
    /// Of what the table in memory was read from.
    std::int64_t version = -1;
    /// Whether the file was found whole when it was opened.
    bool isWhole = false;
    bool usesLog = false;
    bool hasTable = false;
};

/// What goes on behind an event, on the main thread.
struct SQLiteUserDefaults::FollowUp {
    AnyCancellable timer{};
    bool isDue = false;
};

std::expected<std::shared_ptr<SQLiteUserDefaults>, PlatformError> SQLiteUserDefaults::open(const fs::path& file) {
    auto store = std::make_shared<SQLiteUserDefaults>(Private(), file);
    if (auto read = store->refresh(); !read) return std::unexpected(std::move(read.error()));
    store->watch();
    return store;
}

std::shared_ptr<SQLiteUserDefaults> SQLiteUserDefaults::openAnyway(const fs::path& file) {
    auto store = std::make_shared<SQLiteUserDefaults>(Private(), file);
    store->watch();
    return store;
}

namespace {

/// The absolute path with links followed, for the log lies beside the file that a link leads to.
fs::path resolved(const fs::path& file) {
    std::error_code error;
    auto path = fs::weakly_canonical(fs::absolute(file, error), error);
    return error ? file : path;
}

}  // namespace

SQLiteUserDefaults::SQLiteUserDefaults(Private, const fs::path& file) : file_(resolved(file)) {}

SQLiteUserDefaults::~SQLiteUserDefaults() = default;

// ---- reading

std::optional<DefaultsValue> SQLiteUserDefaults::object(std::string_view key) const {
    const std::shared_lock lock(tableMutex_);
    const auto found = table_.find(key);
    if (found == table_.end()) return std::nullopt;
    return found->second;
}

std::vector<std::string> SQLiteUserDefaults::keys() const {
    std::vector<std::string> names;
    {
        const std::shared_lock lock(tableMutex_);
        names.reserve(table_.size());
        for (const auto& [key, value] : table_)
            names.push_back(key);
    }
    std::ranges::sort(names);
    return names;
}

bool SQLiteUserDefaults::isStored(std::string_view key, const std::optional<DefaultsValue>& value) const {
    const std::shared_lock lock(tableMutex_);
    const auto found = table_.find(key);
    if (found == table_.end() || !value) return found == table_.end() && !value;
    return isSame(found->second, *value);
}

std::expected<void, PlatformError> SQLiteUserDefaults::refresh() {
    if (auto error = reload(std::unique_lock(databaseMutex_))) return std::unexpected(std::move(*error));
    return {};
}

std::optional<PlatformError> SQLiteUserDefaults::reload(std::unique_lock<std::mutex> lock) {
    bool hasChanged = false;
    auto result = attempt(file_, Purpose::reading, [&] { bringUpToDate(hasChanged); });
    lock.unlock();
    if (hasChanged) post();
    if (!result) return std::move(result.error());
    return std::nullopt;
}

void SQLiteUserDefaults::reloadUnlessBusy() {
    // Whoever holds the lock brings the table up to date; the main thread does not wait for the disk.
    if (std::unique_lock lock(databaseMutex_, std::try_to_lock); lock) (void)reload(std::move(lock));
}

void SQLiteUserDefaults::bringUpToDate(bool& hasChanged) {
    const auto identity = identityOf(file_);
    if (connection_ && identity != connection_->identity) {
        // What is deleted or replaced is not tidied up: the log's name may belong to the new file by now.
        (void)sqlite3_db_config(connection_->database.getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        const auto log = connection_->log;
        connection_.reset();
        // A log that was left behind would be taken for the new file's, and written into it.
        if (identity && log && identityOf(logOf(file_)) == log) {
            unlink(logOf(file_).c_str());
            unlink((file_.native() + "-shm").c_str());
        }
    }
    if (!identity) return replaceTable({}, hasChanged);
    if (connection_) {
        if (connection_->currentVersion() != connection_->version) replaceTable(load(*connection_), hasChanged);
        return;
    }
    try {
        auto fresh = std::make_unique<Connection>(file_, *identity);
        auto table = load(*fresh);
        connection_ = std::move(fresh);
        replaceTable(std::move(table), hasChanged);
    } catch (const SQLite::Exception& error) {
        std::error_code ignored;
        const auto logSize = fs::file_size(logOf(file_), ignored);
        const bool hasLog = !ignored && logSize > 0;
        if (hasLog || error.getErrorCode() == SQLITE_NOTADB || !obstacle(file_)) throw;
        Connection still(file_, Connection::Still());
        replaceTable(load(still), hasChanged);
    }
}

SQLiteUserDefaults::Table SQLiteUserDefaults::load(Connection& connection) {
    // One transaction, so that rows and version belong together.
    auto& database = connection.database;
    const bool isWithin = sqlite3_get_autocommit(database.getHandle()) == 0;
    std::optional<SQLite::Transaction> transaction;
    if (!isWithin) transaction.emplace(database);
    const auto version = connection.currentVersion();
    if (connection.ask("PRAGMA user_version") > layoutVersion) {
        throw Failure{.domain = "SQLite", .code = SQLITE_FORMAT, .reason = "a newer release has written the file"};
    }
    if (!connection.isWhole) {
        // In another encoding, bytes that are no text would come back as others.
        const auto encoding = database.execAndGet("PRAGMA encoding").getString();
        if (encoding != "UTF-8") {
            throw Failure{
                .domain = "SQLite", .code = SQLITE_FORMAT, .reason = "its texts are " + encoding + ", not UTF-8"};
        }
        // In a damaged file a write may succeed and not be there when the file is opened again.
        const auto verdict = database.execAndGet("PRAGMA integrity_check(1)").getString();
        if (verdict != "ok") throw Failure{.domain = "SQLite", .code = SQLITE_CORRUPT, .reason = verdict};
        connection.isWhole = true;
    }
    Table table;
    connection.hasTable = connection.ask("SELECT count(*) FROM sqlite_master WHERE name='defaults'") > 0;
    if (connection.hasTable) {
        SQLite::Statement rows(database, "SELECT key, kind, value FROM defaults");
        while (rows.executeStep()) {
            auto value = readValue(rows.getColumn(1).getString(), rows.getColumn(2));
            if (value) table.emplace(rows.getColumn(0).getString(), std::move(*value));
        }
    }
    connection.version = version;
    connection.log = identityOf(logOf(database.getFilename()));
    return table;
}

void SQLiteUserDefaults::replaceTable(Table table, bool& hasChanged) {
    // Only whoever holds the database's lock writes the table: it may be compared before its lock is taken.
    const bool isEqual = table.size() == table_.size() && std::ranges::all_of(table, [&](const auto& entry) {
                             const auto found = table_.find(entry.first);
                             return found != table_.end() && isSame(found->second, entry.second);
                         });
    if (isEqual) return;
    hasChanged = true;
    const std::unique_lock lock(tableMutex_);
    table_.swap(table);
}

// ---- writing

std::expected<void, PlatformError> SQLiteUserDefaults::set(std::string_view key, DefaultsValue value) {
    return write(key, std::move(value));
}

std::expected<void, PlatformError> SQLiteUserDefaults::removeObject(std::string_view key) {
    return write(key, std::nullopt);
}

std::expected<void, PlatformError> SQLiteUserDefaults::write(std::string_view key,
                                                             const std::optional<DefaultsValue>& value) {
    bool hasChanged = false;
    auto result = attempt(file_, Purpose::writing, [&] {
        const std::scoped_lock lock(databaseMutex_);
        constexpr int attempts = 3;
        for (int i = 0; i < attempts; ++i) {
            if (store(key, value, hasChanged)) return;
        }
        throw Failure{.domain = "SQLite",
                      .code = SQLITE_READONLY_DBMOVED,
                      .reason = "the file was replaced each time that it was written"};
    });
    if (hasChanged) post();
    return result;
}

bool SQLiteUserDefaults::store(std::string_view key, const std::optional<DefaultsValue>& value, bool& hasChanged) {
    bringUpToDate(hasChanged);
    if (isStored(key, value)) return true;
    if (!connection_) {
        if (!identityOf(file_)) makeFile();
        const auto identity = identityOf(file_);
        if (!identity) return false;
        connection_ = std::make_unique<Connection>(file_, *identity);
    }
    auto& connection = *connection_;
    std::string name(key);
    connection.useLog();
    SQLite::Transaction transaction(connection.database, SQLite::TransactionBehavior::IMMEDIATE);
    if (connection.currentVersion() != connection.version) replaceTable(load(connection), hasChanged);
    connection.makeTable();
    auto& statement = value ? connection.insert : connection.remove;
    if (!statement) {
        statement.emplace(connection.database,
                          value ? "INSERT OR REPLACE INTO defaults (key, kind, value) VALUES (?, ?, ?)"
                                : "DELETE FROM defaults WHERE key = ?");
    }
    (void)statement->tryReset();
    statement->clearBindings();
    statement->bindNoCopy(1, name);
    if (value) {
        statement->bindNoCopy(2, kinds[value->index()]);
        bindValue(*statement, 3, *value);
    }
    (void)statement->exec();
    (void)statement->tryReset();
    statement->clearBindings();
    // All memory is taken before the commit: what is stored is in the table, too.
    DefaultsValue copy = value.value_or(DefaultsValue());
    const fs::path log = logOf(file_);
    if (value) {
        const std::unique_lock lock(tableMutex_);
        table_.reserve(table_.size() + 1);
    }
    // Until the table has what the file has: should the file not be found again behind the commit, it is read anew.
    const auto version = std::exchange(connection.version, -1);
    transaction.commit();
    connection.hasTable = true;
    connection.log = identityOf(log);
    // Written to a file that is not there any more, it would be lost.
    if (identityOf(file_) != connection.identity) return false;

    connection.version = version;
    hasChanged = true;
    const std::unique_lock lock(tableMutex_);
    if (!value) {
        table_.erase(name);
    } else {
        table_.insert_or_assign(std::move(name), std::move(copy));
    }
    return true;
}

void SQLiteUserDefaults::makeFile() const {
    makeFolders(file_.parent_path());
    // SQLite gives its log the rights of the file. Another process may have been faster.
    const FileDescriptor made(::open(file_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!made && errno != EEXIST) failWithSystemError(file_.parent_path(), errno);
}

// ---- changes

void SQLiteUserDefaults::post() const {
    NotificationCenter::standard().post(userDefaultsDidChangeNotification, this);
}

void SQLiteUserDefaults::watch() {
    watching_ = platform::watchFile(nullptr, file_, [weak = weak_from_this(), followUp = std::make_shared<FollowUp>()] {
        if (const auto self = weak.lock()) self->fileMayHaveChanged(followUp);
    });
    // Also what changed between reading and watching.
    (void)reload(std::unique_lock(databaseMutex_));
}

void SQLiteUserDefaults::fileMayHaveChanged(const std::shared_ptr<FollowUp>& followUp) {
    constexpr double firstDelay = 0.01;
    // Many events come at once; the first one is looked into, and then whatever came within some milliseconds.
    if (followUp->isDue) return;
    followUp->isDue = true;
    askAgain(followUp, firstDelay);
    reloadUnlessBusy();
}

void SQLiteUserDefaults::askAgain(const std::shared_ptr<FollowUp>& followUp, double seconds) {
    constexpr double longest = 4;
    constexpr double growth = 4;
    if (seconds > longest) return;
    followUp->timer = platform::mainQueue()->scheduleAfter(
        seconds, [weak = weak_from_this(), owner = std::weak_ptr(followUp), seconds] {
            const auto self = weak.lock();
            const auto again = owner.lock();
            if (!self || !again) return;
            again->isDue = false;
            self->askAgain(again, seconds * growth);
            self->reloadUnlessBusy();
        });
}

}  // namespace kestrel
