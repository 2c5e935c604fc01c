#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/identity/link_target.h>
#include <kestrel/identity/object_id.h>
#include <optional>

namespace kestrel {

/// The record whose activity a summary describes.
///
/// Written as the bare identifier, for all nine cases. Reading knows contacts only: what any other case has written
/// fails with `typeMismatch`. The asymmetry is part of the form.
class ActivitySourceID
    : public Choice<ActivitySourceID, ObjectID<Contact>, ObjectID<Company>, ObjectID<Task>, ObjectID<Timeblock>,
                    ObjectID<Project>, ObjectID<Opportunity>, ObjectID<Note>, ObjectID<Email>, ObjectID<Form>> {
  public:
    using Coded = void;

    ///@{
    /// The record of that identifier.
    [[nodiscard]] static ActivitySourceID contact(ObjectID<Contact> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID company(ObjectID<Company> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID task(ObjectID<Task> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID appointment(ObjectID<Timeblock> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID project(ObjectID<Project> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID opportunity(ObjectID<Opportunity> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID note(ObjectID<Note> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID email(ObjectID<Email> id) { return ActivitySourceID(id); }
    [[nodiscard]] static ActivitySourceID form(ObjectID<Form> id) { return ActivitySourceID(id); }
    ///@}

    [[nodiscard]] std::optional<ObjectID<Contact>> contact() const { return payload<ObjectID<Contact>>(); }
    [[nodiscard]] std::optional<ObjectID<Company>> company() const { return payload<ObjectID<Company>>(); }
    [[nodiscard]] std::optional<ObjectID<Task>> task() const { return payload<ObjectID<Task>>(); }
    [[nodiscard]] std::optional<ObjectID<Timeblock>> appointment() const { return payload<ObjectID<Timeblock>>(); }
    [[nodiscard]] std::optional<ObjectID<Project>> project() const { return payload<ObjectID<Project>>(); }
    [[nodiscard]] std::optional<ObjectID<Opportunity>> opportunity() const { return payload<ObjectID<Opportunity>>(); }
    [[nodiscard]] std::optional<ObjectID<Note>> note() const { return payload<ObjectID<Note>>(); }
    [[nodiscard]] std::optional<ObjectID<Email>> email() const { return payload<ObjectID<Email>>(); }
    [[nodiscard]] std::optional<ObjectID<Form>> form() const { return payload<ObjectID<Form>>(); }

    /// The same record as a link's target.
    [[nodiscard]] LinkTarget linkTarget() const;

    friend bool operator==(const ActivitySourceID&, const ActivitySourceID&) = default;

  private:
    friend CodingAccess;
    explicit ActivitySourceID(Variant value) : Choice(std::move(value)) {}
};

template <>
struct Codec<ActivitySourceID> {
    static bool encode(JSONWriter& writer, const ActivitySourceID& value);
    static bool decode(JSONReader& reader, ActivitySourceID& value);
    static ActivitySourceID blank();
    static void hash(Hasher& hasher, const ActivitySourceID& value);
    static void mirror(DebugMirror& mirror, const ActivitySourceID& value);
};

}  // namespace kestrel
