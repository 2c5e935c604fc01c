#include <host/command/contacts_command.h>
#include <host/contact/contact_list.h>
#include <host/services/host_runtime.h>
#include <host/services/value_of.h>
#include <kestrel/services/contacts_service.h>

namespace kestrel::host {
namespace {

constexpr std::size_t usualLimit = 50;

}  // namespace

void contactsCommand(const ContactsOptions& options, Output& output, const Terminal& terminal) {
    if (options.search && options.search->empty()) throw WrongUsage("the text to search for is empty");
    Runtime runtime = makeUserRuntime(options.database, options.user);
    const ContactListQuery query{.search = options.search,
                                 .limit = options.limit.value_or(options.isJSON ? 0 : usualLimit)};
    const ContactList list = valueOf(runtime[services::contacts].fetchContacts(query));
    if (options.isJSON) return writeJSONLine(listJSON(list), output, terminal);
    output.write(rendered(list, options.search, terminal));
}

}  // namespace kestrel::host
