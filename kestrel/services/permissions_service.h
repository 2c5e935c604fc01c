#pragma once

#include <kestrel/access/permission_checker.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <memory>

namespace kestrel {

/// What the signed-in user may do.
class PermissionsService : public ServiceProtocol {
  public:
    /// What decides for the signed-in user; one that refuses everything while nobody is.
    [[nodiscard]] virtual AnyPublisher<PermissionChecker, ReadError> fetchPermissionChecker() = 0;
    /// The same, now and after every change of the user or the teams.
    [[nodiscard]] virtual AnyPublisher<PermissionChecker> observePermissionChecker() = 0;
    /// What a record says about who may do what with it.
    [[nodiscard]] virtual AnyPublisher<Permissions, ReadError> fetchPermissions(const AnyObjectID& id) = 0;
};

template <>
class Forwarding<PermissionsService> : public PermissionsService {
  public:
    [[nodiscard]] virtual std::shared_ptr<PermissionsService> target() const = 0;

    [[nodiscard]] AnyPublisher<PermissionChecker, ReadError> fetchPermissionChecker() override {
        return target()->fetchPermissionChecker();
    }
    [[nodiscard]] AnyPublisher<PermissionChecker> observePermissionChecker() override {
        return target()->observePermissionChecker();
    }
    [[nodiscard]] AnyPublisher<Permissions, ReadError> fetchPermissions(const AnyObjectID& id) override {
        return target()->fetchPermissions(id);
    }
};

namespace services {
inline constexpr ServiceKey<PermissionsService> permissions;
}

}  // namespace kestrel
