#include <kestrel/coding/wire_form.h>
#include <kestrel/custom/custom_record.h>

namespace kestrel {

KESTREL_FIELDS(CustomRecordSetDefinition, customRecordSetDefinitionID, createDate, deletionDate, deletionIdentifier,
               deletionUserID, details, isActive, modifyDate, name, order);

KESTREL_FIELDS(CustomRecordDefinition, customRecordDefinitionID, choices, createDate, customRecordSetDefinitionID,
               defaultValue, deletionDate, deletionIdentifier, deletionUserID, isRequired, kind, modifyDate, name,
               order);

KESTREL_FIELDS(CustomRecord, customRecordID, bridgedDisplayString, createDate, customRecordDefinitionID,
               customRecordSetID, dateValue, deletionDate, deletionIdentifier, deletionUserID, flagValue, modifyDate,
               name, numberValue, order, textValue);

}  // namespace kestrel
