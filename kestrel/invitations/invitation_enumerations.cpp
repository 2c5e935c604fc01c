#include <kestrel/foundation/fatal.h>
#include <kestrel/invitations/invitation_enumerations.h>
#include <kestrel/localization/localized.h>

namespace kestrel {

std::string displayName(MeetingInviteResponseStatus status) {
    switch (status) {
        case MeetingInviteResponseStatus::none: return localized("None", "Display name for invitation response status");
        case MeetingInviteResponseStatus::accepted:
            return localized("Accepted", "Display name for invitation response status");
        case MeetingInviteResponseStatus::declined:
            return localized("Declined", "Display name for invitation response status");
        case MeetingInviteResponseStatus::maybe:
            return localized("Maybe", "Display name for invitation response status");
    }
    fatal("An invitee has a response status that is none.");
}

std::string displayName(MeetingInviteParticipationRole role) {
    switch (role) {
        case MeetingInviteParticipationRole::required:
            return localized("Required", "Display name for an invitee's role in a meeting");
        case MeetingInviteParticipationRole::optional:
            return localized("Optional", "Display name for an invitee's role in a meeting");
    }
    fatal("An invitee has a participation role that is none.");
}

}  // namespace kestrel
