#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// What a reminder does when it fires.
enum class ReminderType : std::uint8_t {
    unknown = 0,      ///< not said
    display = 1,      ///< shows a message
    email = 2,        ///< sends an e-mail
    sound = 3,        ///< plays a sound
    runScript = 4,    ///< runs a script
    openFile = 5,     ///< opens a file
    speakText = 6,    ///< speaks a text
    displayNote = 7,  ///< shows a note
};

/// What the amount of a relative reminder counts. The first three count back from the task or appointment, the next
/// three on from it.
enum class ReminderUnit : std::uint8_t {
    minutes = 0,       ///< minutes before
    hours = 1,         ///< hours before
    days = 2,          ///< days before
    minutesAfter = 3,  ///< minutes after
    hoursAfter = 4,    ///< hours after
    daysAfter = 5,     ///< days after
    onDateTime = 6,    ///< at its own time
    taskSameDay = 7,   ///< on the day of the task
};

/// A reminder of a task or an appointment. The flags are integers, 0 or 1, as in the store.
struct Reminder {
    static constexpr auto recordName = recordNameOf<Reminder>;
    static constexpr auto entityName = entityNameOf<Reminder>;

    ReadOnly<ObjectID<Reminder>, Reminder> reminderID;
    /// 1 while it is to fire.
    std::int64_t active{};
    /// 1 when it is put away.
    std::int64_t archived{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// When it is to fire.
    std::optional<Date> fireDatetime{};
    /// When it last fired.
    std::optional<Date> firedDatetime{};
    /// 1 when it is the user's default reminder.
    std::int64_t isDefaultForUserFlag{};
    /// 1 when its time is relative: then `measurement` and `unit` apply.
    std::int64_t isRelativeFlag{};
    /// The amount of `unit`.
    std::int64_t measurement{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// Settings of what it does, in a form of the host's.
    std::optional<Data> reminderSettings{};
    /// Key of the task that it belongs to.
    std::optional<std::int64_t> taskID{};
    /// Key of the appointment that it belongs to.
    std::optional<std::int64_t> timeblockID{};
    /// The raw value of its ReminderType; other codes are kept.
    std::int64_t typeCode{};
    /// The raw value of its ReminderUnit; other codes are kept.
    std::int64_t unit{};
    /// Key of the user who owns it.
    std::optional<std::int64_t> userID{};

    [[nodiscard]] const ObjectID<Reminder>& objectID() const noexcept { return reminderID.get(); }
    [[nodiscard]] const ObjectID<Reminder>& id() const noexcept { return reminderID.get(); }

    /// Absent for a code that is no type.
    [[nodiscard]] std::optional<ReminderType> type() const { return fromRawValue<ReminderType>(typeCode); }
    /// Absent for a code that is no unit.
    [[nodiscard]] std::optional<ReminderUnit> reminderUnit() const { return fromRawValue<ReminderUnit>(unit); }

    friend bool operator==(const Reminder&, const Reminder&) = default;
};
extern template struct Codec<Reminder>;

}  // namespace kestrel
