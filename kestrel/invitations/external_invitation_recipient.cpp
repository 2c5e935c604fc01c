#include <kestrel/coding/wire_form.h>
#include <kestrel/invitations/external_invitation_recipient.h>

namespace kestrel {

KESTREL_FIELDS(ExternalInvitationRecipient, externalInvitationRecipientID, commonName, createDate, emailAddress,
               errorCode, inviteParticipationRole, inviteResponseStatus, inviteSendingStatus, messageID, modifyDate,
               sendDate, status);

}  // namespace kestrel
