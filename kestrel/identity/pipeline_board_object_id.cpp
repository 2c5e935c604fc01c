#include <kestrel/coding/wire_form.h>
#include <kestrel/identity/pipeline_board_object_id.h>

namespace kestrel {

template <>
struct CaseTable<PipelineBoardObjectID> {
    static constexpr std::string_view typeName = "PipelineBoardObjectID";
    static constexpr std::array rows{CaseRow{"project", "_0"}, CaseRow{"opportunity", "_0"}};
};
template struct Codec<PipelineBoardObjectID>;

}  // namespace kestrel
