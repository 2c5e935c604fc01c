#include <fmt/format.h>
#include <host/activity/activity_query.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_query.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_records_service.h>
#include <host/store/find_record.h>
#include <host/terminal/coded_json.h>

#include <type_traits>

namespace kestrel::host {
namespace {

template <class Record>
std::string titleOf(const Record& record) {
    const std::string id = record.objectID().stringValue();
    std::optional<std::string> name;
    if constexpr (std::is_same_v<Record, Contact>) {
        name = shownName(record);
    } else if constexpr (requires { record.subject; }) {
        name = textIn(record.subject);
    } else if constexpr (requires { record.title; }) {
        name = textIn(record.title);
    } else {
        name = textIn(record.name);
    }
    return !name || *name == id ? id : fmt::format("{} ({})", *name, id);
}

}  // namespace

AnyPublisher<RecordText, ReadError> SQLiteRecordsService::fetchRecord(const AnyObjectID& id) {
    return reading([context = context_, id] {
        return context->readDatabase([&](SQLite::Database& database, const Directory&) {
            RecordText text;
            visitRecord(database, id,
                        [&](const auto& record) { text = {.json = coded(record), .mirror = debugMirror(record)}; });
            return text;
        });
    });
}

AnyPublisher<RecordAccess, ReadError> SQLiteRecordsService::decideAccess(const AnyObjectID& id) {
    return reading([context = context_, id] {
        return context->read([&](ReadableRecords& records, const Directory&) {
            const PermissionChecker& checker = records.checker();
            std::optional<RecordAccess> access;
            visitRecord(records.database(), id, [&]<class Record>(const Record& record) {
                if constexpr (AuthorizedAccess<Record>) {
                    const Permissions& permissions = record.permissions;
                    access = {.user = records.user(),
                              .permissions = permissions,
                              .read = checker.decideRead(permissions),
                              .update = checker.decideUpdate(permissions),
                              .deletion = checker.decideDelete(permissions),
                              .visibility = checker.visibility(permissions).localizedDisplayName()};
                }
            });
            if (!access) throw WrongType(id.stringValue() + " is under no access control");
            return *std::move(access);
        });
    });
}

AnyPublisher<std::string, ReadError> SQLiteRecordsService::fetchTitle(const AnyObjectID& id) {
    return reading([context = context_, id] {
        return context->read([&](ReadableRecords& records, const Directory&) {
            const auto source = activitySourceOf(id);
            if (!source) throw WrongType(id.stringValue() + " has no title");
            return source->match([&](const auto& typed) { return titleOf(records.required(typed)); });
        });
    });
}

AnyPublisher<ObjectID<Contact>, ReadError> SQLiteRecordsService::findContact(std::string text, std::string locale) {
    return reading([context = context_, text = std::move(text), locale = std::move(locale)] {
        return context->read(
            [&](ReadableRecords& records, const Directory&) { return contactCalled(records, text, locale); });
    });
}

AnyPublisher<ExtraFieldsNamer, ReadError> SQLiteRecordsService::fetchContactFields() {
    return reading([context = context_] {
        return context->read([](ReadableRecords& records, const Directory&) { return contactFieldsNamer(records); });
    });
}

AnyPublisher<Directory, ReadError> SQLiteRecordsService::fetchDirectory() {
    return reading([context = context_] {
        return context->readDatabase([](SQLite::Database&, const Directory& known) { return known; });
    });
}

AnyPublisher<User, ReadError> SQLiteRecordsService::fetchUser() {
    return reading([context = context_] {
        return context->read([](ReadableRecords& records, const Directory&) { return records.user(); });
    });
}

}  // namespace kestrel::host
