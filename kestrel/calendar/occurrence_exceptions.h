#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// Takes one occurrence away from a repeating task.
struct TaskException {
    static constexpr auto recordName = recordNameOf<TaskException>;
    static constexpr auto entityName = entityNameOf<TaskException>;

    ReadOnly<ObjectID<TaskException>, TaskException> taskExceptionID;
    /// The occurrence that is removed.
    std::optional<Date> dateTime{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Key of the repeating task.
    std::optional<std::int64_t> taskID{};

    [[nodiscard]] const ObjectID<TaskException>& objectID() const noexcept { return taskExceptionID.get(); }
    [[nodiscard]] const ObjectID<TaskException>& id() const noexcept { return taskExceptionID.get(); }
    friend bool operator==(const TaskException&, const TaskException&) = default;
};
extern template struct Codec<TaskException>;

/// Takes one occurrence away from a repeating appointment.
struct TimeblockException {
    static constexpr auto recordName = recordNameOf<TimeblockException>;
    static constexpr auto entityName = entityNameOf<TimeblockException>;

    ReadOnly<ObjectID<TimeblockException>, TimeblockException> timeblockExceptionID;
    /// The occurrence that is removed.
    std::optional<Date> dateTime{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Key of the repeating appointment.
    std::optional<std::int64_t> timeblockID{};

    [[nodiscard]] const ObjectID<TimeblockException>& objectID() const noexcept { return timeblockExceptionID.get(); }
    [[nodiscard]] const ObjectID<TimeblockException>& id() const noexcept { return timeblockExceptionID.get(); }
    friend bool operator==(const TimeblockException&, const TimeblockException&) = default;
};
extern template struct Codec<TimeblockException>;

}  // namespace kestrel
