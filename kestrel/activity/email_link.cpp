#include <kestrel/activity/email_link.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

template <>
struct CaseTable<EmailLink> {
    static constexpr std::string_view typeName = "EmailLink";
    static constexpr std::array rows{CaseRow{"contact", "_0"}};
};
template struct Codec<EmailLink>;

}  // namespace kestrel
