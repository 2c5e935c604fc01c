#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <optional>
#include <string>

namespace kestrel {

/// The account-wide settings for invitation mails.
struct ExternalInvitationConfig {
    static constexpr auto recordName = recordNameOf<ExternalInvitationConfig>;
    static constexpr auto entityName = entityNameOf<ExternalInvitationConfig>;

    ReadOnly<ObjectID<ExternalInvitationConfig>, ExternalInvitationConfig> externalInvitationConfigID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Whether the mail leaves out the other invitees.
    bool hideAttendeeList{};
    /// Whether the mail has the details of the appointment.
    bool includeDetails{};
    /// The language of the mail.
    std::string languageCode{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// The region whose forms dates and times have.
    std::optional<std::string> regionCode{};
    /// The name beside the address that answers go to.
    std::optional<std::string> replyToCommonName{};
    /// The address that answers go to; absent when none was set.
    std::optional<std::string> replyToEmailAddress{};

    [[nodiscard]] const ObjectID<ExternalInvitationConfig>& objectID() const noexcept {
        return externalInvitationConfigID.get();
    }
    [[nodiscard]] const ObjectID<ExternalInvitationConfig>& id() const noexcept {
        return externalInvitationConfigID.get();
    }
    friend bool operator==(const ExternalInvitationConfig&, const ExternalInvitationConfig&) = default;
};
extern template struct Codec<ExternalInvitationConfig>;

}  // namespace kestrel
