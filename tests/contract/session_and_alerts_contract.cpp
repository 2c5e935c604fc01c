#include <kestrel/calendar/alert_object.h>
#include <kestrel/calendar/reminder.h>
#include <kestrel/session/database_preference.h>

#include "record_contract.h"

namespace contract {

using namespace kestrel;

std::vector<RecordContract> contractsOfSessionAndAlerts() {
    return {
        recordContract<AlertObject, &AlertObject::alertObjectID>(
            "AlertObject", "AlertObject",
            "alertObjectID:AlertObject alertTypeCode:int createDate:date?" + deletion +
                "dismissed:int hidden:int isReadCode:int isShownCode:int messageBlob:string? opportunityID:int? "
                "projectID:int? receivingUserID:int? sendingUserID:int? taskID:int? timeblockID:int? "
                "userInfoStorage:data?"),
        recordContract<Reminder, &Reminder::reminderID>(
            "Reminder", "Reminder",
            "reminderID:Reminder active:int archived:int createDate:date?" + deletion +
                "fireDatetime:date? firedDatetime:date? isDefaultForUserFlag:int isRelativeFlag:int measurement:int "
                "modifyDate:date? reminderSettings:data? taskID:int? timeblockID:int? typeCode:int unit:int "
                "userID:int?"),
        recordContract<DatabasePreference, &DatabasePreference::databasePreferenceID>(
            "DatabasePreference", "DatabasePreference",
            "databasePreferenceID:DatabasePreference" + deletion + "name:string? prefValue:string?"),
    };
}

}  // namespace contract
