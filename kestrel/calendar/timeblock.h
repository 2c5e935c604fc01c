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

/// What an appointment is. The raw value 3 belongs to no kind.
enum class TimeblockKind : std::uint8_t {
    unknown = 0,
    appointment = 1,
    event = 2,
    outboundCall = 4,
    inboundCall = 5,
    chat = 6,
    vacation = 7,
    meeting = 8,
    video = 9,
};

/// The same numbering where an appointment need not be of a kind: a choice of kinds has `none` for `unknown`.
enum class TimeblockType : std::uint8_t {
    none = 0,
    appointment = 1,
    event = 2,
    outboundCall = 4,
    inboundCall = 5,
    chat = 6,
    vacation = 7,
    meeting = 8,
    video = 9,
};

enum class TimeblockStatus : std::uint8_t {
    other = 0,
    tentative = 1,
    confirmed = 2,
    postponed = 3,
    completed = 4,
    cancelled = 5,
    pencilIn = 6,
};

/// An appointment.
struct Timeblock {
    static constexpr auto recordName = recordNameOf<Timeblock>;
    static constexpr auto entityName = entityNameOf<Timeblock>;
    using Kind = TimeblockKind;
    using Status = TimeblockStatus;

    ReadOnly<ObjectID<Timeblock>, Timeblock> timeblockID;
    std::optional<Date> billedDate{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    std::optional<std::string> details{};
    std::optional<Date> endDate{};
    /// Lasts whole days.
    bool isAllDay{};
    bool isArchived{};
    TimeblockKind kind{};
    std::optional<std::string> location{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
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
    /// Whether meeting invitations are sent again after a change.
    bool resendExternalInvitations{};
    bool showAsBusy{};
    std::optional<Date> startDate{};
    TimeblockStatus status{};
    /// The title.
    std::optional<std::string> subject{};
    /// Of the time-zone database: "Europe/Berlin".
    std::optional<std::string> timeZoneName{};
    std::optional<std::string> urlString{};
    /// Who may read and change it.
    Permissions permissions{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    std::vector<Keyword> keywords{};

    [[nodiscard]] const ObjectID<Timeblock>& objectID() const noexcept { return timeblockID.get(); }
    [[nodiscard]] const ObjectID<Timeblock>& id() const noexcept { return timeblockID.get(); }
    friend bool operator==(const Timeblock&, const Timeblock&) = default;
};
extern template struct Codec<Timeblock>;

}  // namespace kestrel
