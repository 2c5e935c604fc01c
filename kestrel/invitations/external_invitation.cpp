#include <kestrel/coding/wire_form.h>
#include <kestrel/invitations/external_invitation.h>

namespace kestrel {

KESTREL_FIELDS(ExternalInvitation, externalInvitationID, createDate, emailMessage, emailSubject, icsSequence,
               invitationType, modifyDate, sendToAllRecipients, status, timeblockAllDay, timeblockCreateDate,
               timeblockDAVIdentifier, timeblockDetails, timeblockEndDate, timeblockLocation, timeblockModifyDate,
               timeblockShowAsBusy, timeblockStartDate, timeblockStatusCode, timeblockSubject, timeblockTimeZoneName);

}  // namespace kestrel
