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
    unknown = 0,       ///< not said
    appointment = 1,   ///< any appointment
    event = 2,         ///< something that takes place
    outboundCall = 4,  ///< a call to make
    inboundCall = 5,   ///< a call to take
    chat = 6,          ///< a chat
    vacation = 7,      ///< time off
    meeting = 8,       ///< a meeting of several people
    video = 9,         ///< a video conference
};

/// The same numbering where an appointment need not be of a kind: a choice of kinds has `none` for `unknown`.
enum class TimeblockType : std::uint8_t {
    none = 0,          ///< of no kind
    appointment = 1,   ///< any appointment
    event = 2,         ///< something that takes place
    outboundCall = 4,  ///< a call to make
    inboundCall = 5,   ///< a call to take
    chat = 6,          ///< a chat
    vacation = 7,      ///< time off
    meeting = 8,       ///< a meeting of several people
    video = 9,         ///< a video conference
};

/// How firm an appointment is.
enum class TimeblockStatus : std::uint8_t {
    other = 0,      ///< not said
    tentative = 1,  ///< may take place
    confirmed = 2,  ///< takes place
    postponed = 3,  ///< put off
    completed = 4,  ///< took place
    cancelled = 5,  ///< does not take place
    pencilIn = 6,   ///< noted, not agreed
};

/// An appointment.
struct Timeblock {
    static constexpr auto recordName = recordNameOf<Timeblock>;
    static constexpr auto entityName = entityNameOf<Timeblock>;
    /// What `kind` tells.
    using Kind = TimeblockKind;
    /// What `status` tells.
    using Status = TimeblockStatus;

    ReadOnly<ObjectID<Timeblock>, Timeblock> timeblockID;
    /// When it was billed; absent while it is not.
    std::optional<Date> billedDate{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What it is about, at length.
    std::optional<std::string> details{};
    /// The moment at which it is over.
    std::optional<Date> endDate{};
    /// Lasts whole days.
    bool isAllDay{};
    /// Whether it is put away.
    bool isArchived{};
    /// What it is.
    TimeblockKind kind{};
    /// Where it takes place.
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
    /// Whether its people count as occupied meanwhile.
    bool showAsBusy{};
    /// The moment at which it begins.
    std::optional<Date> startDate{};
    /// How firm it is.
    TimeblockStatus status{};
    /// The title.
    std::optional<std::string> subject{};
    /// Of the time-zone database: "Europe/Berlin".
    std::optional<std::string> timeZoneName{};
    /// A link that goes with it, as the user wrote it.
    std::optional<std::string> urlString{};
    /// Who may read and change it.
    Permissions permissions{};
    /// Its category, with the name and colour to show.
    std::optional<Category> category{};
    /// Under which it can be found, each once.
    std::vector<Keyword> keywords{};

    [[nodiscard]] const ObjectID<Timeblock>& objectID() const noexcept { return timeblockID.get(); }
    [[nodiscard]] const ObjectID<Timeblock>& id() const noexcept { return timeblockID.get(); }
    friend bool operator==(const Timeblock&, const Timeblock&) = default;
};
extern template struct Codec<Timeblock>;

}  // namespace kestrel
