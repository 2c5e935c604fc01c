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

/// The days of one year on which a repeating appointment occurs.
struct RepeatEntry {
    static constexpr auto recordName = recordNameOf<RepeatEntry>;
    static constexpr auto entityName = entityNameOf<RepeatEntry>;

    ReadOnly<ObjectID<RepeatEntry>, RepeatEntry> repeatEntryID;
    /// The days of the year on which it occurs, in the store's text form.
    std::optional<std::string> daysOfYear{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Key of the repeating appointment.
    std::optional<std::int64_t> timeblockID{};
    /// Of the Gregorian calendar.
    std::int64_t year{};

    [[nodiscard]] const ObjectID<RepeatEntry>& objectID() const noexcept { return repeatEntryID.get(); }
    [[nodiscard]] const ObjectID<RepeatEntry>& id() const noexcept { return repeatEntryID.get(); }
    friend bool operator==(const RepeatEntry&, const RepeatEntry&) = default;
};
extern template struct Codec<RepeatEntry>;

/// The days of one year on which occurrences of a repeating appointment are removed.
struct RepeatExceptionEntry {
    static constexpr auto recordName = recordNameOf<RepeatExceptionEntry>;
    static constexpr auto entityName = entityNameOf<RepeatExceptionEntry>;

    ReadOnly<ObjectID<RepeatExceptionEntry>, RepeatExceptionEntry> repeatExceptionEntryID;
    /// The days of the year on which occurrences are removed, in the store's text form.
    std::optional<std::string> daysOfYear{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Key of the repeating appointment.
    std::optional<std::int64_t> timeblockID{};
    /// Of the Gregorian calendar.
    std::int64_t year{};

    [[nodiscard]] const ObjectID<RepeatExceptionEntry>& objectID() const noexcept {
        return repeatExceptionEntryID.get();
    }
    [[nodiscard]] const ObjectID<RepeatExceptionEntry>& id() const noexcept { return repeatExceptionEntryID.get(); }
    friend bool operator==(const RepeatExceptionEntry&, const RepeatExceptionEntry&) = default;
};
extern template struct Codec<RepeatExceptionEntry>;

}  // namespace kestrel
