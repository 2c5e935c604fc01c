#include <fmt/format.h>
#include <host/command/links_command.h>
#include <host/contact/contact_names.h>
#include <host/contact/link_query.h>
#include <host/services/host_runtime.h>
#include <host/services/value_of.h>
#include <host/store/find_record.h>
#include <host/terminal/coded_json.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>
#include <host/terminal/text.h>
#include <kestrel/services/contacts_service.h>

namespace kestrel::host {
namespace {

/// What kind of link it is, in words.
std::string_view kindOf(const ContactLink& link) {
    if (link.relationship()) return "relationship";
    if (link.companyRole()) return "company role";
    if (link.opportunityRole()) return "opportunity role";
    return link.projectRole() ? "project role" : "email";
}

std::string linksText(const std::vector<LinkedContact>& links, const AnyObjectID& id, const Terminal& terminal) {
    if (links.empty()) return fmt::format("no contact's link points at {}\n", id.stringValue());
    Table table(4);
    table.add({"CONTACT", "IDENTIFIER", "LINK", "AS"}, boldStyle);
    for (const LinkedContact& found : links) {
        table.add({shownName(found.contact), found.contact.objectID().stringValue(),
                   std::string(kindOf(found.link.contactLink())), found.name.value_or("-")});
    }
    return table.rendered(terminal);
}

std::string linksJSON(const std::vector<LinkedContact>& links) {
    std::vector<std::string> elements;
    for (const LinkedContact& found : links) {
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
    Runtime runtime = makeUserRuntime(options.database, options.user);
    const std::vector<LinkedContact> links =
        valueOf(runtime[services::contacts].fetchLinks(ContactLinkQuery::destination(*target)), id);
    if (options.isJSON) return writeJSONLine(linksJSON(links), output, terminal);
    output.write(linksText(links, id, terminal));
}

}  // namespace kestrel::host
