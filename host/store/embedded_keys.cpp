#include <SQLiteCpp/Statement.h>
#include <host/store/embedded_keys.h>

#include <string>

namespace kestrel::host {

std::int64_t EmbeddedKeys::next(std::string_view entity) {
    const auto found = last_.find(entity);
    if (found != last_.end()) return ++found->second;
    SQLite::Statement last(*database_, "SELECT lastID FROM \"EmbeddedKey\" WHERE entity = ?");
    last.bind(1, std::string(entity));
    const std::int64_t key = last.executeStep() ? last.getColumn(0).getInt64() : 0;
    return last_[entity] = key + 1;
}

void EmbeddedKeys::finish() {
    SQLite::Statement write(*database_, "INSERT OR REPLACE INTO \"EmbeddedKey\"(entity, lastID) VALUES(?, ?)");
    for (const auto& [entity, key] : last_) {
        write.reset();
        write.bind(1, std::string(entity));
        write.bind(2, key);
        write.exec();
    }
}

}  // namespace kestrel::host
