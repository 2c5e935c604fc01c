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

/// One mail about one appointment to people outside of the database.
struct ExternalInvitation {
    static constexpr auto recordName = recordNameOf<ExternalInvitation>;
    static constexpr auto entityName = entityNameOf<ExternalInvitation>;

    ReadOnly<ObjectID<ExternalInvitation>, ExternalInvitation> externalInvitationID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// The body that the user wrote.
    std::optional<std::string> emailMessage{};
    /// The title of the mail, as the user wrote it.
    std::optional<std::string> emailSubject{};
    /// The sequence number in the calendar file of this mail.
    std::int64_t icsSequence{};
    /// What the mail says.
    ExternalInvitationType invitationType{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// Whether the mail goes to all invitees of the appointment.
    bool sendToAllRecipients{};
    /// Whether sending is finished.
    ExternalInvitationStatus status{};
    /// Timeblock::isAllDay. The appointment, here and below, is as it was when the mail went out.
    bool timeblockAllDay{};
    /// When the appointment was created.
    std::optional<Date> timeblockCreateDate{};
    /// The appointment's calendar identifier, shared with the calendar file.
    std::optional<std::string> timeblockDAVIdentifier{};
    /// Timeblock::details.
    std::optional<std::string> timeblockDetails{};
    /// Timeblock::endDate.
    std::optional<Date> timeblockEndDate{};
    /// Timeblock::location.
    std::optional<std::string> timeblockLocation{};
    /// When the appointment was last changed.
    std::optional<Date> timeblockModifyDate{};
    /// Timeblock::showAsBusy.
    bool timeblockShowAsBusy{};
    /// Timeblock::startDate.
    std::optional<Date> timeblockStartDate{};
    /// The raw value of its TimeblockStatus.
    std::int64_t timeblockStatusCode{};
    /// Timeblock::subject.
    std::optional<std::string> timeblockSubject{};
    /// Timeblock::timeZoneName.
    std::optional<std::string> timeblockTimeZoneName{};

    [[nodiscard]] const ObjectID<ExternalInvitation>& objectID() const noexcept { return externalInvitationID.get(); }
    [[nodiscard]] const ObjectID<ExternalInvitation>& id() const noexcept { return externalInvitationID.get(); }
    friend bool operator==(const ExternalInvitation&, const ExternalInvitation&) = default;
};
extern template struct Codec<ExternalInvitation>;

}  // namespace kestrel
