#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <kestrel/invitations/invitation_enumerations.h>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// An answer that came back from an invitee.
struct MeetingHistory {
    static constexpr auto recordName = recordNameOf<MeetingHistory>;
    static constexpr auto entityName = entityNameOf<MeetingHistory>;

    ReadOnly<ObjectID<MeetingHistory>, MeetingHistory> meetingHistoryID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// How the answer arrived.
    MeetingHistoryExternalSource externalSource{};
    /// Who has answered.
    MeetingInviteType inviteType{};
    /// The comment sent with the answer.
    std::optional<std::string> note{};
    /// The raw value of its MeetingHistoryType; other codes are kept.
    std::int64_t typeCode{};

    [[nodiscard]] const ObjectID<MeetingHistory>& objectID() const noexcept { return meetingHistoryID.get(); }
    [[nodiscard]] const ObjectID<MeetingHistory>& id() const noexcept { return meetingHistoryID.get(); }

    /// Absent for a code that is no type.
    [[nodiscard]] std::optional<MeetingHistoryType> type() const { return fromRawValue<MeetingHistoryType>(typeCode); }

    friend bool operator==(const MeetingHistory&, const MeetingHistory&) = default;
};
extern template struct Codec<MeetingHistory>;

}  // namespace kestrel
