#include <fmt/format.h>
#include <host/command/contact_command.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_rendering.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/terminal/day_text.h>
#include <kestrel/services/contacts_service.h>
#include <kestrel/services/permissions_service.h>

#include <utility>

namespace kestrel::host {

void contactCommand(const ContactOptions& options, Output& output, const Terminal& terminal) {
    if (!options.locale.empty() && !isLocale(options.locale))
        throw WrongUsage(fmt::format("\"{}\" is no locale; write de, de-AT or ja_JP.UTF-8", options.locale));
    Runtime runtime = makeUserRuntime(options.database, options.user);
    RecordsService& records = runtime[host_services::records];
    const ObjectID<Contact> id = valueOf(records.findContact(options.record, options.locale));
    ContactInfo info = valueOf(runtime[services::contacts].fetchContactInfo(id), id);
    const PermissionChecker checker = valueOf(runtime[services::permissions].fetchPermissionChecker());
    std::string visibility = checker.visibility(info).localizedDisplayName();
    const ContactPage page{.info = std::move(info),
                           .locale = options.locale,
                           .calendar = calendarOf(checker.user.value()),
                           .extraFields = valueOf(records.fetchContactFields()),
                           .visibility = std::move(visibility)};
    if (options.isJSON) return writeJSONLine(pageJSON(page), output, terminal);
    output.write(rendered(page, terminal));
}

}  // namespace kestrel::host
