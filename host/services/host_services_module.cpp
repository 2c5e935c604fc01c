#include <host/services/file_import_service.h>
#include <host/services/host_context.h>
#include <host/services/host_services_module.h>
#include <host/services/local_on_demand_service.h>
#include <host/services/records_service.h>
#include <host/services/sqlite_activity_service.h>
#include <host/services/sqlite_categories_service.h>
#include <host/services/sqlite_contacts_service.h>
#include <host/services/sqlite_deals_service.h>
#include <host/services/sqlite_emails_service.h>
#include <host/services/sqlite_options_service.h>
#include <host/services/sqlite_permissions_service.h>
#include <host/services/sqlite_pipeline_board_filter_service.h>
#include <host/services/sqlite_pipeline_board_service.h>
#include <host/services/sqlite_records_service.h>
#include <host/services/sqlite_tasks_service.h>

namespace kestrel::host {

void HostServicesModule::registerIn(Runtime& runtime) const {
    const auto context = std::make_shared<HostContext>(database, user, runtime[services::systemClock]);
    runtime[services::activity] = std::make_shared<SQLiteActivityService>(context);
    runtime[services::categories] = std::make_shared<SQLiteCategoriesService>(context);
    runtime[services::contacts] = std::make_shared<SQLiteContactsService>(context);
    runtime[services::emails] = std::make_shared<SQLiteEmailsService>(context);
    runtime[services::onDemand] = std::make_shared<LocalOnDemandService>(context);
    runtime[services::options] = std::make_shared<SQLiteOptionsService>(context);
    runtime[services::permissions] = std::make_shared<SQLitePermissionsService>(context);
    runtime[services::pipelineBoard] =
        std::make_shared<SQLitePipelineBoardService>(context, runtime[services::systemDefaults]);
    runtime[ServiceKey<PipelineBoardFilterService>{}] = std::make_shared<SQLitePipelineBoardFilterService>(context);
    runtime[services::tasks] = std::make_shared<SQLiteTasksService>(context);
    const auto imports = std::make_shared<FileImportService>(context);
    runtime[services::import_] = imports;
    runtime.install(host_services::detailedImport, imports);
    runtime.install(host_services::deals, std::make_shared<SQLiteDealsService>(context));
    runtime.install(host_services::records, std::make_shared<SQLiteRecordsService>(context));
}

}  // namespace kestrel::host
