#pragma once

#include <SQLiteCpp/Database.h>
#include <cstdint>
#include <map>
#include <string_view>

namespace kestrel::host {

/// Gives keys to records that lie within others, such as phones: those that follow the last one that was given.
class EmbeddedKeys {
  public:
    explicit EmbeddedKeys(SQLite::Database& database) : database_(&database) {}

    template <class Record>
    [[nodiscard]] std::int64_t next() {
        return next(Record::entityName);
    }
    /// Writes down which keys have been given. Until then nobody else knows.
    void finish();

  private:
    [[nodiscard]] std::int64_t next(std::string_view entity);

    SQLite::Database* database_;
    /// The last key of each entity of which one was given.
    std::map<std::string_view, std::int64_t> last_;
};

}  // namespace kestrel::host
