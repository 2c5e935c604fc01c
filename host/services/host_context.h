#pragma once

#include <host/services/current_user.h>
#include <host/store/record_writer.h>
#include <host/store/store.h>
#include <kestrel/services/system_clock_service.h>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace kestrel::host {

/// What the services over one database share: the file, who looks at it, the clock, and the news of changes.
///
/// The database is opened when it is first needed and stays open for reading, until another file is in its place; a
/// change opens it for itself. What is
/// read in one call is of one moment, and what is changed in one call is changed as a whole or not at all. Calls throw
/// Failure. For use on the main thread.
class HostContext : public std::enable_shared_from_this<HostContext> {
  public:
    /// The clock is asked for the time of changes and, while somebody observes, for a tick each second; it has to last
    /// as long as the services are used.
    HostContext(std::filesystem::path databaseFile, std::shared_ptr<CurrentUser> currentUser,
                SystemClockService& systemClock);

    [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }
    [[nodiscard]] const CurrentUser& currentUser() const noexcept { return *currentUser_; }
    [[nodiscard]] Date now() const { return clock_->now(); }

    /// Calls `work(SQLite::Database&, const Directory&)`, whoever looks.
    template <class Work>
    auto readDatabase(Work&& work) {
        return withDatabase(file_, [&] {
            return connection().read([&](SQLite::Database& database) { return work(database, directory(database)); });
        });
    }
    /// Calls `work(ReadableRecords&, const Directory&)`. A Refusal when nobody is signed in, or there is no such user.
    template <class Work>
    auto read(Work&& work) {
        return readDatabase([&](SQLite::Database& database, const Directory& known) {
            ReadableRecords records(database, known, signedInUser(known));
            return work(records, known);
        });
    }
    /// Calls `work(RecordWriter&)` and commits what it has written. A Refusal as from `read`.
    template <class Work>
    auto write(Work&& work) {
        return changeDatabase(WritingStore::WhenMissing::fail, [&](SQLite::Database& database) {
            const Directory known(database);
            RecordWriter records(database, known, signedInUser(known), now());
            return work(records);
        });
    }
    /// Calls `work(SQLite::Database&)` and commits what it has written, whoever looks.
    template <class Work>
    auto changeDatabase(WritingStore::WhenMissing whenMissing, Work&& work) {
        using Result = std::invoke_result_t<Work&, SQLite::Database&>;
        std::conditional_t<std::is_void_v<Result>, Void, std::optional<Result>> result;
        const bool isChanged = withDatabase(file_, [&] {
            WritingStore store(file_, whenMissing);
            const auto before = store.database().getTotalChanges();
            if constexpr (std::is_void_v<Result>) {
                work(store.database());
            } else {
                result.emplace(work(store.database()));
            }
            const bool writes = store.database().getTotalChanges() != before;
            store.commit();
            return writes;
        });
        if (isChanged) didChange();
        if constexpr (!std::is_void_v<Result>) return *std::move(result);
    }

    /// Tells those who observe of a change that was committed otherwise.
    void didChange();

    /// A value whenever the database may have changed, or another user looks at it. Changes by other processes are
    /// noticed within a second.
    [[nodiscard]] AnyPublisher<Void> changes();

  private:
    ReadingConnection& connection();
    /// As of the moment that is being read.
    const Directory& directory(SQLite::Database& database);
    [[nodiscard]] const User& signedInUser(const Directory& known) const;
    /// Tells those who observe when somebody else has changed the database.
    void lookForChanges();
    /// Which file it is, counted from the first one that was opened, and what that has as its data version.
    using Version = std::pair<std::int64_t, std::int64_t>;
    /// Absent while the database cannot be opened.
    [[nodiscard]] std::optional<Version> versionNow();

    std::filesystem::path file_;
    std::shared_ptr<CurrentUser> currentUser_;
    SystemClockService* clock_;
    std::optional<ReadingConnection> connection_;
    std::int64_t connectionCount_ = 0;
    /// As of `directoryVersion_`.
    std::optional<Directory> directory_;
    std::int64_t directoryVersion_ = 0;
    PassThroughSubject<Void> changes_;
    int observers_ = 0;
    /// Of the database as those who observe were told of it last.
    std::optional<Version> toldVersion_;
    AnyCancellable ticks_;
    AnyCancellable userChanges_;
};

}  // namespace kestrel::host
