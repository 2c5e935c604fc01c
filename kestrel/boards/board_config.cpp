#include <kestrel/boards/board_config.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(OpportunityBoardConfig, (_0, filter), (_1, sortDescriptor));
KESTREL_FIELDS(ProjectBoardConfig, (_0, filter), (_1, sortDescriptor));

template <>
struct CaseTable<BoardConfig> {
    static constexpr std::string_view typeName = "BoardConfig";
    static constexpr std::array rows{CaseRow{"opportunity"}, CaseRow{"project"}};
};
template struct Codec<BoardConfig>;

}  // namespace kestrel
