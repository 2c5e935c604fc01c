#include "support.h"

#include <kestrel/platform/linux/sqlite_user_defaults.h>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <atomic>
#include <bit>
#include <charconv>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>

namespace kestrel {
namespace {

using test::Program;
using test::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

constexpr double infinite = std::numeric_limits<double>::infinity();

std::uint64_t bits(double number) {
    return std::bit_cast<std::uint64_t>(number);
}

/// Of each kind, with what is hard to keep.
std::vector<DefaultsValue> hardValues() {
    std::string text("a\0b — ü", 10);
    Data data;
    for (int byte = 0; byte < 256; ++byte)
        data.bytes.push_back(static_cast<std::byte>(byte));
    return {std::string(),
            text,
            std::string("12"),
            std::string("\xff not UTF-8"),
            std::string(100'000, 'x'),
            Data(),
            data,
            std::numeric_limits<std::int64_t>::min(),
            std::numeric_limits<std::int64_t>::max(),
            std::int64_t{1},
            1.0,
            0.1,
            0.0,
            -0.0,
            5e-324,
            std::numeric_limits<double>::max(),
            infinite,
            -infinite,
            std::bit_cast<double>(0x7ff8'0000'0000'0000U),
            std::bit_cast<double>(0xfff8'0000'dead'beefU),
            true,
            false,
            Date(0),
            Date(-0.0),
            Date(757'382'400.123456),
            Date(infinite),
            *URL::parse("https://example.com/a%20b?c#d")};
}

void expectSame(const std::optional<DefaultsValue>& actual, const DefaultsValue& expected, const std::string& what) {
    ASSERT_TRUE(actual) << what;
    ASSERT_EQ(actual->index(), expected.index()) << what;
    if (const auto* number = std::get_if<double>(&expected)) {
        EXPECT_EQ(bits(std::get<double>(*actual)), bits(*number)) << what;
    } else if (const auto* date = std::get_if<Date>(&expected)) {
        EXPECT_EQ(bits(std::get<Date>(*actual).sinceReferenceDate()), bits(date->sinceReferenceDate())) << what;
    } else {
        EXPECT_EQ(*actual, expected) << what;
    }
}

class UserDefaults : public ::testing::Test {
  protected:
    std::shared_ptr<UserDefaultsStore> open() { return open(file); }
    static std::shared_ptr<UserDefaultsStore> open(const fs::path& path) {
        auto opened = platform::openUserDefaults(path);
        if (!opened) throw std::runtime_error(opened.error().localizedDescription);
        return *opened;
    }
    /// Counts what is posted about a store.
    static AnyCancellable counting(const std::shared_ptr<UserDefaultsStore>& store, int& count) {
        return NotificationCenter::standard()
            .notifications(userDefaultsDidChangeNotification, store.get())
            .sink([&count](const Notification&) { ++count; });
    }

    TemporaryFolder scratch{};
    fs::path file = scratch.path() / "new folder/within/defaults.sqlite";
};

/// Someone without rights, where the test runs as the one who has them all.
class WithoutRights {
  public:
    WithoutRights() {
        if (geteuid() == 0) isChanged_ = seteuid(65534) == 0;
    }
    ~WithoutRights() {
        if (isChanged_ && seteuid(0) != 0) std::abort();
    }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;

  private:
    bool isChanged_ = false;
};

TEST_F(UserDefaults, keepValuesOfEveryKindBitForBit) {
    const auto values = hardValues();
    {
        const auto store = open();
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_TRUE(store->set("key" + std::to_string(i), values[i]));
            expectSame(store->object("key" + std::to_string(i)), values[i], "in memory " + std::to_string(i));
        }
        ASSERT_TRUE(store->set(std::string_view("with\0zero", 9), true));
        ASSERT_TRUE(store->set("", std::string("of no name")));
    }
    const auto again = open();
    for (std::size_t i = 0; i < values.size(); ++i)
        expectSame(again->object("key" + std::to_string(i)), values[i], "read again " + std::to_string(i));
    EXPECT_TRUE(again->boolean(std::string_view("with\0zero", 9)));
    EXPECT_FALSE(again->object("with"));
    EXPECT_EQ(again->keys().size(), values.size() + 2);
    EXPECT_EQ(again->keys().front(), "");

    ASSERT_TRUE(again->removeObject("key0"));
    ASSERT_TRUE(again->removeObject("never there"));
    EXPECT_FALSE(again->object("key0"));
    EXPECT_FALSE(open()->object("key0"));
}

TEST_F(UserDefaults, readNumbersTextsAndBooleansAsEachOther) {
    const auto store = open();
    const auto stored = [&](DefaultsValue value) {
        EXPECT_TRUE(store->set("key", std::move(value)));
        return "key";
    };
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(store->integer("absent"), 0);
    EXPECT_EQ(store->doubleValue("absent"), 0);
    EXPECT_EQ(store->boolean("absent"), false);
    EXPECT_FALSE(store->url("absent"));

    EXPECT_EQ(store->integer(stored(-2.9)), -2);
    EXPECT_EQ(store->integer(stored(infinite)), largest);
    EXPECT_EQ(store->integer(stored(0x1p63)), largest);
    EXPECT_EQ(store->integer(stored(-1e300)), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(store->integer(stored(std::nan(""))), 0);
    EXPECT_EQ(store->integer(stored(true)), 1);
    EXPECT_EQ(store->integer(stored(std::string("9223372036854775807"))), largest);
    EXPECT_EQ(store->integer(stored(std::string("99999999999999999999"))), largest);
    EXPECT_EQ(store->integer(stored(std::string("+12.7e1"))), 127);
    for (const auto* text : {"12 apples", "nan", "0x10", "", "+-1", "-", "infinity"})
        EXPECT_EQ(store->integer(stored(std::string(text))), 0) << text;
    EXPECT_EQ(store->integer(stored(Date(5))), 0);

    EXPECT_EQ(store->doubleValue(stored(std::int64_t{3})), 3);
    EXPECT_EQ(store->doubleValue(stored(std::string("-0.25"))), -0.25);
    EXPECT_EQ(store->doubleValue(stored(std::string("1e999"))), std::numeric_limits<double>::max());
    EXPECT_EQ(store->doubleValue(stored(std::string("-1e-999"))), 0);
    EXPECT_EQ(store->floatValue(stored(1e300)), std::numeric_limits<float>::max());
    EXPECT_EQ(store->floatValue(stored(double{0.1F})), 0.1F);

    for (const auto* text : {"true", "YES", "1"})
        EXPECT_TRUE(store->boolean(stored(std::string(text)))) << text;
    for (const auto* text : {"2", "on", "", "truely", "no"})
        EXPECT_FALSE(store->boolean(stored(std::string(text)))) << text;
    EXPECT_TRUE(store->boolean(stored(-0.5)));
    EXPECT_FALSE(store->boolean(stored(std::int64_t{0})));

    EXPECT_EQ(store->url(stored(std::string("HTTPS://Example.com")))->text(), "https://Example.com");
    EXPECT_EQ(store->url(stored(std::string("/home/a b/ü#1")))->text(), "file:///home/a%20b/%C3%BC%231");
    EXPECT_FALSE(store->url(stored(std::string("no url"))));
}

TEST_F(UserDefaults, tellOfChangesAndOnlyOfChanges) {
    const auto store = open();
    const auto other = open(scratch.path() / "other.sqlite");
    int count = 0;
    const auto counted = counting(store, count);
    ASSERT_TRUE(store->set("number", std::nan("")));
    ASSERT_TRUE(store->set("number", std::nan("")));
    ASSERT_TRUE(other->set("number", 1.0));
    EXPECT_EQ(count, 1);
    ASSERT_TRUE(store->set("number", 0.0));
    ASSERT_TRUE(store->set("number", -0.0));
    ASSERT_TRUE(store->set("number", std::int64_t{0}));
    EXPECT_EQ(count, 4) << "another sign or another kind is another value";
    ASSERT_TRUE(store->removeObject("absent"));
    EXPECT_EQ(count, 4);
    ASSERT_TRUE(store->removeObject("number"));
    EXPECT_EQ(count, 5);

    // Whoever hears of it may use the store.
    const auto answering = NotificationCenter::standard()
                               .notifications(userDefaultsDidChangeNotification, store.get())
                               .sink([&](const Notification&) { ASSERT_TRUE(store->set("heard", true)); });
    ASSERT_TRUE(store->set("said", true));
    EXPECT_EQ(store->keys(), (std::vector<std::string>{"heard", "said"}));
    test::runFor(0.1);
    EXPECT_EQ(count, 7) << "its own writes are no news later on";
}

TEST_F(UserDefaults, areForTheUserAlone) {
    const auto before = umask(0);
    ASSERT_TRUE(open()->set("key", true));
    umask(before);
    const auto others = fs::perms::group_all | fs::perms::others_all;
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(scratch.path())) {
        EXPECT_EQ(entry.status().permissions() & others, fs::perms::none) << entry.path();
        ++files;
    }
    EXPECT_GE(files, 3);
}

// ---- other processes

// Writes keys and values in turns, one after each line that it reads, and says "ok" or the error.
const test::AddPart writing("defaults-writer", [](const std::vector<std::string>& arguments) {
    const auto store = platform::openUserDefaults(arguments.at(0));
    if (!store) return 1;
    for (std::size_t i = 1; i + 1 < arguments.size(); i += 2) {
        if (!(*store)->set(arguments[i], arguments[i + 1])) return 1;
    }
    return 0;
});

TEST_F(UserDefaults, noticeWhatOtherProcessesWrite) {
    const auto store = open();
    int count = 0;
    const auto counted = counting(store, count);
    const auto write = [&](const std::string& key, const std::string& value) {
        EXPECT_EQ(test::play("defaults-writer", {file.native(), key, value}), "");
    };
    const auto reads = [&](const std::string& key, const std::string& value) {
        return store->object(key) == DefaultsValue(value);
    };
    // The folder is not there yet when the store begins to watch.
    write("first", "1");
    EXPECT_TRUE(test::runUntil([&] { return reads("first", "1"); }));
    EXPECT_EQ(count, 1);
    write("second", "2");
    EXPECT_TRUE(test::runUntil([&] { return reads("second", "2"); }));
    EXPECT_EQ(count, 2) << "once for each change";
    write("second", "2");
    test::runFor(0.3);
    EXPECT_EQ(count, 2) << "nothing has changed";

    // Without the loop: with the next write.
    write("third", "3");
    EXPECT_FALSE(store->object("third"));
    ASSERT_TRUE(store->set("own", true));
    EXPECT_TRUE(reads("third", "3"));

    // The file is replaced, deleted, and made again.
    const auto another = scratch.path() / "another.sqlite";
    EXPECT_EQ(test::play("defaults-writer", {another.native(), "first", "replaced"}), "");
    fs::rename(another, file);
    EXPECT_TRUE(test::runUntil([&] { return reads("first", "replaced"); }));
    EXPECT_THAT(store->keys(), ElementsAre("first"));
    ASSERT_TRUE(store->set("own", std::string("again")));
    EXPECT_THAT(open()->keys(), ElementsAre("first", "own")) << "written to the file that is there";
    fs::remove_all(scratch.path() / "new folder");
    EXPECT_TRUE(test::runUntil([&] { return store->keys().empty(); }));
    write("late", "4");
    EXPECT_TRUE(test::runUntil([&] { return reads("late", "4"); }));
    fs::remove_all(scratch.path() / "new folder");
    ASSERT_TRUE(store->set("own", true));
    EXPECT_THAT(open()->keys(), ElementsAre("own"));
}

// Writes on a disk that takes its time: what is written can be seen in the file long before the change is committed.
template <class... Arguments>
ssize_t slowly(ssize_t (*write)(Arguments...), Arguments... arguments) {
    const auto written = write(arguments...);
    if (written >= 512) usleep(300'000);
    return written;
}
const test::AddPart slowWriting("slow-defaults-writer", [](const std::vector<std::string>& arguments) {
    auto* const files = sqlite3_vfs_find(nullptr);
    const auto replace = [files](const char* name, auto* function) {
        (void)files->xSetSystemCall(files, name, reinterpret_cast<sqlite3_syscall_ptr>(function));
    };
    replace("write", +[](int file, const void* bytes, size_t size) { return slowly(&write, file, bytes, size); });
    replace(
        "pwrite", +[](int file, const void* bytes, size_t size, off_t place) {
            return slowly(&pwrite, file, bytes, size, place);
        });
    replace(
        "pwrite64", +[](int file, const void* bytes, size_t size, off_t place) {
            return slowly(&pwrite, file, bytes, size, place);
        });
    return test::parts().at("defaults-writer")(arguments);
});

TEST_F(UserDefaults, noticeWhatSlowDisksCommitLongAfterTheFileHasChanged) {
    const auto store = open();
    ASSERT_TRUE(store->set("key", std::string("old")));
    int count = 0;
    const auto counted = counting(store, count);
    Program writer(test::asPart("slow-defaults-writer", {file.native(), "key", "new"}));
    EXPECT_TRUE(test::runUntil([&] { return store->object("key") == DefaultsValue(std::string("new")); }));
    EXPECT_EQ(writer.wait(), 0);
    EXPECT_EQ(count, 1);
}

TEST_F(UserDefaults, loseNoKeyWhenManyProcessesWriteAtOnce) {
    constexpr int writers = 4;
    constexpr int each = 40;
    std::vector<std::unique_ptr<Program>> programs;
    for (int writer = 0; writer < writers; ++writer) {
        // None of them finds the file: each one tries to make it.
        std::vector<std::string> arguments{file.native()};
        for (int i = 0; i < each; ++i) {
            arguments.push_back(std::to_string(writer) + '/' + std::to_string(i));
            arguments.push_back("own");
            arguments.emplace_back("common");
            arguments.push_back(std::to_string(i));
        }
        programs.push_back(std::make_unique<Program>(test::asPart("defaults-writer", std::move(arguments))));
    }
    for (const auto& program : programs)
        EXPECT_EQ(program->wait(), 0);
    const auto store = open();
    EXPECT_EQ(store->keys().size(), std::size_t{writers * each + 1});
    EXPECT_EQ(store->integer("common"), each - 1) << "the last write of one of them counts";
}

// Kills a writer many times, and looks for what it said that it had stored. A process without other threads, so that it
// may fork.
const test::AddPart killing("defaults-killer", [](const std::vector<std::string>& arguments) {
    const fs::path file = arguments.at(0);
    const int kills = std::stoi(arguments.at(1));
    constexpr std::int64_t keyCount = 61;
    std::mt19937 random(4711);
    std::map<std::string, std::int64_t> acknowledged;
    std::int64_t total = 0;
    for (int i = 0; i < kills; ++i) {
        int ends[2] = {};
        if (pipe(ends) != 0) return 2;
        const pid_t writer = fork();
        if (writer == 0) {
            const auto store = platform::openUserDefaults(file);
            if (!store) _exit(3);
            for (std::int64_t n = total;; ++n) {
                if (!(*store)->set("key" + std::to_string(n % keyCount), n)) _exit(4);
                if (write(ends[1], &n, sizeof n) != sizeof n) _exit(5);
            }
        }
        close(ends[1]);
        // Some die before they have opened the file, most in the middle of a write.
        usleep(std::uniform_int_distribution<useconds_t>(0, 15'000)(random));
        kill(writer, SIGKILL);
        int status = 0;
        waitpid(writer, &status, 0);
        if (WIFEXITED(status)) return std::cout << "the writer ended with " << WEXITSTATUS(status) << '\n', 1;
        for (std::int64_t n = 0; read(ends[0], &n, sizeof n) == sizeof n; total = n + 1)
            acknowledged["key" + std::to_string(n % keyCount)] = n;
        close(ends[0]);

        const auto store = platform::openUserDefaults(file);
        if (!store) return std::cout << store.error().localizedDescription << '\n', 1;
        for (const auto& [key, value] : acknowledged) {
            const auto stored = (*store)->integer(key);
            // The write that was not acknowledged any more may have been done or not.
            const bool isNext = stored == total && key == "key" + std::to_string(total % keyCount);
            if (stored != value && !isNext) return std::cout << key << ": " << stored << " for " << value << '\n', 1;
        }
    }
    std::cout << total << '\n';
    return 0;
});

TEST_F(UserDefaults, loseNothingThatWasStoredWhenTheProcessIsKilled) {
    const auto result = test::play("defaults-killer", {file.native(), "500"});
    std::int64_t writes = 0;
    const auto end = std::from_chars(result.data(), result.data() + result.size(), writes).ptr;
    EXPECT_EQ(end, result.data() + result.size()) << result;
    EXPECT_GT(writes, 100) << "most writers got to write";
}

// ---- what goes wrong

TEST_F(UserDefaults, leaveAFileAloneThatIsNoDatabase) {
    fs::create_directories(file.parent_path());
    const std::string garbage(5'000, '?');
    scratch.write("new folder/within/defaults.sqlite", garbage);
    const auto opened = platform::openUserDefaults(file);
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().domain, "SQLite");
    EXPECT_THAT(opened.error().localizedDescription, HasSubstr(file.native()));
    EXPECT_THAT(opened.error().localizedDescription, HasSubstr("not a database"));

    const auto store = SQLiteUserDefaults::openAnyway(file);
    EXPECT_THAT(store->keys(), IsEmpty());
    const auto stored = store->set("key", true);
    ASSERT_FALSE(stored);
    EXPECT_THAT(stored.error().localizedDescription, HasSubstr("cannot be saved"));
    EXPECT_FALSE(store->object("key"));
    EXPECT_EQ(test::contentsOf(file), garbage);
    fs::remove(file);
    EXPECT_TRUE(store->set("key", true)) << "it comes back when the file is gone";
    EXPECT_TRUE(open()->boolean("key"));

    SQLite::Database(file.native(), SQLite::OPEN_READWRITE).exec("PRAGMA user_version=99");
    const auto newer = platform::openUserDefaults(file);
    ASSERT_FALSE(newer);
    EXPECT_THAT(newer.error().localizedDescription, HasSubstr("newer release"));

    const auto foreign = scratch.path() / "foreign.sqlite";
    SQLite::Database(foreign.native(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("PRAGMA encoding='UTF-16le'; CREATE TABLE defaults (key TEXT PRIMARY KEY, kind TEXT, value)");
    const auto recoded = platform::openUserDefaults(foreign);
    ASSERT_FALSE(recoded) << "bytes that are no text would come back as others";
    EXPECT_THAT(recoded.error().localizedDescription, HasSubstr("UTF-16le"));
}

TEST_F(UserDefaults, sayWhyTheyCannotBeWritten) {
    const auto locked = scratch.path() / "locked";
    fs::create_directories(locked);
    ASSERT_TRUE(open(locked / "old.sqlite")->set("key", std::string("value")));
    fs::permissions(scratch.path(), fs::perms{0755});
    fs::permissions(locked / "old.sqlite", fs::perms{0444});
    fs::permissions(locked, fs::perms{0555});
    const WithoutRights without;
    const auto absent = open(locked / "below/new.sqlite");
    const auto made = absent->set("key", true);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().domain, "POSIX");
    EXPECT_EQ(made.error().code, EACCES);
    EXPECT_THAT(made.error().localizedDescription, HasSubstr((locked / "below").native() + ": Permission denied"));
    EXPECT_FALSE(absent->object("key"));

    const auto old = open(locked / "old.sqlite");
    EXPECT_EQ(old->object("key"), DefaultsValue(std::string("value"))) << "it may be read";
    const auto changed = old->set("key", std::string("other"));
    ASSERT_FALSE(changed);
    EXPECT_THAT(changed.error().localizedDescription, HasSubstr("Permission denied"));
    EXPECT_EQ(old->object("key"), DefaultsValue(std::string("value")));
}

TEST_F(UserDefaults, areAsBeforeWhenTheDiskIsFull) {
    const auto store = open();
    ASSERT_TRUE(store->set("key", std::string("value")));
    int count = 0;
    const auto counted = counting(store, count);
    // No file may grow beyond this: the system refuses in the middle of a write.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    auto limited = before;
    limited.rlim_cur = 200'000;
    auto* const handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limited);
    const auto stored = store->set("key", std::string(1'000'000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    ASSERT_FALSE(stored);
    EXPECT_EQ(stored.error().domain, "SQLite");
    EXPECT_THAT(stored.error().localizedDescription, HasSubstr(file.native()));
    EXPECT_EQ(store->object("key"), DefaultsValue(std::string("value")));
    EXPECT_EQ(count, 0);
    ASSERT_TRUE(store->set("key", std::string("after")));
    EXPECT_EQ(open()->object("key"), DefaultsValue(std::string("after")));
}

TEST_F(UserDefaults, mayBeUsedFromManyThreads) {
    const auto store = open();
    const auto second = open();
    constexpr int each = 25;
    std::atomic<int> finished = 0;
    std::atomic<int> posted = 0;
    const auto counted =
        NotificationCenter::standard().notifications(userDefaultsDidChangeNotification).sink([&](const Notification&) {
            ++posted;
        });
    std::vector<std::jthread> threads;
    for (int writer = 0; writer < 3; ++writer) {
        threads.emplace_back([&, writer] {
            const auto& mine = writer == 0 ? second : store;
            for (int i = 0; i < each; ++i) {
                const auto key = "key" + std::to_string(writer);
                EXPECT_TRUE(mine->set(key, std::int64_t{i}));
                EXPECT_EQ(mine->integer(key), i);
            }
            ++finished;
        });
    }
    for (int reader = 0; reader < 3; ++reader) {
        threads.emplace_back([&] {
            std::int64_t last = 0;
            while (finished < 3) {
                const auto number = store->integer("key1");
                EXPECT_GE(number, last);
                last = number;
                EXPECT_LE(store->keys().size(), 3U);
            }
        });
    }
    EXPECT_TRUE(test::runUntil([&] { return finished == 3; }));
    threads.clear();
    EXPECT_TRUE(test::runUntil([&] { return store->integer("key0") == each - 1; }));
    EXPECT_EQ(store->keys(), (std::vector<std::string>{"key0", "key1", "key2"}));
    EXPECT_GE(posted, 3 * each);
}

TEST(TheStandardUserDefaults, lieInTheFolderOfTheApplication) {
    const TemporaryFolder scratch;
    const test::Variable home("HOME", scratch.path().native());
    platform::setApplicationIdentity({.identifier = "com.example.Crm", .name = "Example"});
    {
        const test::Variable configured("XDG_CONFIG_HOME", "relative");
        EXPECT_EQ(platform::standardUserDefaultsFile(), scratch.path() / ".config/com.example.Crm/defaults.sqlite");
    }
    const test::Variable configured("XDG_CONFIG_HOME", (scratch.path() / "xdg").native());
    const auto file = scratch.path() / "xdg/com.example.Crm/defaults.sqlite";
    EXPECT_EQ(platform::standardUserDefaultsFile(), file);
    platform::setApplicationIdentity({.identifier = "../escape"});
    EXPECT_EQ(platform::standardUserDefaultsFile(), scratch.path() / "xdg/_._escape/defaults.sqlite");
    platform::setApplicationIdentity({});
    EXPECT_EQ(platform::applicationIdentity().identifier, fs::read_symlink("/proc/self/exe").filename());
}

}  // namespace
}  // namespace kestrel
