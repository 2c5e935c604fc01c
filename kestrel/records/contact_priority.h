#pragma once

#include <kestrel/foundation/enumeration.h>
#include <cstdint>
#include <string>

namespace kestrel {

/// How much a contact matters: from 1, low, over 5, medium, to 10, high.
enum class ContactPriority : std::uint8_t {
    inactive = 0,
    p1 = 1,
    p2 = 2,
    p3 = 3,
    p4 = 4,
    p5 = 5,
    p6 = 6,
    p7 = 7,
    p8 = 8,
    p9 = 9,
    p10 = 10,
};
/// In the user's language.
[[nodiscard]] std::string displayName(ContactPriority priority);

}  // namespace kestrel
