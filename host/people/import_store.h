#pragma once

#include <SQLiteCpp/Database.h>
#include <host/people/address_uses.h>
#include <host/people/import_problems.h>
#include <host/people/import_sources.h>
#include <host/store/embedded_keys.h>
#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the importers of cards, calendars and mail share of the database.
namespace kestrel::host {

/// What became of the entries of one kind. Those that were found are the sum of the others.
struct EntryCounts {
    std::size_t found{};
    std::size_t added{};
    std::size_t changed{};
    std::size_t unchanged{};
    /// Left out for another one of the same identity.
    std::size_t superseded{};
    /// Left out as broken.
    std::size_t refused{};

    /// Those that are in the database now.
    [[nodiscard]] std::size_t imported() const { return added + changed + unchanged; }
};

/// The records of one type: read one by one, written when they have changed, with keys for new ones.
template <class Record>
class RecordStore {
  public:
    explicit RecordStore(SQLite::Database& database) : database_(&database), table_(database) {}

    [[nodiscard]] std::int64_t newKey() {
        if (!lastKey_) {
            lastKey_ =
                database_->execAndGet("SELECT coalesce(max(id), 0) FROM \"" + std::string(entityNameOf<Record>) + '"')
                    .getInt64();
        }
        return ++*lastKey_;
    }
    [[nodiscard]] std::optional<Record> find(std::int64_t key) { return table_.find(key); }
    [[nodiscard]] std::vector<Record> all() const { return table_.all(); }

    enum class Written : std::uint8_t { added, changed, unchanged };
    /// Stores a record over what there was before, if there was something.
    Written write(const Record& record, const std::optional<Record>& before) {
        if (!before) {
            table_.insert(record);
            return Written::added;
        }
        if (record == *before) return Written::unchanged;
        table_.update(record);
        return Written::changed;
    }
    void remove(const ObjectID<Record>& id) { table_.remove(id); }

  private:
    SQLite::Database* database_;
    RecordTable<Record> table_;
    std::optional<std::int64_t> lastKey_;
};

/// A short list of records, of which each has a name: made when the name is met for the first time. Of several that are
/// called alike the first counts.
template <class Record>
class NamedRecords {
  public:
    /// `make(key, name, place)` makes the record that comes at a place of the list.
    template <class Make>
    const Record& at(SQLite::Database& database, const std::string& name, Make&& make) {
        if (!store_) {
            store_.emplace(database);
            for (Record& record : store_->all()) {
                if (std::optional<std::string> known = nameOf(record)) byName_.emplace(*known, std::move(record));
            }
        }
        const auto found = byName_.find(name);
        if (found != byName_.end()) return found->second;
        const Record record = make(store_->newKey(), name, static_cast<std::int64_t>(byName_.size()));
        store_->write(record, std::nullopt);
        return byName_.emplace(name, record).first->second;
    }

  private:
    static std::optional<std::string> nameOf(const Record& record) {
        if constexpr (requires { record.forwardName; }) {
            return record.forwardName;
        } else {
            return record.name;
        }
    }

    std::optional<RecordStore<Record>> store_;
    std::map<std::string, Record> byName_;
};

/// The tables that all importers need, and the counts that they keep.
class ImportStore {
  public:
    /// `merged` is called after each entry that was merged.
    ImportStore(SQLite::Database& database, ImportProblems& problems, std::function<void()> merged)
        : database_(database),
          problems_(problems),
          links_(database),
          sources_(database),
          addresses_(database),
          embeddedKeys_(database),
          merged_(std::move(merged)) {}

    [[nodiscard]] SQLite::Database& database() noexcept { return database_; }
    [[nodiscard]] ImportProblems& problems() noexcept { return problems_; }
    [[nodiscard]] RecordLinks& links() noexcept { return links_; }
    [[nodiscard]] ImportSources& sources() noexcept { return sources_; }
    [[nodiscard]] AddressUses& addresses() noexcept { return addresses_; }
    [[nodiscard]] EntryCounts& counts(EntryKind kind) { return counts_[static_cast<std::size_t>(kind)]; }

    template <class Written>
    void count(EntryKind kind, Written written) {
        EntryCounts& ofKind = counts(kind);
        ++(written == Written::added ? ofKind.added : written == Written::changed ? ofKind.changed : ofKind.unchanged);
        merged_();
    }

    /// The key of the record that came of a source, or one for a new record, which it is from now on.
    template <class Record>
    [[nodiscard]] std::int64_t keyOf(const std::string& source, RecordStore<Record>& records) {
        if (const auto known = sources_.find(entityNameOf<Record>, source)) return *known;
        const std::int64_t key = records.newKey();
        sources_.add(entityNameOf<Record>, source, key);
        return key;
    }

    /// Makes these the keywords of a record, those that it has besides included.
    void addKeywords(std::vector<Keyword>& keywords, const std::vector<std::string>& names);
    [[nodiscard]] const Keyword& keyword(const std::string& name);
    /// A key for a record that lies within another one.
    template <class Record>
    [[nodiscard]] std::int64_t embeddedKey() {
        return embeddedKeys_.next<Record>();
    }
    /// Writes what has been kept back so far.
    void finish() { embeddedKeys_.finish(); }

  private:
    SQLite::Database& database_;
    ImportProblems& problems_;
    RecordLinks links_;
    ImportSources sources_;
    AddressUses addresses_;
    std::array<EntryCounts, entryKindCount> counts_{};
    NamedRecords<Keyword> keywords_;
    EmbeddedKeys embeddedKeys_;
    std::function<void()> merged_;
};

}  // namespace kestrel::host
