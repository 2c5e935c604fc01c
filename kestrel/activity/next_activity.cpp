#include <kestrel/activity/next_activity.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

template <>
struct CaseTable<NextActivityType> {
    static constexpr std::string_view typeName = "NextActivity.ActivityType";
    static constexpr std::array rows{CaseRow{"task", "_0"}, CaseRow{"appointment", "_0"}};
};
template struct Codec<NextActivityType>;

KESTREL_FIELDS(NextActivity, type, date, isAllDay);

AnyObjectID NextActivity::id() const {
    return type.match([](const ObjectID<Task>& id) { return AnyObjectID(id); },
                      [](const ObjectID<Timeblock>& id) { return AnyObjectID(id); });
}

}  // namespace kestrel
