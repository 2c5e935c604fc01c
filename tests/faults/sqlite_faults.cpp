#include "sqlite_faults.h"

#include <sqlite3.h>
#include <cstring>
#include <mutex>
#include <string>

#include "allocations.h"

namespace kestrel::faults {

namespace {

/// Counts down to what fails. SQLite is used by one thread here.
struct Countdown {
    std::size_t left = 0;
    bool hasFailed = false;

    bool isUp() {
        if (left == 0 || --left != 0) return false;
        hasFailed = true;
        return true;
    }
};

Countdown memory;
sqlite3_mem_methods original;

void* failingMalloc(int size) {
    return memory.isUp() ? nullptr : original.xMalloc(size);
}
void* failingRealloc(void* block, int size) {
    return memory.isUp() ? nullptr : original.xRealloc(block, size);
}

// ---- files

Countdown files;
FileOperation failingOperation{};
int failingCode = SQLITE_OK;

bool fails(FileOperation operation) {
    return operation == failingOperation && files.isUp();
}

/// The system's own way to its files.
sqlite3_vfs* system() {
    static sqlite3_vfs* const found = sqlite3_vfs_find("unix");
    return found;
}

/// Before the system's own, which lies right behind it.
struct File {
    sqlite3_file base;

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    const sqlite3_io_methods& methods() { return *real()->pMethods; }
    static File& of(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
};

int closeFile(sqlite3_file* file) {
    return File::of(file).methods().xClose(File::of(file).real());
}
int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 at) {
    if (fails(FileOperation::read)) return failingCode;
    return File::of(file).methods().xRead(File::of(file).real(), bytes, count, at);
}
int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
    if (fails(FileOperation::write)) {
        // Half of it got through.
        (void)File::of(file).methods().xWrite(File::of(file).real(), bytes, count / 2, at);
        return failingCode;
    }
    return File::of(file).methods().xWrite(File::of(file).real(), bytes, count, at);
}
int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    if (fails(FileOperation::truncate)) return failingCode;
    return File::of(file).methods().xTruncate(File::of(file).real(), size);
}
int syncFile(sqlite3_file* file, int flags) {
    if (fails(FileOperation::sync)) return failingCode;
    return File::of(file).methods().xSync(File::of(file).real(), flags);
}
int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
    return File::of(file).methods().xFileSize(File::of(file).real(), size);
}
int lockFile(sqlite3_file* file, int level) {
    if (fails(FileOperation::lock)) return failingCode;
    return File::of(file).methods().xLock(File::of(file).real(), level);
}
int unlockFile(sqlite3_file* file, int level) {
    return File::of(file).methods().xUnlock(File::of(file).real(), level);
}
int isReserved(sqlite3_file* file, int* result) {
    return File::of(file).methods().xCheckReservedLock(File::of(file).real(), result);
}
int control(sqlite3_file* file, int what, void* argument) {
    return File::of(file).methods().xFileControl(File::of(file).real(), what, argument);
}
int sectorSize(sqlite3_file* file) {
    return File::of(file).methods().xSectorSize(File::of(file).real());
}
int characteristics(sqlite3_file* file) {
    return File::of(file).methods().xDeviceCharacteristics(File::of(file).real());
}
int mapShared(sqlite3_file* file, int page, int size, int extend, void volatile** mapped) {
    if (fails(FileOperation::open)) return failingCode;
    return File::of(file).methods().xShmMap(File::of(file).real(), page, size, extend, mapped);
}
int lockShared(sqlite3_file* file, int offset, int count, int flags) {
    if ((flags & SQLITE_SHM_LOCK) != 0 && fails(FileOperation::lock)) return failingCode;
    return File::of(file).methods().xShmLock(File::of(file).real(), offset, count, flags);
}
void barrier(sqlite3_file* file) {
    File::of(file).methods().xShmBarrier(File::of(file).real());
}
int unmapShared(sqlite3_file* file, int deletes) {
    return File::of(file).methods().xShmUnmap(File::of(file).real(), deletes);
}

constexpr sqlite3_io_methods methods{
    .iVersion = 2,
    .xClose = closeFile,
    .xRead = readFile,
    .xWrite = writeFile,
    .xTruncate = truncateFile,
    .xSync = syncFile,
    .xFileSize = sizeOfFile,
    .xLock = lockFile,
    .xUnlock = unlockFile,
    .xCheckReservedLock = isReserved,
    .xFileControl = control,
    .xSectorSize = sectorSize,
    .xDeviceCharacteristics = characteristics,
    .xShmMap = mapShared,
    .xShmLock = lockShared,
    .xShmBarrier = barrier,
    .xShmUnmap = unmapShared,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

int openFile(sqlite3_vfs* /*vfs*/, sqlite3_filename name, sqlite3_file* file, int flags, int* given) {
    file->pMethods = nullptr;
    if (fails(FileOperation::open)) return failingCode;
    const int code = system()->xOpen(system(), name, File::of(file).real(), flags, given);
    if (File::of(file).real()->pMethods != nullptr) file->pMethods = &methods;
    return code;
}

}  // namespace

void installSQLiteFaults() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &original);
    static sqlite3_mem_methods failing = original;
    failing.xMalloc = failingMalloc;
    failing.xRealloc = failingRealloc;
    sqlite3_config(SQLITE_CONFIG_MALLOC, &failing);
    sqlite3_initialize();
    static sqlite3_vfs vfs = *system();
    vfs.zName = "failing";
    vfs.szOsFile += static_cast<int>(sizeof(File));
    vfs.xOpen = openFile;
    sqlite3_vfs_register(&vfs, 1);
}

FailingSQLiteMemory::FailingSQLiteMemory(std::size_t which) noexcept {
    memory = {.left = which};
}
FailingSQLiteMemory::~FailingSQLiteMemory() {
    memory = {};
}
bool FailingSQLiteMemory::hasFailed() const noexcept {
    return memory.hasFailed;
}

FailingFile::FailingFile(FileOperation operation, int code, std::size_t which) noexcept {
    failingOperation = operation;
    failingCode = code;
    files = {.left = which};
}
FailingFile::~FailingFile() {
    files = {};
}
bool FailingFile::hasFailed() const noexcept {
    return files.hasFailed;
}

}  // namespace kestrel::faults
