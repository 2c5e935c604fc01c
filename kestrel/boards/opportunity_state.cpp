#include <kestrel/boards/opportunity_state.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/localized.h>

namespace kestrel {

std::string localizedName(OpportunityState state) {
    switch (state) {
        case OpportunityState::open: return localized("Open", "");
        case OpportunityState::won: return localized("Won", "");
        case OpportunityState::suspended: return localized("Suspended", "");
        case OpportunityState::abandoned: return localized("Abandoned", "");
        case OpportunityState::lost: return localized("Lost", "");
    }
    fatal("An OpportunityState holds no case.");
}

}  // namespace kestrel
