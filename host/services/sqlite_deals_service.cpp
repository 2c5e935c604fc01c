#include <host/services/service_results.h>
#include <host/services/sqlite_deals_service.h>

namespace kestrel::host {

AnyPublisher<DealDetails, ReadError> SQLiteDealsService::fetchDeal(const PipelineBoardObjectID& id) {
    return reading([context = context_, id] {
        return context->read([&](ReadableRecords& records, const Directory&) { return dealDetailsOf(records, id); });
    });
}

}  // namespace kestrel::host
