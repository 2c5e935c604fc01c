#pragma once

#include <kestrel/services/on_demand_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// An OnDemandService that answers as a test prepares it, and keeps what it is asked.
class RecordingOnDemandService final : public OnDemandService {
  public:
    struct Stubs {
        Stub<AnyPublisher<OnDemandFreshness, OnDemandError>(const AnyObjectID&)> fetchRecord;
        Stub<AnyPublisher<OnDemandFreshness, OnDemandError>(const AnyObjectID&)> fetchActivity;
        Stub<AnyPublisher<OnDemandFreshness>(const AnyObjectID&)> observeFreshness;
        Stub<void(const AnyObjectID&)> invalidate;
        Stub<bool()> isAvailable;
        Stub<AnyPublisher<SyncEvent>()> syncEvents;
        Stub<AnyPublisher<SyncStatus>()> synchronize;
        Stub<AnyPublisher<SchemaMigrationState>()> migrationState;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<OnDemandFreshness, OnDemandError> fetchRecord(const AnyObjectID& id) override {
        return on.fetchRecord(id);
    }
    [[nodiscard]] AnyPublisher<OnDemandFreshness, OnDemandError> fetchActivity(const AnyObjectID& id) override {
        return on.fetchActivity(id);
    }
    [[nodiscard]] AnyPublisher<OnDemandFreshness> observeFreshness(const AnyObjectID& id) override {
        return on.observeFreshness(id);
    }
    void invalidate(const AnyObjectID& id) override { on.invalidate(id); }
    [[nodiscard]] bool isAvailable() const override { return on.isAvailable(); }
    [[nodiscard]] AnyPublisher<SyncEvent> syncEvents() const override { return on.syncEvents(); }
    [[nodiscard]] AnyPublisher<SyncStatus> synchronize() override { return on.synchronize(); }
    [[nodiscard]] AnyPublisher<SchemaMigrationState> migrationState() const override { return on.migrationState(); }
};

}  // namespace kestrel
