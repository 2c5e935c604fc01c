#pragma once

#include <kestrel/platform/user_defaults_store.h>
#include <boost/unordered/unordered_flat_map.hpp>
#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>

namespace kestrel {

/// Preferences in a SQLite database of one table, `defaults(key, kind, value)`, with a copy of it in memory.
///
/// Reading takes a shared lock and looks into the copy. Writing goes to the file first, in one transaction that is on
/// the disk when it returns (write-ahead log, synchronous=FULL), and takes in what other processes have written before:
/// of two that write the same key the last one counts, and no other key is lost. While another process is writing, a
/// write waits for it, up to five seconds.
///
/// Other processes' changes are noticed on the default main context: the folder is watched, and the database is asked
/// for its version when something happened there. SQLite writes its log before the change can be seen, and how long
/// before depends on the disk; so it is asked again for some seconds, at growing intervals. Without a running main loop
/// reads show what this process has written, and others' changes from its next write on. A file that is replaced or
/// deleted is noticed in the same way; deleted, nothing is stored any more.
///
/// The first write makes the file, for the user alone, and its folders. A file that may be read but not be written
/// together with its folder is read as it stands.
class SQLiteUserDefaults final : public UserDefaultsStore, public std::enable_shared_from_this<SQLiteUserDefaults> {
    struct Private {};

  public:
    /// An error says why the file that is there cannot be read.
    [[nodiscard]] static std::expected<std::shared_ptr<SQLiteUserDefaults>, PlatformError> open(
        const std::filesystem::path& file);
    /// With a file that cannot be read: empty, until the file becomes readable; a write fails with the reason.
    [[nodiscard]] static std::shared_ptr<SQLiteUserDefaults> openAnyway(const std::filesystem::path& file);

    SQLiteUserDefaults(Private, const std::filesystem::path& file);
    ~SQLiteUserDefaults() override;

    [[nodiscard]] std::optional<DefaultsValue> object(std::string_view key) const override;
    std::expected<void, PlatformError> set(std::string_view key, DefaultsValue value) override;
    std::expected<void, PlatformError> removeObject(std::string_view key) override;
    [[nodiscard]] std::vector<std::string> keys() const override;

    [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }
    /// Reads again what has changed in the file. An error leaves what was read before.
    std::expected<void, PlatformError> refresh();

  private:
    struct TextHash {
        using is_transparent = void;
        [[nodiscard]] std::size_t operator()(std::string_view text) const noexcept {
            return std::hash<std::string_view>{}(text);
        }
    };
    using Table = boost::unordered_flat_map<std::string, DefaultsValue, TextHash, std::equal_to<>>;
    struct Connection;
    struct FollowUp;

    void watch();
    std::optional<PlatformError> reload(std::unique_lock<std::mutex> lock);
    void reloadUnlessBusy();
    void fileMayHaveChanged(const std::shared_ptr<FollowUp>& followUp);
    void askAgain(const std::shared_ptr<FollowUp>& followUp, double seconds);
    void post() const;
    std::expected<void, PlatformError> write(std::string_view key, const std::optional<DefaultsValue>& value);

    // With the database's lock held. They throw what SQLiteCpp throws, and set `hasChanged` when they have changed the
    // copy in memory.
    void bringUpToDate(bool& hasChanged);
    [[nodiscard]] bool store(std::string_view key, const std::optional<DefaultsValue>& value, bool& hasChanged);
    void replaceTable(Table table, bool& hasChanged);
    void makeFile() const;
    [[nodiscard]] static Table load(Connection& connection);
    [[nodiscard]] bool isStored(std::string_view key, const std::optional<DefaultsValue>& value) const;

    const std::filesystem::path file_;
    /// Guards the connection, and is taken before the table's lock.
    std::mutex databaseMutex_;
    std::unique_ptr<Connection> connection_;
    mutable std::shared_mutex tableMutex_;
    Table table_;
    AnyCancellable watching_;
};

}  // namespace kestrel
