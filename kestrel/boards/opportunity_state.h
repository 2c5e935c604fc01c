#pragma once

#include <kestrel/foundation/enumeration.h>
#include <cstdint>
#include <string>

namespace kestrel {

/// The outcome of an opportunity, by the database's codes. `allCases<OpportunityState>` walks them;
/// `fromRawValue<OpportunityState>(code)` is absent for a code that is none.
enum class OpportunityState : std::int64_t {
    open = 0,       ///< not decided
    won = 1,        ///< the customer has bought
    suspended = 2,  ///< put off
    abandoned = 3,  ///< given up
    lost = 4        ///< the customer has not bought
};

/// The state's name in the user's language.
[[nodiscard]] std::string localizedName(OpportunityState state);

}  // namespace kestrel
