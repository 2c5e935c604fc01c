#include <kestrel/coding/wire_form.h>
#include <kestrel/invitations/meeting_history.h>

namespace kestrel {

KESTREL_FIELDS(MeetingHistory, meetingHistoryID, createDate, deletionDate, deletionIdentifier, deletionUserID,
               externalSource, inviteType, note, typeCode);

}  // namespace kestrel
