#include <fmt/format.h>
#include <host/command/contact_command.h>
#include <host/contact/contact_names.h>
#include <host/contact/contact_query.h>
#include <host/contact/contact_rendering.h>
#include <host/store/store.h>
#include <host/terminal/day_text.h>

namespace kestrel::host {

void contactCommand(const ContactOptions& options, Output& output, const Terminal& terminal) {
    if (!options.locale.empty() && !isLocale(options.locale))
        throw WrongUsage(fmt::format("\"{}\" is no locale; write de, de-AT or ja_JP.UTF-8", options.locale));
    const ContactPage page = withDatabase(options.database, [&] {
        ReadingStore store(options.database);
        const Directory directory(store.database());
        const User& user = directory.user(options.user);
        ReadableRecords records(store.database(), directory, user);
        ContactInfo info = contactInfoOf(records, contactCalled(records, options.record, options.locale));
        std::string visibility = records.checker().visibility(info).localizedDisplayName();
        return ContactPage{.info = std::move(info),
                           .locale = options.locale,
                           .calendar = calendarOf(user),
                           .extraFields = contactFieldsNamer(records),
                           .visibility = std::move(visibility)};
    });
    if (options.isJSON) return writeJSONLine(pageJSON(page), output, terminal);
    output.write(rendered(page, terminal));
}

}  // namespace kestrel::host
