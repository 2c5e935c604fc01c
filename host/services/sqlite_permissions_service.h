#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/permissions_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The permissions of a database.
///
/// Whether the signed-in user may read a record does not matter for what the record says of it. While nobody is signed
/// in, or the database cannot be read, the checker that is observed refuses everything.
class SQLitePermissionsService final : public PermissionsService {
  public:
    explicit SQLitePermissionsService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<PermissionChecker, ReadError> fetchPermissionChecker() override;
    [[nodiscard]] AnyPublisher<PermissionChecker> observePermissionChecker() override;
    /// `unexpectedType` for records that are under no access control.
    [[nodiscard]] AnyPublisher<Permissions, ReadError> fetchPermissions(const AnyObjectID& id) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
