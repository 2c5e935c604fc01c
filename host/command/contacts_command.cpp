#include <host/command/contacts_command.h>
#include <host/contact/contact_list.h>
#include <host/store/store.h>

namespace kestrel::host {
namespace {

constexpr std::size_t usualLimit = 50;

}  // namespace

void contactsCommand(const ContactsOptions& options, Output& output, const Terminal& terminal) {
    if (options.search && options.search->empty()) throw WrongUsage("the text to search for is empty");
    const ContactList list = withDatabase(options.database, [&] {
        ReadingStore store(options.database);
        const Directory directory(store.database());
        ReadableRecords records(store.database(), directory, directory.user(options.user));
        return contactList(records, options.search, options.limit.value_or(options.isJSON ? 0 : usualLimit));
    });
    if (options.isJSON) return writeJSONLine(listJSON(list), output, terminal);
    output.write(rendered(list, options.search, terminal));
}

}  // namespace kestrel::host
