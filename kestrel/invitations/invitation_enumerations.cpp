#include <kestrel/invitations/invitation_enumerations.h>
#include <kestrel/localization/localized.h>

namespace kestrel {

std::string displayName(MeetingInviteResponseStatus status) {
    switch (status) {
        case MeetingInviteResponseStatus::none: break;
        case MeetingInviteResponseStatus::accepted:
            return localized("Accepted", "Display name for invitation response status");
        case MeetingInviteResponseStatus::declined:
            return localized("Declined", "Display name for invitation response status");
        case MeetingInviteResponseStatus::maybe:
            return localized("Maybe", "Display name for invitation response status");
    }
    return localized("None", "Display name for invitation response status");
}

std::string displayName(MeetingInviteParticipationRole role) {
    switch (role) {
        case MeetingInviteParticipationRole::required: break;
        case MeetingInviteParticipationRole::optional:
            return localized("Optional", "Display name for an invitee's role in a meeting");
    }
    return localized("Required", "Display name for an invitee's role in a meeting");
}

}  // namespace kestrel
