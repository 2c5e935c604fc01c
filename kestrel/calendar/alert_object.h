#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/enumeration.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// What an alert is about.
enum class AlertObjectType : std::uint16_t {
    unknown = 0,                               ///< not said
    delegation = 1000,                         ///< something was delegated to the user
    meetingInvitation = 1001,                  ///< the user is invited to a meeting
    meetingResponse = 1002,                    ///< somebody has answered an invitation
    reminder = 1003,                           ///< a reminder has fired
    delegationUpdate = 1004,                   ///< what was delegated has changed
    meetingUpdate = 1005,                      ///< a meeting has changed
    meetingDeletion = 1006,                    ///< a meeting was deleted
    delegationDeletion = 1007,                 ///< what was delegated was deleted
    meetingUninvited = 1008,                   ///< the user is no longer invited to a meeting
    externalInvitationResponse = 1009,         ///< somebody outside of the database has answered an invitation
    externalInvitationDeliveryFailure = 1010,  ///< an invitation could not be delivered
};
template <>
inline constexpr auto rawValueRanges<AlertObjectType> = std::array{RawValueRange{0, 0}, RawValueRange{1000, 1010}};

/// A message to a user inside the application, about a delegation, a meeting, a reminder or an external invitation. The
/// flags are integers, 0 or 1, as in the store.
struct AlertObject {
    static constexpr auto recordName = recordNameOf<AlertObject>;
    static constexpr auto entityName = entityNameOf<AlertObject>;

    ReadOnly<ObjectID<AlertObject>, AlertObject> alertObjectID;
    /// The raw value of its AlertObjectType; other codes are kept.
    std::int64_t alertTypeCode{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// 1 when the user dismissed it.
    std::int64_t dismissed{};
    /// 1 when it is not to be shown.
    std::int64_t hidden{};
    /// 1 when the user has read it.
    std::int64_t isReadCode{};
    /// 1 when it was shown.
    std::int64_t isShownCode{};
    /// The text of the message.
    std::optional<std::string> messageBlob{};
    /// Key of the opportunity that it concerns.
    std::optional<std::int64_t> opportunityID{};
    /// Key of the project that it concerns.
    std::optional<std::int64_t> projectID{};
    /// Key of the user whom it addresses.
    std::optional<std::int64_t> receivingUserID{};
    /// Key of the user who caused it.
    std::optional<std::int64_t> sendingUserID{};
    /// Key of the task that it concerns.
    std::optional<std::int64_t> taskID{};
    /// Key of the appointment that it concerns.
    std::optional<std::int64_t> timeblockID{};
    /// Further information in a form of the host's.
    std::optional<Data> userInfoStorage{};

    [[nodiscard]] const ObjectID<AlertObject>& objectID() const noexcept { return alertObjectID.get(); }
    [[nodiscard]] const ObjectID<AlertObject>& id() const noexcept { return alertObjectID.get(); }

    /// Absent for a code that is no type.
    [[nodiscard]] std::optional<AlertObjectType> type() const { return fromRawValue<AlertObjectType>(alertTypeCode); }

    friend bool operator==(const AlertObject&, const AlertObject&) = default;
};
extern template struct Codec<AlertObject>;

}  // namespace kestrel
