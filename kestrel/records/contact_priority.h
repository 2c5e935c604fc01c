#pragma once

#include <kestrel/foundation/enumeration.h>
#include <cstdint>
#include <string>

namespace kestrel {

/// How much a contact matters: from 1, low, over 5, medium, to 10, high.
enum class ContactPriority : std::uint8_t {
    inactive = 0,  ///< not in use any more
    p1 = 1,        ///< low
    p2 = 2,        ///< between low and medium
    p3 = 3,        ///< between low and medium
    p4 = 4,        ///< between low and medium
    p5 = 5,        ///< medium
    p6 = 6,        ///< between medium and high
    p7 = 7,        ///< between medium and high
    p8 = 8,        ///< between medium and high
    p9 = 9,        ///< between medium and high
    p10 = 10,      ///< high
};
/// In the user's language.
[[nodiscard]] std::string displayName(ContactPriority priority);

}  // namespace kestrel
