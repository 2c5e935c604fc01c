#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/object_id.h>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Which records are linked to which, beyond what stands in the records themselves.
namespace kestrel::host {

/// What a link says of the record that has it.
///
/// | record                               | kind          | target                                             |
/// |--------------------------------------|---------------|----------------------------------------------------|
/// | role                                 | `source`      | the contact that has it                            |
/// | role                                 | `destination` | the company, opportunity or project                |
/// | relationship                         | `source`      | the contact that owns it                           |
/// | relationship                         | `destination` | the other contact, or a company                    |
/// | email, note, form, file, link, task, | `subject`     | a record whose activity it is: a contact, company, |
/// | appointment                          |               | opportunity or project                             |
/// | contact, note, task                  | `owner`       | the user who owns it                               |
/// | contact                              | `creator`     | the user who created it                            |
/// | user                                 | `contact`     | the contact that stands for the user               |
/// | form                                 | `definition`  | its template, a custom record set definition       |
/// | meeting invite                       | `timeblock`   | the appointment                                    |
/// | meeting invite                       | `contact`     | the contact that is invited                        |
enum class LinkKind : std::uint8_t { source, destination, subject, owner, creator, contact, definition, timeblock };

/// The table of links. Statements are prepared when they are first needed and kept; they must be gone before the
/// database is closed.
class RecordLinks {
  public:
    explicit RecordLinks(SQLite::Database& database) : database_(&database) {}

    /// Adds a link; whether it is new.
    bool add(const AnyObjectID& record, LinkKind kind, const AnyObjectID& target);
    /// Removes the record's links of a kind.
    void remove(const AnyObjectID& record, LinkKind kind);

    /// The targets of a record's links of a kind, by entity and key.
    [[nodiscard]] std::vector<AnyObjectID> targets(const AnyObjectID& record, LinkKind kind);
    /// The first of them that is a record of that type.
    template <class Record>
    [[nodiscard]] std::optional<ObjectID<Record>> target(const AnyObjectID& record, LinkKind kind) {
        for (const AnyObjectID& id : targets(record, kind)) {
            if (const auto typed = id.as<Record>()) return typed;
        }
        return std::nullopt;
    }
    /// The keys of the records of a type that have a link of a kind to a target, ascending.
    template <class Record>
    [[nodiscard]] std::vector<ObjectID<Record>> linked(LinkKind kind, const AnyObjectID& target) {
        std::vector<ObjectID<Record>> ids;
        for (const std::int64_t key : linkedKeys(entityNameOf<Record>, kind, target))
            ids.emplace_back(key);
        return ids;
    }

  private:
    [[nodiscard]] std::vector<std::int64_t> linkedKeys(std::string_view entity, LinkKind kind,
                                                       const AnyObjectID& target);
    SQLite::Statement& prepared(std::optional<SQLite::Statement>& statement, const char* sql) const;

    SQLite::Database* database_;
    std::optional<SQLite::Statement> add_;
    std::optional<SQLite::Statement> remove_;
    std::optional<SQLite::Statement> targets_;
    std::optional<SQLite::Statement> linked_;
};

}  // namespace kestrel::host
