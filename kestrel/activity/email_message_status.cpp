#include <kestrel/activity/email_message_status.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(EmailMessageStatus, emailMessageStatusID, createDate, deletionDate, deletionIdentifier, deletionUserID,
               inReplyToMessageID, messageID, modifyDate, noteID, processedByUserID, statusCode);

}  // namespace kestrel
