// expect: no type named|no match|no matching|not callable|incomplete
#include <kestrel/identity/pipeline_board_object_id.h>

using namespace kestrel;

bool isProject(const PipelineBoardObjectID& id) {
#ifdef KESTREL_CORRECT
    return id.match([](const ObjectID<Project>&) { return true; }, [](const ObjectID<Opportunity>&) { return false; });
#else
    return id.match([](const ObjectID<Project>&) { return true; });
#endif
}
