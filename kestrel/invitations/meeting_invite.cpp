#include <kestrel/coding/wire_form.h>
#include <kestrel/invitations/meeting_invite.h>

namespace kestrel {

KESTREL_FIELDS(MeetingInvite, meetingInviteID, commonName, deletionDate, deletionIdentifier, deletionUserID,
               emailAddress, errorCode, inviteType, note, participationRole, responseStatus, sendingStatus, statusCode);

}  // namespace kestrel
