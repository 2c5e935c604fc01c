#pragma once

#include <kestrel/access/permissions.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/keyword.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// What a task asks to be done.
enum class TaskKind : std::uint8_t {
    todo = 0,          ///< anything
    inboundCall = 1,   ///< take a call
    outboundCall = 2,  ///< call somebody
    fax = 3,           ///< send a fax
    email = 4,         ///< write an e-mail
    mail = 5,          ///< send a letter
    print = 6          ///< print something
};

/// Where a task stands. The raw values 1 to 3 belong to no status.
enum class TaskStatus : std::uint8_t {
    open = 0,        ///< not begun
    pending = 4,     ///< waits for somebody else
    deferred = 5,    ///< put off
    inProgress = 6,  ///< begun
    done = 7,        ///< done
    cancelled = 8    ///< given up
};

/// A task: something to be done, by a date or some day.
struct Task {
    static constexpr auto recordName = recordNameOf<Task>;
    static constexpr auto entityName = entityNameOf<Task>;
    /// What `kind` tells.
    using Kind = TaskKind;
    /// What `status` tells.
    using Status = TaskStatus;

    ReadOnly<ObjectID<Task>, Task> taskID;
    /// When it was billed; absent while it is not.
    std::optional<Date> billedDate{};
    /// When it was done.
    std::optional<Date> completeDate{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What is to be done, at length.
    std::optional<std::string> details{};
    /// By when it is to be done; absent when that does not matter.
    std::optional<Date> dueDate{};
    /// In the store's unit.
    std::optional<std::int64_t> estimatedTime{};
    /// Kept for some day, without a schedule.
    bool isSomeday{};
    /// What it asks to be done.
    TaskKind kind{};
    /// Where it is to be done.
    std::optional<std::string> location{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The store's code.
    std::int64_t priority{};
    /// The rule of repetition, by weekdays. The rule's texts and codes are the store's and are not interpreted.
    std::optional<std::string> repeatByDays{};
    /// By days of the month.
    std::optional<std::string> repeatByMonthDays{};
    /// By months.
    std::optional<std::string> repeatByMonths{};
    /// By the n-th weekday.
    std::int64_t repeatByNthDay{};
    /// How often it occurs.
    std::int64_t repeatCount{};
    /// Until when it occurs.
    std::optional<Date> repeatEndDate{};
    /// The frequency's code.
    std::int64_t repeatFrequency{};
    /// Every n-th period.
    std::int64_t repeatInterval{};
    /// When the repetition was last changed.
    std::optional<Date> repeatModifyDate{};
    /// The date that an occurrence had before it was moved.
    std::optional<Date> repeatOriginalDate{};
    /// When it is to be begun.
    std::optional<Date> startDate{};
    /// Where it stands; open by default.
    TaskStatus status{};
    /// What is to be done, in a line.
    std::optional<std::string> title{};
    /// A link that goes with it, as the user wrote it.
    std::optional<std::string> urlString{};
    /// Who may read and change it.
    Permissions permissions{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Under which it can be found, each once.
    std::vector<Keyword> keywords{};

    [[nodiscard]] const ObjectID<Task>& objectID() const noexcept { return taskID.get(); }
    [[nodiscard]] const ObjectID<Task>& id() const noexcept { return taskID.get(); }

    /// Done or cancelled.
    [[nodiscard]] bool isClosed() const noexcept { return status == Status::done || status == Status::cancelled; }

    friend bool operator==(const Task&, const Task&) = default;
};
extern template struct Codec<Task>;

}  // namespace kestrel
