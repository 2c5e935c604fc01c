#include <kestrel/boards/sort_descriptor.h>
#include <kestrel/coding/wire_form.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/localization/localized.h>

namespace kestrel {

KESTREL_FIELDS(PipelineBoardSortDescriptor, key, order);

std::string localizedName(PipelineBoardSortKey key) {
    using enum PipelineBoardSortKey;
    switch (key) {
        case forecasted: return localized("Forecasted Close", "");
        case due: return localized("Due Date", "");
        case created: return localized("Created", "");
        case name: return localized("Name", "");
        case priority: return localized("Priority", "");
        case totalValue: return localized("Total Value", "");
        case probability: return localized("Probability", "");
        case nextActivity: return localized("Next Activity", "");
        case daysInStage: return localized("Days in Stage", "");
    }
    fatal("A PipelineBoardSortKey holds no case.");
}

std::string localizedName(PipelineBoardSortOrder order) {
    switch (order) {
        case PipelineBoardSortOrder::forward: return localized("Ascending", "");
        case PipelineBoardSortOrder::reverse: return localized("Descending", "");
    }
    fatal("A PipelineBoardSortOrder holds no case.");
}

}  // namespace kestrel
