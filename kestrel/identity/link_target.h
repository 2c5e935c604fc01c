#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/occurrence_edit_scope.h>
#include <optional>

namespace kestrel {

/// One occurrence of a repeating appointment, with the scope of an edit to it, as a link's target.
struct AppointmentOccurrenceTarget {
    using Coded = void;

    /// The series.
    ReadOnly<ObjectID<Timeblock>, AppointmentOccurrenceTarget> parentID;
    /// The occurrence's start.
    ReadOnly<Date, AppointmentOccurrenceTarget> startDate{};
    /// Which occurrences an edit by way of the link applies to.
    ReadOnly<OccurrenceEditScope, AppointmentOccurrenceTarget> editScope{};

    friend bool operator==(const AppointmentOccurrenceTarget&, const AppointmentOccurrenceTarget&) = default;
};
extern template struct Codec<AppointmentOccurrenceTarget>;

/// Any record, or one appointment occurrence, that a link from a contact may point to.
///
/// Written as its payload alone, without the case's name: the bare identifier, or for an occurrence an object with
/// "parentID", "startDate" and "editScope". Reading tries the cases in order and takes the first that fits: an
/// appointment's identifier, an occurrence, then the other identifiers. What fits none fails with `typeMismatch`.
class LinkTarget
    : public Choice<LinkTarget, ObjectID<Timeblock>, AppointmentOccurrenceTarget, ObjectID<Contact>, ObjectID<Company>,
                    ObjectID<Email>, ObjectID<Note>, ObjectID<Opportunity>, ObjectID<Task>, ObjectID<Project>,
                    ObjectID<Form>, ObjectID<FileAttachment>, ObjectID<URLReference>> {
  public:
    using Coded = void;
    /// The payload of the case of that name.
    using AppointmentOccurrence = AppointmentOccurrenceTarget;

    /// An appointment, or a repeating one as a whole.
    [[nodiscard]] static LinkTarget appointment(ObjectID<Timeblock> id) { return LinkTarget(id); }
    /// One occurrence of a repeating appointment.
    [[nodiscard]] static LinkTarget appointmentOccurrence(ObjectID<Timeblock> parentID, Date startDate,
                                                          OccurrenceEditScope editScope) {
        return LinkTarget(AppointmentOccurrence{parentID, startDate, editScope});
    }
    ///@{
    /// The record of that identifier.
    [[nodiscard]] static LinkTarget contact(ObjectID<Contact> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget company(ObjectID<Company> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget email(ObjectID<Email> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget note(ObjectID<Note> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget opportunity(ObjectID<Opportunity> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget task(ObjectID<Task> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget project(ObjectID<Project> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget form(ObjectID<Form> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget file(ObjectID<FileAttachment> id) { return LinkTarget(id); }
    [[nodiscard]] static LinkTarget urlReference(ObjectID<URLReference> id) { return LinkTarget(id); }
    ///@}

    [[nodiscard]] std::optional<ObjectID<Timeblock>> appointment() const { return payload<ObjectID<Timeblock>>(); }
    [[nodiscard]] std::optional<AppointmentOccurrence> appointmentOccurrence() const {
        return payload<AppointmentOccurrence>();
    }
    [[nodiscard]] std::optional<ObjectID<Contact>> contact() const { return payload<ObjectID<Contact>>(); }
    [[nodiscard]] std::optional<ObjectID<Company>> company() const { return payload<ObjectID<Company>>(); }
    [[nodiscard]] std::optional<ObjectID<Email>> email() const { return payload<ObjectID<Email>>(); }
    [[nodiscard]] std::optional<ObjectID<Note>> note() const { return payload<ObjectID<Note>>(); }
    [[nodiscard]] std::optional<ObjectID<Opportunity>> opportunity() const { return payload<ObjectID<Opportunity>>(); }
    [[nodiscard]] std::optional<ObjectID<Task>> task() const { return payload<ObjectID<Task>>(); }
    [[nodiscard]] std::optional<ObjectID<Project>> project() const { return payload<ObjectID<Project>>(); }
    [[nodiscard]] std::optional<ObjectID<Form>> form() const { return payload<ObjectID<Form>>(); }
    [[nodiscard]] std::optional<ObjectID<FileAttachment>> file() const { return payload<ObjectID<FileAttachment>>(); }
    [[nodiscard]] std::optional<ObjectID<URLReference>> urlReference() const {
        return payload<ObjectID<URLReference>>();
    }

    /// The record's identifier, type-erased; absent for an occurrence, which is no record.
    [[nodiscard]] std::optional<AnyObjectID> baseObjectID() const;

    friend bool operator==(const LinkTarget&, const LinkTarget&) = default;

  private:
    friend CodingAccess;
    explicit LinkTarget(Variant value) : Choice(std::move(value)) {}
};

template <>
struct Codec<LinkTarget> {
    static bool encode(JSONWriter& writer, const LinkTarget& value);
    static bool decode(JSONReader& reader, LinkTarget& value);
    static LinkTarget blank();
    static void hash(Hasher& hasher, const LinkTarget& value);
    static void mirror(DebugMirror& mirror, const LinkTarget& value);
};

}  // namespace kestrel
