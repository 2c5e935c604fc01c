#include <fmt/format.h>
#include <host/people/import_sources.h>
#include <host/store/record_table.h>

#include <map>
#include <unordered_set>

namespace kestrel::host {

ImportSources::ImportSources(SQLite::Database& database)
    : find_(database, "SELECT id FROM \"ImportSource\" WHERE entity = ? AND source = ?"),
      add_(database, "INSERT OR REPLACE INTO \"ImportSource\"(entity, source, id) VALUES(?, ?, ?)"),
      starting_(database,
                "SELECT substr(source, length(?2) + 1), id FROM \"ImportSource\" WHERE entity = ?1 AND source >= ?2 "
                "AND source < ?3 ORDER BY source") {}

std::optional<std::int64_t> ImportSources::find(std::string_view entity, const std::string& source) {
    find_.reset();
    find_.bind(1, std::string(entity));
    find_.bind(2, source);
    if (!find_.executeStep()) return std::nullopt;
    return find_.getColumn(0).getInt64();
}

void ImportSources::add(std::string_view entity, const std::string& source, std::int64_t id) {
    add_.reset();
    add_.bind(1, std::string(entity));
    add_.bind(2, source);
    add_.bind(3, id);
    add_.exec();
}

std::vector<std::pair<std::string, std::int64_t>> ImportSources::startingWith(std::string_view entity,
                                                                              const std::string& start) {
    starting_.reset();
    starting_.bind(1, std::string(entity));
    starting_.bind(2, start);
    // Above every text that starts so: no UTF-8 has this byte.
    starting_.bind(3, start + '\xff');
    std::vector<std::pair<std::string, std::int64_t>> sources;
    while (starting_.executeStep())
        sources.emplace_back(textOf(starting_.getColumn(0)), starting_.getColumn(1).getInt64());
    return sources;
}

std::vector<EntryChoice> chosenEntries(const std::vector<EntryIdentity>& entries,
                                       const std::function<bool(std::size_t, std::size_t)>& isNewer,
                                       std::string_view noun, ImportProblems& problems) {
    std::vector<EntryChoice> choices(entries.size());
    // The place of the entry that counts for now.
    std::map<std::string, std::size_t> named;
    // Of those that have a substitute only: which digests it stands for.
    std::map<std::string, std::unordered_set<std::string>> substituted;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const EntryIdentity& entry = entries[i];
        if (entry.uid.empty()) {
            auto& digests = substituted[entry.substitute];
            choices[i].isSuperseded = !digests.insert(entry.digest).second;
            choices[i].source = fmt::format("like:{}#{}", entry.substitute, digests.size());
            continue;
        }
        choices[i].source = "uid:" + entry.uid;
        const auto [place, isFirst] = named.try_emplace(entry.uid, i);
        if (isFirst) continue;
        const std::size_t before = place->second;
        const bool isLaterNewer = entries[before].digest != entry.digest && isNewer(i, before);
        const std::size_t older = isLaterNewer ? before : i;
        const std::size_t newer = isLaterNewer ? i : before;
        choices[older].isSuperseded = true;
        place->second = newer;
        if (entries[before].digest == entry.digest) continue;
        problems.warn(entries[older].place, fmt::format("the {} stands also in {}:{}, which counts; left out", noun,
                                                        entries[newer].place.file, entries[newer].place.line));
    }
    return choices;
}

}  // namespace kestrel::host
