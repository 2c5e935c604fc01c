#pragma once

#include <kestrel/services/permissions_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// A PermissionsService that answers as a test prepares it, and keeps what it is asked.
class RecordingPermissionsService final : public PermissionsService {
  public:
    struct Stubs {
        Stub<AnyPublisher<PermissionChecker, ReadError>()> fetchPermissionChecker;
        Stub<AnyPublisher<PermissionChecker>()> observePermissionChecker;
        Stub<AnyPublisher<Permissions, ReadError>(const AnyObjectID&)> fetchPermissions;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<PermissionChecker, ReadError> fetchPermissionChecker() override {
        return on.fetchPermissionChecker();
    }
    [[nodiscard]] AnyPublisher<PermissionChecker> observePermissionChecker() override {
        return on.observePermissionChecker();
    }
    [[nodiscard]] AnyPublisher<Permissions, ReadError> fetchPermissions(const AnyObjectID& id) override {
        return on.fetchPermissions(id);
    }
};

}  // namespace kestrel
