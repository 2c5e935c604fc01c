#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <host/people/import_problems.h>
#include <kestrel/identity/object_id.h>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// How the entries of imported files are told apart and found again.
namespace kestrel::host {

/// The table of which record came of what an imported file calls its entry. Must be gone before the database is closed.
class ImportSources {
  public:
    explicit ImportSources(SQLite::Database& database);

    [[nodiscard]] std::optional<std::int64_t> find(std::string_view entity, const std::string& source);
    void add(std::string_view entity, const std::string& source, std::int64_t id);
    /// The sources of an entity that start with a text, in their order: what follows it, and the record's key.
    [[nodiscard]] std::vector<std::pair<std::string, std::int64_t>> startingWith(std::string_view entity,
                                                                                 const std::string& start);

  private:
    SQLite::Statement find_;
    SQLite::Statement add_;
    SQLite::Statement starting_;
};

/// What an import has to know of an entry to tell it from others.
struct EntryIdentity {
    FilePlace place{};
    /// What the file calls it; empty when it calls it nothing.
    std::string uid{};
    /// What it is called instead: several of one import that are called alike are numbered.
    std::string substitute{};
    std::string digest{};
};

/// What an entry is called in the table of sources, and whether it is to be left out for another one.
struct EntryChoice {
    std::string source{};
    /// Another one of the import has the same identity and is newer, or says the same.
    bool isSuperseded{};
};

/// Tells the entries of one import apart. Of several of one identity the newest counts, which `isNewer(b, a)` says of
/// the later one `b`; a warning names those of other content. `noun` is what people call an entry.
[[nodiscard]] std::vector<EntryChoice> chosenEntries(const std::vector<EntryIdentity>& entries,
                                                     const std::function<bool(std::size_t, std::size_t)>& isNewer,
                                                     std::string_view noun, ImportProblems& problems);

}  // namespace kestrel::host
