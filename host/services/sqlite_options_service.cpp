#include <host/services/service_results.h>
#include <host/services/sqlite_options_service.h>
#include <host/store/record_table.h>

#include <algorithm>
#include <tuple>

namespace kestrel::host {
namespace {

/// The preference of that name, one that is deleted included; of several the first.
std::optional<DatabasePreference> preferenceNamed(SQLite::Database& database, const std::string& name) {
    for (DatabasePreference& preference : RecordTable<DatabasePreference>(database).all()) {
        if (preference.name == name) return std::move(preference);
    }
    return std::nullopt;
}

std::optional<std::string> prefValueOf(HostContext& context, const std::string& name) {
    return context.readDatabase([&](SQLite::Database& database, const Directory&) {
        auto preference = preferenceNamed(database, name);
        return preference && !preference->deletionDate ? std::move(preference->prefValue) : std::nullopt;
    });
}

}  // namespace

AnyPublisher<std::optional<std::string>, ReadError> SQLiteOptionsService::fetchOption(std::string name) {
    return reading([context = context_, name = std::move(name)] { return prefValueOf(*context, name); });
}

AnyPublisher<std::vector<DatabasePreference>, ReadError> SQLiteOptionsService::fetchOptions() {
    return reading([context = context_] {
        return context->readDatabase([](SQLite::Database& database, const Directory&) {
            auto preferences = RecordTable<DatabasePreference>(database).all();
            std::erase_if(preferences, [](const auto& preference) { return preference.deletionDate.has_value(); });
            std::ranges::sort(preferences, [](const auto& a, const auto& b) {
                return std::tie(a.name, a.objectID()) < std::tie(b.name, b.objectID());
            });
            return preferences;
        });
    });
}

AnyPublisher<DatabasePreference, UpdateError> SQLiteOptionsService::storeOption(std::string name,
                                                                                std::optional<std::string> value) {
    return updating([context = context_, name = std::move(name), value = std::move(value)] {
        return context->write([&](RecordWriter& records) {
            const auto before = preferenceNamed(records.database(), name);
            if (!value) {
                if (!before || before->deletionDate) throw RecordMissing("preference " + name);
                DatabasePreference removed = records.deletable(before->objectID());
                records.markDeleted(removed);
                records.update(removed);
                return removed;
            }
            DatabasePreference stored{
                .databasePreferenceID = before ? before->objectID() : records.newID<DatabasePreference>(),
                .name = name,
                .prefValue = value};
            if (!before) {
                records.insert(stored);
            } else if (stored != *before) {
                records.update(stored);
            }
            return stored;
        });
    });
}

AnyPublisher<std::optional<std::string>> SQLiteOptionsService::observeOption(std::string name) {
    return observingAlways(
        context_, [context = context_, name = std::move(name)] { return prefValueOf(*context, name); },
        [] { return std::optional(std::optional<std::string>()); });
}

}  // namespace kestrel::host
