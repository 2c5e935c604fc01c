#include <host/people/import_store.h>

#include <algorithm>

namespace kestrel::host {

void ImportStore::addKeywords(std::vector<Keyword>& keywords, const std::vector<std::string>& names) {
    std::vector<Keyword> merged;
    for (const std::string& name : names)
        merged.push_back(keyword(name));
    for (Keyword& before : keywords) {
        const bool isThere =
            std::ranges::any_of(merged, [&](const Keyword& there) { return there.objectID() == before.objectID(); });
        if (!isThere) merged.push_back(std::move(before));
    }
    keywords = std::move(merged);
}

const Keyword& ImportStore::keyword(const std::string& name) {
    return keywords_.at(database_, name, [](std::int64_t key, const std::string& called, std::int64_t place) {
        return Keyword{.keywordID = key, .name = called, .order = place};
    });
}

std::int64_t ImportStore::embeddedKey(std::string_view entity) {
    const auto found = embeddedKeys_.find(entity);
    if (found != embeddedKeys_.end()) return ++found->second;
    SQLite::Statement last(database_, "SELECT lastID FROM \"EmbeddedKey\" WHERE entity = ?");
    last.bind(1, std::string(entity));
    const std::int64_t key = last.executeStep() ? last.getColumn(0).getInt64() : 0;
    return embeddedKeys_[entity] = key + 1;
}

void ImportStore::finish() {
    SQLite::Statement write(database_, "INSERT OR REPLACE INTO \"EmbeddedKey\"(entity, lastID) VALUES(?, ?)");
    for (const auto& [entity, key] : embeddedKeys_) {
        write.reset();
        write.bind(1, std::string(entity));
        write.bind(2, key);
        write.exec();
    }
}

}  // namespace kestrel::host
