#include <fcntl.h>
#include <fmt/format.h>
#include <host/store/schema.h>
#include <host/store/store.h>
#include <kestrel/foundation/uuid.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace kestrel::host {
namespace {

/// How long to wait for another process that writes, in milliseconds.
constexpr int busyTimeout = 5000;

/// The file's absolute path: SQLite gives some names, such as ":memory:", a meaning of their own.
std::string pathForSQLite(const std::filesystem::path& file) {
    return std::filesystem::absolute(file).native();
}

int pragma(SQLite::Database& database, const char* name) {
    return database.execAndGet(fmt::format("PRAGMA {}", name)).getInt();
}

/// The version of the schema that a database has, 0 for an empty one.
int checkedVersion(SQLite::Database& database, const std::filesystem::path& file) {
    const int version = pragma(database, "user_version");
    const int application = pragma(database, "application_id");
    const bool isEmpty = database.execAndGet("SELECT count(*) FROM sqlite_schema").getInt() == 0;
    const bool isOurs =
        application == schemaApplicationID || (application == 0 && (isEmpty || version > schemaVersion));
    if (!isOurs || version < 0 || (!isEmpty && version == 0)) {
        throw Failure(fmt::format("{}: is a database of another program", file.native()));
    }
    if (version > schemaVersion) {
        throw Failure(
            fmt::format("{}: was written by a newer version of kestrel: its schema is version {}, this one "
                        "knows {}",
                        file.native(), version, schemaVersion));
    }
    return version;
}

/// A Failure for a database of an earlier version.
void requireCurrentSchema(SQLite::Database& database, const std::filesystem::path& file) {
    const int version = checkedVersion(database, file);
    if (version == 0) throw Failure(fmt::format("{}: is an empty database; `kestrel import` fills it", file.native()));
    if (version < schemaVersion) {
        throw Failure(
            fmt::format("{}: is not of the current schema; `kestrel import` brings it up to date", file.native()));
    }
}

/// A reader needs the files beside a database in WAL mode, and makes them where it may. Where it may not, on a medium
/// for reading only, a database that nobody is writing is read as it is.
SQLite::Database openForReading(const std::filesystem::path& file) {
    const std::string path = pathForSQLite(file);
    std::error_code problem;
    if (!std::filesystem::exists(path, problem)) throw DatabaseMissing(file.native());
    if (std::filesystem::is_directory(path, problem))
        throw Failure(fmt::format("{}: is a folder, no database", file.native()));
    const std::string folder = std::filesystem::path(path).parent_path().native();
    const bool isFrozen = ::access(folder.c_str(), W_OK) != 0 && !std::filesystem::exists(path + "-wal", problem);
    if (!isFrozen) return SQLite::Database(path, SQLite::OPEN_READONLY, busyTimeout);
    std::string uri = "file:";
    for (const char c : path) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/';
        uri += isPlain ? std::string(1, c) : fmt::format("%{:02x}", static_cast<unsigned char>(c));
    }
    return SQLite::Database(uri + "?immutable=1", SQLite::OPEN_READONLY | SQLite::OPEN_URI, busyTimeout);
}

/// Whether there is a file. A link counts as such: a database is not made where it points to.
bool isTaken(const std::filesystem::path& file) {
    std::error_code problem;
    return std::filesystem::exists(std::filesystem::symlink_status(file, problem));
}

/// A Failure when SQLite would take files that an earlier database of the name has left for those of a new one.
void refuseLeftovers(const std::filesystem::path& file) {
    for (const char* suffix : {"-wal", "-journal"}) {
        const std::filesystem::path left = file.native() + suffix;
        std::error_code problem;
        const auto size = std::filesystem::file_size(left, problem);
        if (!problem && size > 0)
            throw Failure(fmt::format("{}: is left of a database that is gone; remove it first", left.native()));
    }
}

/// Makes an empty file for a new database, when there is none and that is wanted; empty when there is one.
std::filesystem::path makeUnfinished(const std::filesystem::path& file, WritingStore::WhenMissing whenMissing) {
    if (whenMissing == WritingStore::WhenMissing::fail) {
        std::error_code problem;
        if (!std::filesystem::exists(file, problem)) throw DatabaseMissing(file.native());
        return {};
    }
    if (isTaken(file)) return {};
    if (!file.has_filename()) throw Failure(fmt::format("\"{}\" is no name of a file", file.native()));
    refuseLeftovers(file);
    auto unfinished = std::filesystem::absolute(file).replace_filename(".kestrel-" + UUID::random().text());
    const int descriptor = ::open(unfinished.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) throw Failure(fmt::format("{}: cannot be made: {}", file.native(), std::strerror(errno)));
    ::close(descriptor);
    return unfinished;
}

