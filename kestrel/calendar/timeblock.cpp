#include <kestrel/calendar/timeblock.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {

KESTREL_FIELDS(Timeblock, timeblockID, billedDate, createDate, deletionDate, deletionIdentifier, deletionUserID,
               details, endDate, isAllDay, isArchived, kind, location, modifyDate, repeatByDays, repeatByMonthDays,
               repeatByMonths, repeatByNthDay, repeatCount, repeatEndDate, repeatFrequency, repeatInterval,
               repeatModifyDate, repeatOriginalDate, resendExternalInvitations, showAsBusy, startDate, status, subject,
               timeZoneName, urlString, permissions, category, keywords);

}  // namespace kestrel
