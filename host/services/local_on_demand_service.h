#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/on_demand_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// Fetching from a server, for a host that has none. The database is all there is: what it holds, as far as the
/// signed-in user may read it, is fresh and stays so. Anything else fails:
///
/// - `objectNotFound` for a record that it does not hold, or that is deleted or hidden from the user;
/// - `noContentAvailable` for one of a type that databases do not keep;
/// - `client` for an identifier that is not saved, or while nobody is signed in who is known to the database;
/// - `unexpected` when the database cannot be read.
///
/// Synchronising fails, and says why; there never is another run. Schemas are migrated by the change that
/// finds an old one, so no migration is ever under way.
class LocalOnDemandService final : public OnDemandService {
  public:
    explicit LocalOnDemandService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<OnDemandFreshness, OnDemandError> fetchRecord(const AnyObjectID& id) override;
    [[nodiscard]] AnyPublisher<OnDemandFreshness, OnDemandError> fetchActivity(const AnyObjectID& id) override;
    [[nodiscard]] AnyPublisher<OnDemandFreshness> observeFreshness(const AnyObjectID& id) override;
    void invalidate(const AnyObjectID& id) override;
    [[nodiscard]] bool isAvailable() const override { return false; }
    [[nodiscard]] AnyPublisher<SyncEvent> syncEvents() const override;
    [[nodiscard]] AnyPublisher<SyncStatus> synchronize() override;
    [[nodiscard]] AnyPublisher<SchemaMigrationState> migrationState() const override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
