#include <host/services/service_results.h>
#include <host/services/sqlite_emails_service.h>

namespace kestrel::host {

AnyPublisher<Email, ReadError> SQLiteEmailsService::fetchEmail(const ObjectID<Email>& id) {
    return reading([context = context_, id] {
        return context->read([&](ReadableRecords& records, const Directory&) { return records.required(id); });
    });
}

}  // namespace kestrel::host
