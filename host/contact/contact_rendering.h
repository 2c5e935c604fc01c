#pragma once

#include <host/terminal/output.h>
#include <host/terminal/page_section.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/records/extra_fields_namer.h>
#include <kestrel/relationships/contact_info.h>
#include <string>
#include <vector>

namespace kestrel::host {

/// A contact with what its page needs beside it.
struct ContactPage {
    ContactInfo info;
    /// Of the names; empty for the user's.
    std::string locale{};
    /// That moments are shown in.
    Calendar calendar = Calendar::current();
    ExtraFieldsNamer extraFields = ExtraFieldsNamer::empty();
    std::string visibility{};
};

/// What there is to say below the name, a section for each kind of detail, none of them empty.
[[nodiscard]] std::vector<PageSection> contactSections(const ContactPage& page);

/// The page as text: the name, what describes the person, and then a section for each kind of detail that there is.
[[nodiscard]] std::string rendered(const ContactPage& page, const Terminal& terminal);

/// The page as a JSON object. Records stand in it in keyed form; those at the other end of roles and relationships only
/// by identifier and name, and not at all when the user may not read them.
[[nodiscard]] std::string pageJSON(const ContactPage& page);

}  // namespace kestrel::host
