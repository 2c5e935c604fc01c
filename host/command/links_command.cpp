#include <fmt/format.h>
#include <host/command/links_command.h>
#include <host/contact/contact_names.h>
#include <host/contact/link_query.h>
#include <host/store/find_record.h>
#include <host/store/store.h>
#include <host/terminal/coded_json.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <host/terminal/text.h>

namespace kestrel::host {
namespace {

/// What kind of link it is, in words.
std::string_view kindOf(const ContactLink& link) {
    if (link.relationship()) return "relationship";
    if (link.companyRole()) return "company role";
    if (link.opportunityRole()) return "opportunity role";
    return link.projectRole() ? "project role" : "email";
}

std::string linksText(const std::vector<FoundLink>& links, const AnyObjectID& id, const Terminal& terminal) {
    if (links.empty()) return fmt::format("no contact is linked to {}\n", id.stringValue());
    Table table(4);
    table.add({"CONTACT", "IDENTIFIER", "LINK", "AS"}, boldStyle);
    for (const FoundLink& found : links) {
        table.add({shownName(found.contact), found.contact.objectID().stringValue(),
                   std::string(kindOf(found.link.contactLink())), found.name.value_or("-")});
    }
    return table.rendered(terminal);
}

std::string linksJSON(const std::vector<FoundLink>& links) {
    std::vector<std::string> elements;
    for (const FoundLink& found : links) {
        JSONObject json;
        json.addJSON("contact", coded(found.contact.objectID())).addJSON("link", coded(found.link.contactLink()));
        if (found.name) json.add("name", *found.name);
        elements.push_back(json.json());
    }
    return JSONObject::array(elements);
}

}  // namespace

void linksCommand(const LinksOptions& options, Output& output, const Terminal& terminal) {
    const AnyObjectID id = identifierOf(options.record);
    const auto target = linkTargetOf(id);
    if (!target) {
        throw WrongUsage(fmt::format("contacts are not linked to {}; they are to: {}", id.stringValue(),
                                     listed(linkTargetEntities())));
    }
    withDatabase(options.database, [&] {
        ReadingStore store(options.database);
        const Directory directory(store.database());
        ReadableRecords records(store.database(), directory, directory.user(options.user));
        const std::vector<FoundLink> links = answer(records, ContactLinkQuery::destination(*target));
        if (options.isJSON) return writeJSONLine(linksJSON(links), output, terminal);
        output.write(linksText(links, id, terminal));
    });
}

}  // namespace kestrel::host
