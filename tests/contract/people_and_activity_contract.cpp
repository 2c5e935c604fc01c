#include <kestrel/activity/email.h>
#include <kestrel/activity/email_message_status.h>
#include <kestrel/activity/form.h>
#include <kestrel/activity/note.h>
#include <kestrel/calendar/occurrence_exceptions.h>
#include <kestrel/calendar/repeat_entries.h>
#include <kestrel/calendar/task.h>
#include <kestrel/calendar/task_list.h>
#include <kestrel/calendar/timeblock.h>
#include <kestrel/custom/custom_record.h>
#include <kestrel/details/electronic_address.h>
#include <kestrel/details/geo_address.h>
#include <kestrel/details/phone.h>
#include <kestrel/files/file_attachment.h>
#include <kestrel/files/image_asset.h>
#include <kestrel/files/url_reference.h>
#include <kestrel/invitations/external_invitation.h>
#include <kestrel/invitations/external_invitation_config.h>
#include <kestrel/invitations/external_invitation_recipient.h>
#include <kestrel/invitations/meeting_history.h>
#include <kestrel/invitations/meeting_invite.h>
#include <kestrel/relationships/any_relationship.h>
#include <kestrel/relationships/any_role.h>

#include "record_contract.h"

namespace contract {

using namespace kestrel;

static_assert(areReadOnly<&Note::createDate, &Note::modifyDate> &&
              areReadOnly<&Email::createDate, &Email::modifyDate> &&
              areReadOnly<&Form::createDate, &Form::modifyDate> && areReadOnly<&AnyRole::createDate> &&
              areReadOnly<&AnyRelationship::createDate>);

std::vector<RecordContract> contractsOfPeopleAndActivity() {
    const std::string envelope = " createDate:date?" + deletion;
    const std::string filed = "permissions:permissions category:category? keywords:keywords";
    const std::string repetition =
        "repeatByDays:string? repeatByMonthDays:string? repeatByMonths:string? repeatByNthDay:int repeatCount:int "
        "repeatEndDate:date? repeatFrequency:int repeatInterval:int repeatModifyDate:date? repeatOriginalDate:date? ";
    return {
        recordContract<Phone, &Phone::phoneID>(
            "Phone", "Phone", "phoneID:Phone" + envelope + "label:label? modifyDate:date? number:string?"),
        recordContract<GeoAddress, &GeoAddress::geoAddressID>(
            "GeoAddress", "GeoAddress",
            "geoAddressID:GeoAddress city:string? country:string? countryCode:string?" + envelope +
                "label:label? latitude:double? longitude:double? modifyDate:date? "
                "postalCode:string? state:string? street:string?"),
        recordContract<AnyElectronicAddress, &AnyElectronicAddress::electronicAddressID>(
            "AnyElectronicAddress", "ElectronicAddress",
            "electronicAddressID:AnyElectronicAddress address:string?" + envelope +
                "kind:enum label:label? modifyDate:date? serviceName:string?"),
        recordContract<ImageAsset, &ImageAsset::imageAssetID>(
            "ImageAsset", "ImageAsset",
            "imageAssetID:ImageAsset createDate:date? data:data?" + deletion +
                "height:int mimeType:string? modifyDate:date? name:string? width:int"),
        recordContract<FileAttachment, &FileAttachment::fileAttachmentID>(
            "FileAttachment", "FileAttachment",
            "fileAttachmentID:FileAttachment attachmentNote:string?" + envelope +
                "mimeType:string? modifyDate:date? name:string? size:int title:string? permissions:permissions"),
        recordContract<URLReference, &URLReference::urlReferenceID>(
            "URLReference", "URLReference",
            "urlReferenceID:URLReference" + envelope +
                "modifyDate:date? name:string? note:string? urlString:string? permissions:permissions"),
        recordContract<CustomRecord, &CustomRecord::customRecordID>(
            "CustomRecord", "CustomRecord",
            "customRecordID:CustomRecord bridgedDisplayString:string? createDate:date? customRecordDefinitionID:int? "
            "customRecordSetID:int? dateValue:date?" +
                deletion +
                "flagValue:bool? modifyDate:date? name:string? numberValue:double? order:int textValue:string?"),
        recordContract<CustomRecordDefinition, &CustomRecordDefinition::customRecordDefinitionID>(
            "CustomRecordDefinition", "CustomRecordDefinition",
            "customRecordDefinitionID:CustomRecordDefinition choices:texts createDate:date? "
            "customRecordSetDefinitionID:int? defaultValue:string?" +
                deletion + "isRequired:bool kind:enum modifyDate:date? name:string? order:int"),
        recordContract<CustomRecordSetDefinition, &CustomRecordSetDefinition::customRecordSetDefinitionID>(
            "CustomRecordSetDefinition", "CustomRecordSetDefinition",
            "customRecordSetDefinitionID:CustomRecordSetDefinition" + envelope +
                "details:string? isActive:bool modifyDate:date? name:string? order:int"),
        recordContract<Task, &Task::taskID>(
            "Task", "Task",
            "taskID:Task billedDate:date? completeDate:date?" + envelope +
                "details:string? dueDate:date? estimatedTime:int? isSomeday:bool kind:enum "
                "location:string? modifyDate:date? priority:int " +
                repetition + "startDate:date? status:status title:string? urlString:string? " + filed),
        recordContract<Timeblock, &Timeblock::timeblockID>(
            "Timeblock", "Timeblock",
            "timeblockID:Timeblock billedDate:date?" + envelope +
                "details:string? endDate:date? isAllDay:bool isArchived:bool kind:enum "
                "location:string? modifyDate:date? " +
                repetition +
                "resendExternalInvitations:bool showAsBusy:bool startDate:date? status:enum "
                "subject:string? timeZoneName:string? urlString:string? " +
                filed),
        recordContract<TaskList, &TaskList::taskListID>(
            "TaskList", "TaskList",
            "taskListID:TaskList" + envelope +
                "details:string? modifyDate:date? name:string? opportunityID:int? order:int projectID:int?"),
        recordContract<TaskException, &TaskException::taskExceptionID>(
            "TaskException", "TaskException",
            "taskExceptionID:TaskException dateTime:date?" + deletion + "taskID:int?"),
        recordContract<TimeblockException, &TimeblockException::timeblockExceptionID>(
            "TimeblockException", "TimeblockException",
            "timeblockExceptionID:TimeblockException dateTime:date?" + deletion + "timeblockID:int?"),
        recordContract<RepeatEntry, &RepeatEntry::repeatEntryID>(
            "RepeatEntry", "RepeatEntry",
            "repeatEntryID:RepeatEntry daysOfYear:string?" + deletion + "timeblockID:int? year:int"),
        recordContract<RepeatExceptionEntry, &RepeatExceptionEntry::repeatExceptionEntryID>(
            "RepeatExceptionEntry", "RepeatExceptionEntry",
            "repeatExceptionEntryID:RepeatExceptionEntry daysOfYear:string?" + deletion + "timeblockID:int? year:int"),
        recordContract<Note, &Note::noteID>(
            "Note", "Note",
            "noteID:Note body:body?" + envelope + "modifyDate:date? organizationID:int? title:string? " + filed),
        recordContract<Email, &Email::emailID>(
            "Email", "Email",
            "emailID:Email bccString:string? ccString:string?" + envelope +
                "dmiRecordDate:date? dmiStatusCode:int fromString:string? inReplyToMessageID:string? messageDate:date? "
                "messageID:string? modifyDate:date? rawHeader:string? subject:string? toString:string? " +
                filed),
        recordContract<EmailMessageStatus, &EmailMessageStatus::emailMessageStatusID>(
            "EmailMessageStatus", "EmailMessageStatus",
            "emailMessageStatusID:EmailMessageStatus" + envelope +
                "inReplyToMessageID:string? messageID:string? modifyDate:date? "
                "noteID:int? processedByUserID:int? statusCode:int"),
        recordContract<Form, &Form::customRecordSetID>(
            "Form", "Form",
            "customRecordSetID:Form" + envelope +
                "modifyDate:date? name:string? permissions:permissions keywords:keywords"),
        recordContract<AnyRole, &AnyRole::roleID>(
            "AnyRole", "Role",
            "roleID:AnyRole" + envelope +
                "department:string? isDefaultForContact:bool name:string? roleType:roleType?"),
        recordContract<AnyRelationship, &AnyRelationship::relationID>(
            "AnyRelationship", "Relationship",
            "relationID:AnyRelationship" + envelope + "details:string? relationshipType:relationshipType?"),
        recordContract<ExternalInvitation, &ExternalInvitation::externalInvitationID>(
            "ExternalInvitation", "ExternalInvitation",
            "externalInvitationID:ExternalInvitation createDate:date? emailMessage:string? emailSubject:string? "
            "icsSequence:int invitationType:enum modifyDate:date? sendToAllRecipients:bool status:enum "
            "timeblockAllDay:bool timeblockCreateDate:date? timeblockDAVIdentifier:string? timeblockDetails:string? "
            "timeblockEndDate:date? timeblockLocation:string? timeblockModifyDate:date? timeblockShowAsBusy:bool "
            "timeblockStartDate:date? timeblockStatusCode:int timeblockSubject:string? timeblockTimeZoneName:string?"),
        recordContract<ExternalInvitationRecipient, &ExternalInvitationRecipient::externalInvitationRecipientID>(
            "ExternalInvitationRecipient", "ExternalInvitationRecipient",
            "externalInvitationRecipientID:ExternalInvitationRecipient commonName:string? createDate:date? "
            "emailAddress:string errorCode:enum inviteParticipationRole:enum inviteResponseStatus:enum "
            "inviteSendingStatus:enum messageID:string? modifyDate:date? sendDate:date? status:enum"),
        recordContract<ExternalInvitationConfig, &ExternalInvitationConfig::externalInvitationConfigID>(
            "ExternalInvitationConfig", "ExternalInvitationConfig",
            "externalInvitationConfigID:ExternalInvitationConfig createDate:date? hideAttendeeList:bool "
            "includeDetails:bool languageCode:string modifyDate:date? regionCode:string? replyToCommonName:string? "
            "replyToEmailAddress:string?"),
        recordContract<MeetingInvite, &MeetingInvite::meetingInviteID>(
            "MeetingInvite", "MeetingInvite",
            "meetingInviteID:MeetingInvite commonName:string?" + deletion +
                "emailAddress:string? errorCode:enum inviteType:enum note:string? participationRole:enum "
                "responseStatus:enum sendingStatus:enum statusCode:int"),
        recordContract<MeetingHistory, &MeetingHistory::meetingHistoryID>(
            "MeetingHistory", "MeetingHistory",
            "meetingHistoryID:MeetingHistory" + envelope +
                "externalSource:enum inviteType:enum note:string? typeCode:int"),
    };
}

}  // namespace contract
