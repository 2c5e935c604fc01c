#include <host/services/local_on_demand_service.h>
#include <host/services/service_results.h>
#include <host/store/find_record.h>

namespace kestrel::host {
namespace {

/// Why a record that was asked for here is not to be had.
OnDemandError onDemandError(const ReadError& error) {
    using enum ReadErrorCaseName;
    switch (error.caseName()) {
        case notFound: return OnDemandError::objectNotFound;
        case unexpectedType: return OnDemandError::noContentAvailable;
        case missingObjectID:
        case underlyingError: return OnDemandError::client;
        case cancelled:
        case fetchError: break;
    }
    return OnDemandError::unexpected;
}

}  // namespace

AnyPublisher<OnDemandFreshness, OnDemandError> LocalOnDemandService::fetchRecord(const AnyObjectID& id) {
    return answering<OnDemandFreshness, OnDemandError>(
        [context = context_, id]() -> std::expected<OnDemandFreshness, OnDemandError> {
            const auto isHeld = readingResult([&] {
                return context->read([&](ReadableRecords& records, const Directory&) {
                    bool isReadable = false;
                    visitRecord(records.database(), id,
                                [&](const auto& record) { isReadable = records.isReadable(record); });
                    return isReadable;
                });
            });
            if (!isHeld) return std::unexpected(onDemandError(isHeld.error()));
            if (!*isHeld) return std::unexpected(OnDemandError::objectNotFound);
            return OnDemandFreshness::fresh;
        });
}

AnyPublisher<OnDemandFreshness, OnDemandError> LocalOnDemandService::fetchActivity(const AnyObjectID& id) {
    return fetchRecord(id);
}

AnyPublisher<OnDemandFreshness> LocalOnDemandService::observeFreshness(const AnyObjectID& /*id*/) {
    return just(OnDemandFreshness::fresh);
}

void LocalOnDemandService::invalidate(const AnyObjectID& /*id*/) {}

AnyPublisher<SyncEvent> LocalOnDemandService::syncEvents() const {
    return empty<SyncEvent>();
}

AnyPublisher<SyncStatus> LocalOnDemandService::synchronize() {
    return deferred([context = context_] {
        const Date now = context->now();
        return just(SyncStatus{.result = SyncResult::failure(SyncError::syncFailure("this host has no server")),
                               .startDate = now,
                               .endDate = now});
    });
}

AnyPublisher<SchemaMigrationState> LocalOnDemandService::migrationState() const {
    return just(SchemaMigrationState::ready());
}

}  // namespace kestrel::host
