#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <host/store/record_links.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/records/contact.h>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace kestrel::host {

/// Which e-mail addresses occur in which record: those of a contact, and those that a message, an appointment, a task,
/// a note, a file or an invitation is from or for. Must be gone before the database is closed.
class AddressUses {
  public:
    explicit AddressUses(SQLite::Database& database);

    /// Makes those that it has now the addresses of a contact; one that is deleted has none.
    void set(const Contact& contact);

    /// Makes these, in lower case, the addresses of a record. Whether it had others.
    bool set(const AnyObjectID& record, std::vector<std::string> addresses);

    /// Links records with the contacts of their addresses, wherever one of the two has changed its addresses since the
    /// last call. An external invitation that gets a contact is one of a contact from then on. How many links were
    /// added; links that there are stay.
    std::size_t link(RecordLinks& links);

  private:
    [[nodiscard]] std::vector<std::string> addressesOf(const AnyObjectID& record);
    [[nodiscard]] std::vector<AnyObjectID> usersOf(const std::string& address);

    SQLite::Database* database_;
    SQLite::Statement addresses_;
    SQLite::Statement users_;
    SQLite::Statement add_;
    SQLite::Statement remove_;
    std::set<AnyObjectID> changed_;
};

}  // namespace kestrel::host