/// Gives a new database its name. A Failure when somebody else's file has it.
void giveName(const std::filesystem::path& unfinished, const std::filesystem::path& file) {
    if (!isTaken(file)) refuseLeftovers(file);
    if (::renameat2(AT_FDCWD, unfinished.c_str(), AT_FDCWD, file.c_str(), RENAME_NOREPLACE) == 0) return;
    // Some file systems of a network do not rename like that. Whoever made the file removes its first name.
    if (errno == EINVAL && ::link(unfinished.c_str(), file.c_str()) == 0) return;
    if (errno == EEXIST)
        throw Failure(fmt::format("{}: somebody else has made it meanwhile; nothing was written", file.native()));
    throw Failure(fmt::format("{}: cannot be made: {}", file.native(), std::strerror(errno)));
}

void setJournalMode(SQLite::Database& database, const char* mode, const std::filesystem::path& file) {
    const std::string set = database.execAndGet(fmt::format("PRAGMA journal_mode = {}", mode)).getString();
    if (set != mode) throw Failure(fmt::format("{}: cannot be put into journal mode {}", file.native(), mode));
}

}  // namespace

ReadingConnection::ReadingConnection(const std::filesystem::path& file)
    : name_(file), file_(std::filesystem::absolute(file)), database_(openForReading(file)) {
    struct stat status{};
    if (::stat(file_.c_str(), &status) != 0) return;
    device_ = status.st_dev;
    inode_ = status.st_ino;
}

bool ReadingConnection::isCurrent() const {
    struct stat status{};
    return ::stat(file_.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

std::int64_t ReadingConnection::dataVersion() {
    return database_.execAndGet("PRAGMA data_version").getInt64();
}

void ReadingConnection::checkSchema() {
    requireCurrentSchema(database_, name_);
}

ReadingStore::ReadingStore(const std::filesystem::path& file) : database_(openForReading(file)), snapshot_(database_) {
    requireCurrentSchema(database_, file);
}

WritingStore::WritingStore(const std::filesystem::path& file, WhenMissing whenMissing)
    : file_(file), unfinished_(makeUnfinished(file, whenMissing)) {
    const bool isNew = !unfinished_.empty();
    try {
        database_.emplace(pathForSQLite(isNew ? unfinished_ : file), SQLite::OPEN_READWRITE, busyTimeout);
        // Before anything is written: the database may be somebody else's.
        (void)checkedVersion(*database_, file);
        // A new database is thrown away when it is not finished: it needs no journal on disk until it is.
        setJournalMode(*database_, isNew ? "memory" : "wal", file);
        database_->exec("PRAGMA foreign_keys = ON");
        // In kibibytes: a whole import stays in memory.
        database_->exec("PRAGMA cache_size = -65536");
        transaction_.emplace(*database_, SQLite::TransactionBehavior::IMMEDIATE);
        // Again: somebody else may have been faster.
        const int version = checkedVersion(*database_, file);
        if (version < schemaVersion) migrateSchema(*database_, version);
    } catch (...) {
        close();
        throw;
    }
}

WritingStore::~WritingStore() {
    close();
}

void WritingStore::close() noexcept {
    transaction_.reset();
    database_.reset();
    if (unfinished_.empty()) return;
    for (const char* suffix : {"", "-wal", "-shm"}) {
        std::error_code ignored;
        std::filesystem::remove(unfinished_.native() + suffix, ignored);
    }
}

void WritingStore::commit() {
    transaction_->commit();
    transaction_.reset();
    if (!unfinished_.empty()) setJournalMode(*database_, "wal", file_);
    database_.reset();
    if (!unfinished_.empty()) giveName(unfinished_, file_);
}

int checkedSchemaVersion(const std::filesystem::path& file) {
    return withDatabase(file, [&] {
        SQLite::Database database = openForReading(file);
        return checkedVersion(database, file);
    });
}

Failure databaseFailure(const std::filesystem::path& file, const SQLite::Exception& problem) {
    if (problem.getErrorCode() == SQLITE_NOTADB) return Failure(fmt::format("{}: is no database", file.native()));
    return Failure(fmt::format("{}: {}", file.native(), problem.what()));
}

}  // namespace kestrel::host
