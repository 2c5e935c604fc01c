#include <kestrel/coding/wire_form.h>
#include <kestrel/relationships/contact_link.h>

namespace kestrel {

template <>
struct CaseTable<ContactLink> {
    static constexpr std::string_view typeName = "ContactLink";
    static constexpr std::array rows{CaseRow{"relationship", "_0"}, CaseRow{"companyRole", "_0"},
                                     CaseRow{"opportunityRole", "_0"}, CaseRow{"projectRole", "_0"},
                                     CaseRow{"email", "_0"}};
};
template struct Codec<ContactLink>;

ContactLink ContactLinkRecord::contactLink() const {
    return match(
        [](const ToContactRelationship& record) { return ContactLink::relationship(record.destination().objectID()); },
        [](const ContactCompanyRole& record) { return ContactLink::companyRole(record.company().objectID()); },
        [](const ContactOpportunityRole& record) {
            return ContactLink::opportunityRole(record.opportunity().objectID());
        },
        [](const ContactProjectRole& record) { return ContactLink::projectRole(record.project().objectID()); },
        [](const Email& record) { return ContactLink::email(record.objectID()); });
}

}  // namespace kestrel
