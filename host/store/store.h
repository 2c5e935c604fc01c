#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Transaction.h>
#include <host/failure.h>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace kestrel::host {

/// A connection to a database that others write.
class ReadingConnection {
  public:
    /// A Failure when there is no such file.
    explicit ReadingConnection(const std::filesystem::path& file);

    [[nodiscard]] SQLite::Database& database() noexcept { return database_; }
    /// Whether the file is still the one that was opened: it may have been removed, or replaced by another one.
    [[nodiscard]] bool isCurrent() const;
    /// A number that is another one whenever somebody else has changed the database, in this process or not. Within a
    /// snapshot it stays the same.
    [[nodiscard]] std::int64_t dataVersion();
    /// Calls `work` with the database. Everything that it reads is of the same moment, whatever others write meanwhile.
    /// A Failure when this version of the schema does not describe the database.
    template <class Work>
    auto read(Work&& work) {
        const SQLite::Transaction snapshot(database_);
        checkSchema();
        return work(database_);
    }

  private:
    void checkSchema();

    /// As it was given.
    std::filesystem::path name_;
    std::filesystem::path file_;
    SQLite::Database database_;
    /// Of the file when it was opened.
    std::uint64_t device_ = 0;
    std::uint64_t inode_ = 0;
};

/// A database that is open for reading at one moment.
class ReadingStore {
  public:
    /// A Failure when there is no such file, or none that this version of the schema describes.
    explicit ReadingStore(const std::filesystem::path& file);

    [[nodiscard]] SQLite::Database& database() noexcept { return database_; }

  private:
    SQLite::Database database_;
    SQLite::Transaction snapshot_;
};

/// A database that is open for one change, made if it does not exist and brought to the current schema. Without
/// `commit` the file is afterwards as it was before, and there is none if there was none.
///
/// A new database lies under a name of its own, in the same folder, until it is committed: nobody else sees it before,
/// and what somebody else has made meanwhile under the name that it is to have is neither replaced nor removed.
class WritingStore {
  public:
    enum class WhenMissing : std::uint8_t { make, fail };
    /// A Failure when the file is no database of this system, or one of a newer version.
    explicit WritingStore(const std::filesystem::path& file, WhenMissing whenMissing = WhenMissing::make);
    ~WritingStore();
    WritingStore(const WritingStore&) = delete;
    WritingStore& operator=(const WritingStore&) = delete;

    /// Not to be called after `commit`.
    [[nodiscard]] SQLite::Database& database() noexcept { return *database_; }
    /// Closes the database, too. A Failure, and nothing is written, when a new one finds its name taken.
    void commit();

  private:
    /// Takes back what is not committed, and the file that was made for it.
    void close() noexcept;

    std::filesystem::path file_;
    /// Where a new database lies while it is made; empty for one that was there.
    std::filesystem::path unfinished_;
    std::optional<SQLite::Database> database_;
    std::optional<SQLite::Transaction> transaction_;
};

/// The version of the schema that a database has, which may be an earlier one; 0 for an empty one. A Failure when there
/// is no such file, when it is no database of this system, or one of a newer version.
[[nodiscard]] int checkedSchemaVersion(const std::filesystem::path& file);

/// What went wrong, in one line that names the database.
[[nodiscard]] Failure databaseFailure(const std::filesystem::path& file, const SQLite::Exception& problem);

/// Does some work with a database; what SQLite reports becomes a Failure that names the file.
template <class Work>
auto withDatabase(const std::filesystem::path& file, Work&& work) {
    try {
        return work();
    } catch (const SQLite::Exception& problem) {
        throw databaseFailure(file, problem);
    }
}

}  // namespace kestrel::host
