#include <gtest/gtest.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>
#include <sqlite3.h>

#include <filesystem>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "../temporary_folder.h"
#include "sqlite_faults.h"
#include "sweep.h"

// Preferences when memory runs out, the program's or SQLite's, or the disk fails: a write is durable or changes
// nothing, in memory and in the file, and the next one succeeds.
namespace {

using namespace kestrel;
using faults::FailingAllocation;
using faults::FailingFile;
using faults::FailingSQLiteMemory;
using faults::FileOperation;
using test::TemporaryFolder;
namespace fs = std::filesystem;

using Content = std::map<std::string, DefaultsValue>;

Content contentOf(const UserDefaultsStore& store) {
    Content content;
    for (const std::string& key : store.keys())
        content.emplace(key, store.object(key).value());
    return content;
}

const std::string longText(3000, 'x');

struct Change {
    const char* name;
    std::string key;
    std::optional<DefaultsValue> value;
};

const std::vector<Change>& changes() {
    static const std::vector<Change> all{
        {"a new value", "a name that is too long to lie in the text itself", longText},
        {"another value", "text", std::string("short")},
        {"no value", "number", std::nullopt},
        {"data", "data", Data{.bytes = std::vector<std::byte>(20'000)}},
    };
    return all;
}

std::expected<void, PlatformError> perform(UserDefaultsStore& store, const Change& change) {
    return change.value ? store.set(change.key, *change.value) : store.removeObject(change.key);
}

Content changed(Content content, const Change& change) {
    content.erase(change.key);
    if (change.value) content.emplace(change.key, *change.value);
    return content;
}

/// Lets each failure there is happen while a store is changed. `Failing` is made of its number.
template <class MakeFailing>
void checkChanges(MakeFailing makeFailing) {
    for (const Change& change : changes()) {
        SCOPED_TRACE(change.name);
        std::size_t failures = 0;
        for (std::size_t which = 1;; ++which) {
            SCOPED_TRACE(which);
            const TemporaryFolder folder;
            const fs::path file = folder.path() / "defaults.db";
            const auto store = SQLiteUserDefaults::open(file).value();
            ASSERT_TRUE(store->set("text", longText).has_value());
            ASSERT_TRUE(store->set("number", std::int64_t{42}).has_value());
            const Content before = contentOf(*store);
            const Content after = changed(before, change);

            bool isDone = false;
            bool hasFailed = false;
            // Each change is made with all that the store has made ready, and with nothing.
            const auto fresh = which % 2 == 0 ? SQLiteUserDefaults::open(file).value() : store;
            {
                const auto failing = makeFailing(which);
                try {
                    isDone = perform(*fresh, change).has_value();
                } catch (const std::bad_alloc&) {
                }
                hasFailed = failing->hasFailed();
            }
            ASSERT_TRUE(isDone || hasFailed);
            ASSERT_TRUE(contentOf(*fresh) == (isDone ? after : before)) << "in memory, " << isDone;
            {
                const auto other = SQLiteUserDefaults::open(file);
                ASSERT_TRUE(other.has_value()) << other.error().localizedDescription;
                ASSERT_TRUE(contentOf(**other) == (isDone ? after : before)) << "in the file, " << isDone;
            }
            // No lock is held, and the next change is made.
            std::expected<void, PlatformError> again;
            std::thread([&] { again = perform(*fresh, change); }).join();
            ASSERT_TRUE(again.has_value()) << again.error().localizedDescription;
            ASSERT_TRUE(contentOf(*fresh) == after);
            const auto reopened = SQLiteUserDefaults::open(file);
            ASSERT_TRUE(reopened.has_value()) << reopened.error().localizedDescription;
            ASSERT_TRUE(contentOf(**reopened) == after);
            // Twice in a row, for both ways of making the change.
            if (hasFailed) {
                failures = which;
            } else if (which > failures + 1) {
                break;
            }
        }
        EXPECT_GT(failures, 0U);
    }
}

/// The same while a store is opened for the first time, and makes its file.
template <class MakeFailing>
void checkOpening(MakeFailing makeFailing, bool isThere) {
    const TemporaryFolder folder;
    for (std::size_t which = 1;; ++which) {
        SCOPED_TRACE(which);
        const fs::path file = folder.path() / std::to_string(which) / "defaults.db";
        if (isThere) {
            ASSERT_TRUE(SQLiteUserDefaults::open(file).value()->set("text", longText).has_value());
        }
        bool hasFailed = false;
        bool isOpen = false;
        bool isWritten = false;
        {
            const auto failing = makeFailing(which);
            try {
                if (const auto opened = SQLiteUserDefaults::open(file)) {
                    isOpen = true;
                    isWritten = (*opened)->set("number", std::int64_t{42}).has_value();
                }
            } catch (const std::bad_alloc&) {
            }
            hasFailed = failing->hasFailed();
        }
        ASSERT_TRUE((isOpen && isWritten) || hasFailed);
        const auto store = SQLiteUserDefaults::open(file);
        ASSERT_TRUE(store.has_value()) << store.error().localizedDescription;
        EXPECT_EQ((*store)->object("text").has_value(), isThere);
        EXPECT_EQ((*store)->object("number").has_value(), isWritten);
        ASSERT_TRUE((*store)->set("number", std::int64_t{43}).has_value());
        if (!hasFailed) {
            EXPECT_GT(which, 1U);
            break;
        }
    }
}

const auto failingAllocation = [](std::size_t which) { return std::make_unique<FailingAllocation>(which); };
const auto failingSQLiteMemory = [](std::size_t which) { return std::make_unique<FailingSQLiteMemory>(which); };

TEST(Preferences, surviveEachFailureOfMemory) {
    checkChanges(failingAllocation);
    checkOpening(failingAllocation, false);
    checkOpening(failingAllocation, true);
}

TEST(Preferences, leaveNothingBehindAtEachFailureOfMemory) {
    const TemporaryFolder folder;
    const auto store = SQLiteUserDefaults::open(folder.path() / "defaults.db").value();
    ASSERT_TRUE(store->set("text", longText).has_value());
    const std::size_t failures = faults::failEach([&](std::size_t which) {
        bool hasFailed = false;
        {
            const FailingAllocation failing(which);
            try {
                (void)store->set("text", std::string(which % 2 == 0 ? 100 : 200, 'y'));
            } catch (const std::bad_alloc&) {
            }
            hasFailed = failing.hasFailed();
        }
        EXPECT_TRUE(store->set("text", longText).has_value());
        return hasFailed;
    });
    EXPECT_GT(failures, 1U);
}

class WithoutWatches {
  public:
    WithoutWatches() { faults::givesWatches = false; }
    WithoutWatches(const WithoutWatches&) = delete;
    WithoutWatches& operator=(const WithoutWatches&) = delete;
    ~WithoutWatches() { faults::givesWatches = true; }
};

TEST(Preferences, surviveEachFailureOfMemoryOfTheDatabase) {
    const WithoutWatches withoutWatches;
    checkChanges(failingSQLiteMemory);
    checkOpening(failingSQLiteMemory, false);
    checkOpening(failingSQLiteMemory, true);
}

TEST(Preferences, surviveEachFailureOfTheDisk) {
    const WithoutWatches withoutWatches;
    struct Kind {
        const char* name;
        FileOperation operation;
        int code;
    };
    static constexpr Kind kinds[] = {
        {"a full disk", FileOperation::write, SQLITE_FULL},
        {"a write", FileOperation::write, SQLITE_IOERR_WRITE},
        {"a sync", FileOperation::sync, SQLITE_IOERR_FSYNC},
        {"a truncation", FileOperation::truncate, SQLITE_IOERR_TRUNCATE},
        {"an opening", FileOperation::open, SQLITE_CANTOPEN},
    };
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const auto failing = [&](std::size_t which) {
            return std::make_unique<FailingFile>(kind.operation, kind.code, which);
        };
        // What is there already is neither opened nor cut.
        if (kind.operation == FileOperation::write || kind.operation == FileOperation::sync) checkChanges(failing);
        if (kind.operation == FileOperation::truncate) continue;
        checkOpening(failing, false);
        checkOpening(failing, true);
    }
}

}  // namespace
