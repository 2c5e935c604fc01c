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

}  // namespace kestrel::host
