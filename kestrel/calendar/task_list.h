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

/// A list of tasks.
struct TaskList {
    static constexpr auto recordName = recordNameOf<TaskList>;
    static constexpr auto entityName = entityNameOf<TaskList>;

    ReadOnly<ObjectID<TaskList>, TaskList> taskListID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What the list is for, as users describe it.
    std::optional<std::string> details{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the list.
    std::optional<std::string> name{};
    /// Key of the opportunity that it belongs to.
    std::optional<std::int64_t> opportunityID{};
    /// Position among the lists.
    std::int64_t order{};
    /// Key of the project that it belongs to.
    std::optional<std::int64_t> projectID{};

    [[nodiscard]] const ObjectID<TaskList>& objectID() const noexcept { return taskListID.get(); }
    [[nodiscard]] const ObjectID<TaskList>& id() const noexcept { return taskListID.get(); }
    friend bool operator==(const TaskList&, const TaskList&) = default;
};
extern template struct Codec<TaskList>;

}  // namespace kestrel
