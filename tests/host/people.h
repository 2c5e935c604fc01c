#pragma once

#include "support.h"

#include <host/store/record_links.h>
#include <host/store/record_table.h>
#include <host/store/store.h>
#include <kestrel/foundation/date.h>

namespace kestrel::host::test {

/// The moment of an ISO 8601 text.
inline Date moment(std::string_view iso8601) {
    return Date::parseISO8601(iso8601).value();
}

/// A database with the users, teams, companies and deals of the small export, to which a test adds people and what
/// happened. "Moses Frase" is in the team Central, "Donn Cantrell" in the team East, and "Administrator" in none.
class PeopleDatabase {
  public:
    PeopleDatabase() {
        writeExport(folder_ / "export", smallExport);
        const Outcome outcome = kestrel({"import", folder_ / "export", "--database", path()});
        if (outcome.exitCode != 0) throw std::runtime_error("import: " + outcome.errors);
    }
    [[nodiscard]] Path path() const { return folder_ / "crm.db"; }

    /// Opens the database for one change.
    template <class Change>
    void write(Change&& change) {
        WritingStore store(path());
        {
            Writer writer(store.database());
            change(writer);
        }
        store.commit();
    }

    class Writer {
      public:
        explicit Writer(SQLite::Database& database) : database_(&database), links_(database) {}

        template <class Record>
        Writer& add(const Record& record) {
            RecordTable<Record>(*database_).insert(record);
            return *this;
        }
        Writer& link(const AnyObjectID& record, LinkKind kind, const AnyObjectID& target) {
            links_.add(record, kind, target);
            return *this;
        }
        /// A role of a contact.
        Writer& role(const AnyRole& role, const ObjectID<Contact>& contact, const AnyObjectID& destination) {
            return add(role)
                .link(role.objectID(), LinkKind::source, contact)
                .link(role.objectID(), LinkKind::destination, destination);
        }
        /// A relationship that a contact has.
        Writer& relationship(const AnyRelationship& relationship, const ObjectID<Contact>& contact,
                             const AnyObjectID& destination) {
            return add(relationship)
                .link(relationship.objectID(), LinkKind::source, contact)
                .link(relationship.objectID(), LinkKind::destination, destination);
        }
        /// An item of activity with its subject.
        template <class Record>
        Writer& item(const Record& record, const AnyObjectID& subject) {
            return add(record).link(record.objectID(), LinkKind::subject, subject);
        }
        template <class Record, class Change>
        Writer& change(const ObjectID<Record>& id, Change&& change) {
            RecordTable<Record> table(*database_);
            Record record = table.find(id).value();
            change(record);
            table.update(record);
            return *this;
        }

      private:
        SQLite::Database* database_;
        RecordLinks links_;
    };

    /// Runs a command with the database and as a user.
    [[nodiscard]] Outcome run(std::vector<std::string> arguments, const std::string& user = "administrator",
                              const std::map<std::string, std::string>& environment = {}) const {
        arguments.insert(arguments.end(), {"--database", path(), "--user", user});
        return kestrel(arguments, {.environment = environment});
    }

  private:
    TemporaryFolder folder_;
};

/// The key of the user of that name in the small export, and of a team.
inline const ObjectID<User> administrator = 1;
inline const ObjectID<User> mosesFrase = 4;
inline const ObjectID<Team> teamCentral = 1;
inline const ObjectID<Team> teamEast = 2;

/// Only for the team's members.
inline Permissions onlyFor(const ObjectID<Team>& team) {
    return {.readPermissions = {team}, .writePermissions = {team}};
}

}  // namespace kestrel::host::test
