#pragma once

#include <cstddef>

/// SQLite under failures: of its memory, and of the files that it writes.
namespace kestrel::faults {

/// Whether the system gives watches on files. Taking one back takes it milliseconds, and there are thousands of
/// failures.
extern bool givesWatches;

/// Once, before SQLite is used.
void installSQLiteFaults();

/// While it lives, one allocation of SQLite fails: the first one is 1; for 0 none does.
class FailingSQLiteMemory {
  public:
    explicit FailingSQLiteMemory(std::size_t which) noexcept;
    FailingSQLiteMemory(const FailingSQLiteMemory&) = delete;
    FailingSQLiteMemory& operator=(const FailingSQLiteMemory&) = delete;
    ~FailingSQLiteMemory();
    [[nodiscard]] bool hasFailed() const noexcept;
};

/// What is done with files, in groups that fail alike.
enum class FileOperation { open, write, sync, truncate, lock, read };

/// While it lives, one operation of a kind fails, with a code of SQLite.
class FailingFile {
  public:
    FailingFile(FileOperation operation, int code, std::size_t which) noexcept;
    FailingFile(const FailingFile&) = delete;
    FailingFile& operator=(const FailingFile&) = delete;
    ~FailingFile();
    [[nodiscard]] bool hasFailed() const noexcept;
};

}  // namespace kestrel::faults
