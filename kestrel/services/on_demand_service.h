#pragma once

#include <kestrel/identity/any_object_id.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/on_demand.h>
#include <kestrel/session/schema_migration_state.h>
#include <kestrel/session/sync_status.h>
#include <memory>

namespace kestrel {

/// Fetches from the server what the database does not hold.
class OnDemandService : public ServiceProtocol {
  public:
    /// Brings a record into the database; whether it is as the server has it.
    [[nodiscard]] virtual AnyPublisher<OnDemandFreshness, OnDemandError> fetchRecord(const AnyObjectID& id) = 0;
    /// Brings what happened around a record into the database.
    [[nodiscard]] virtual AnyPublisher<OnDemandFreshness, OnDemandError> fetchActivity(const AnyObjectID& id) = 0;
    /// How fresh the record is, now and after every change.
    [[nodiscard]] virtual AnyPublisher<OnDemandFreshness> observeFreshness(const AnyObjectID& id) = 0;
    /// What is known of the record is stale.
    virtual void invalidate(const AnyObjectID& id) = 0;
    /// Whether there is a server to fetch from.
    [[nodiscard]] virtual bool isAvailable() const = 0;
    /// Each start and end of a synchronisation from now on.
    [[nodiscard]] virtual AnyPublisher<SyncEvent> syncEvents() const = 0;
    /// Brings the database and the server together; how that went.
    [[nodiscard]] virtual AnyPublisher<SyncStatus> synchronize() = 0;
    /// Where the migration of the database stands, now and after every change.
    [[nodiscard]] virtual AnyPublisher<SchemaMigrationState> migrationState() const = 0;
};

template <>
class Forwarding<OnDemandService> : public OnDemandService {
  public:
    [[nodiscard]] virtual std::shared_ptr<OnDemandService> target() const = 0;

    [[nodiscard]] AnyPublisher<OnDemandFreshness, OnDemandError> fetchRecord(const AnyObjectID& id) override {
        return target()->fetchRecord(id);
    }
    [[nodiscard]] AnyPublisher<OnDemandFreshness, OnDemandError> fetchActivity(const AnyObjectID& id) override {
        return target()->fetchActivity(id);
    }
    [[nodiscard]] AnyPublisher<OnDemandFreshness> observeFreshness(const AnyObjectID& id) override {
        return target()->observeFreshness(id);
    }
    void invalidate(const AnyObjectID& id) override { target()->invalidate(id); }
    [[nodiscard]] bool isAvailable() const override { return target()->isAvailable(); }
    [[nodiscard]] AnyPublisher<SyncEvent> syncEvents() const override { return target()->syncEvents(); }
    [[nodiscard]] AnyPublisher<SyncStatus> synchronize() override { return target()->synchronize(); }
    [[nodiscard]] AnyPublisher<SchemaMigrationState> migrationState() const override {
        return target()->migrationState();
    }
};

namespace services {
inline constexpr ServiceKey<OnDemandService> onDemand;
}

}  // namespace kestrel
