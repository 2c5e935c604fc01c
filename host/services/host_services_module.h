#pragma once

#include <host/services/current_user.h>
#include <kestrel/runtime/runtime.h>
#include <filesystem>
#include <memory>
#include <string>

namespace kestrel::host {

/// The services that this host has for the records of a database, as a user may see and change them. Installs, over
/// one HostContext,
///
///     ContactsService, ActivityService, PipelineBoardService, PipelineBoardFilterService, PermissionsService,
///     OptionsService, TasksService, EmailsService, CategoriesService, ImportService, OnDemandService
///
/// and this host's own RecordsService, DealsService and DetailedImportService. They ask the runtime's
/// SystemClockService and SystemUserDefaultsService, which another module installs, before or after:
/// SystemServicesModule, or TestServicesModule in tests. What signs users in is another module's, too; the two share
/// `user`.
struct HostServicesModule {
    std::string moduleName = "HostServices";
    /// The file; opened when it is needed for the first time.
    std::filesystem::path database{};
    /// Who looks at the database.
    std::shared_ptr<CurrentUser> user = std::make_shared<CurrentUser>(std::nullopt);

    void registerIn(Runtime& runtime) const;
};

}  // namespace kestrel::host
