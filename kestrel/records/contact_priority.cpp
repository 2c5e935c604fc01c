#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/localized.h>
#include <kestrel/records/contact_priority.h>
#include <array>
#include <cstddef>

namespace kestrel {

std::string displayName(ContactPriority priority) {
    static constexpr std::array texts{
        localizable("0 (Inactive)", "Contact Priority"),
        localizable("1 (Low)", "Contact Priority"),
        localizable("2", "Contact Priority"),
        localizable("3", "Contact Priority"),
        localizable("4", "Contact Priority"),
        localizable("5 (Medium)", "Contact Priority"),
        localizable("6", "Contact Priority"),
        localizable("7", "Contact Priority"),
        localizable("8", "Contact Priority"),
        localizable("9", "Contact Priority"),
        localizable("10 (High)", "Contact Priority"),
    };
    static_assert(texts.size() == allCases<ContactPriority>.size());
    const auto index = static_cast<std::size_t>(priority);
    if (index >= texts.size()) fatal("A contact has a priority that is none.");
    return localized(texts[index]);
}

}  // namespace kestrel
