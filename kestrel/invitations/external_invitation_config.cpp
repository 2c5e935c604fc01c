#include <kestrel/coding/wire_form.h>
#include <kestrel/invitations/external_invitation_config.h>

namespace kestrel {

KESTREL_FIELDS(ExternalInvitationConfig, externalInvitationConfigID, createDate, hideAttendeeList, includeDetails,
               languageCode, modifyDate, regionCode, replyToCommonName, replyToEmailAddress);

}  // namespace kestrel
