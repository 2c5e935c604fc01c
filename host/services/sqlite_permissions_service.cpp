#include <host/services/service_results.h>
#include <host/services/sqlite_permissions_service.h>
#include <host/store/find_record.h>

namespace kestrel::host {
namespace {

PermissionChecker checkerOf(HostContext& context) {
    return context.readDatabase([&](SQLite::Database&, const Directory& directory) {
        const auto& name = context.currentUser().name();
        return name ? directory.checkerFor(directory.user(*name)) : PermissionChecker::empty();
    });
}

}  // namespace

AnyPublisher<PermissionChecker, ReadError> SQLitePermissionsService::fetchPermissionChecker() {
    return reading([context = context_] { return checkerOf(*context); });
}

AnyPublisher<PermissionChecker> SQLitePermissionsService::observePermissionChecker() {
    return observingAlways(
        context_, [context = context_] { return checkerOf(*context); },
        [] { return std::optional(PermissionChecker::empty()); });
}

AnyPublisher<Permissions, ReadError> SQLitePermissionsService::fetchPermissions(const AnyObjectID& id) {
    return reading([context = context_, id] {
        return context->readDatabase([&](SQLite::Database& database, const Directory&) {
            std::optional<Permissions> permissions;
            visitRecord(database, id, [&]<class Record>(const Record& record) {
                if constexpr (AuthorizedAccess<Record>) permissions = record.permissions;
            });
            if (!permissions) throw WrongType(id.stringValue() + " is under no access control");
            return *std::move(permissions);
        });
    });
}

}  // namespace kestrel::host
