#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/object_id.h>
#include <optional>

namespace kestrel {

/// Which activity is next: a task or an appointment. In keyed form one key, "task" or "appointment", holding the
/// identifier under "_0".
class NextActivityType : public Choice<NextActivityType, ObjectID<Task>, ObjectID<Timeblock>> {
  public:
    using Coded = void;

    /// That task.
    [[nodiscard]] static NextActivityType task(ObjectID<Task> id) { return NextActivityType(id); }
    /// That appointment.
    [[nodiscard]] static NextActivityType appointment(ObjectID<Timeblock> id) { return NextActivityType(id); }

    [[nodiscard]] std::optional<ObjectID<Task>> task() const { return payload<ObjectID<Task>>(); }
    [[nodiscard]] std::optional<ObjectID<Timeblock>> appointment() const { return payload<ObjectID<Timeblock>>(); }

    friend bool operator==(const NextActivityType&, const NextActivityType&) = default;

  private:
    friend CodingAccess;
    explicit NextActivityType(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<NextActivityType>;

/// The next upcoming task or appointment of a record. In keyed form "type", "date" and "isAllDay".
struct NextActivity {
    using Coded = void;
    /// What `type` tells.
    using ActivityType = NextActivityType;

    /// Which it is.
    ActivityType type;
    /// The task's due date or the appointment's start.
    Date date{};
    /// An appointment that lasts whole days; never a task.
    bool isAllDay{};

    /// The task or the appointment, type-erased.
    [[nodiscard]] AnyObjectID id() const;
    /// Whether it is an appointment, and no task.
    [[nodiscard]] bool isAppointment() const noexcept { return type.caseIndex() == 1; }

    friend bool operator==(const NextActivity&, const NextActivity&) = default;
};
extern template struct Codec<NextActivity>;

}  // namespace kestrel
