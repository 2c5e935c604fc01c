#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/extra_fields_names.h>
#include <kestrel/records/extra_v_info.h>
#include <kestrel/records/group.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>

#include "record_contract.h"

namespace contract {

using namespace kestrel;

static_assert(areReadOnly<&Contact::createDate, &Contact::modifyDate>);

std::vector<RecordContract> contractsOfRecords() {
    return {
        recordContract<Company, &Company::organizationID>(
            "Company", "Organization",
            "organizationID:Company assignedToID:int? categoryID:int? createDate:date? createdByID:int? "
            "davCachedDepartment:string? "
            "davIdentifier:string? defaultNoteID:int?" +
                deletion + "detailsID:int? eTag:string?" + extras +
                "flagged:int imageDataID:int? industryTypeID:int? level:int modifyDate:date? "
                "name:string? numberOfEmployees:int order:int "
                "permissionMask:int regionTypeID:int? sicCode:string? sourceImportID:string? "
                "tagline:string? tickerSymbol:string? "
                "visibilityPresetID:int? permissions:permissions category:category?"),
        recordContract<Opportunity, &Opportunity::opportunityID>(
            "Opportunity", "Opportunity",
            "opportunityID:Opportunity assignedToID:int? cachedTotalAmount:double categoryID:int? completeDate:date? "
            "connectorLockDate:date? connectorLockIdentifier:string? connectorLockUserID:int? createDate:date? "
            "createdByID:int? "
            "currentPipelineID:int? currentPipelineStageHistoryID:int? currentPipelineStageID:int? defaultNoteID:int? "
            "delegateChain:string?" +
                deletion + "details:string? dueDate:date?" + extras +
                "goalID:int? lastOpportunityStateType:int level:int modifyDate:date? name:string? "
                "opportunityCode:string? "
                "opportunityStateReasonID:int? opportunityStateType:int opportunityTypeID:int? order:int "
                "permissionMask:int "
                "probability:int productServiceID:int? sourceImportID:string? startDate:date? termID:int? "
                "unitPrice:double "
                "units:double "
                "visibilityPresetID:int? permissions:permissions category:category?"),
        recordContract<Project, &Project::projectID>(
            "Project", "Project",
            "projectID:Project assignedToID:int? cachedTotalEstimatedTime:int? categoryID:int? "
            "completeDate:date? createDate:date? "
            "createdByID:int? currentPipelineID:int? currentPipelineStageHistoryID:int? "
            "currentPipelineStageID:int? defaultNoteID:int? "
            "delegateChain:string?" +
                deletion + "details:string? dueDate:date? estimatedTime:int?" + extras +
                "goalID:int? lastStatusCode:int level:int modifyDate:date? name:string? "
                "opportunityID:int? order:int percentComplete:int "
                "permissionMask:int projectCode:string? sourceImportID:string? startDate:date? "
                "statusCode:int visibilityPresetID:int? "
                "permissions:permissions category:category?"),
        recordContract<Group, &Group::groupID>(
            "Group", "Group",
            "groupID:Group active:int assignedToID:int? categoryID:int? createDate:date? createdByID:int? "
            "defaultNoteID:int?" +
                deletion + "endDate:date?" + extras +
                "level:int message:string? modifyDate:date? name:string? note:string? order:int parentGroupID:int? "
                "permissionMask:int sourceImportID:string? startDate:date? visibilityPresetID:int? "
                "permissions:permissions"),
        recordContract<ExtraFieldsNames, &ExtraFieldsNames::extraFieldsNamesID>(
            "ExtraFieldsNames", "ExtraFieldsNames",
            "objectID:ExtraFieldsNames" + deletion + extraTexts +
                "extraDate1:string? extraDate2:string? extraDate3:string? extraDate4:string? typeString:string?"),
        recordContract<ExtraVInfo, &ExtraVInfo::extraVInfoID>(
            "ExtraVInfo", "ExtraVInfo",
            "objectID:ExtraVInfo contactID:int" + deletion +
                "info:string? organizationID:int taskID:int timeblockID:int userID:int"),
        recordContract<Contact, &Contact::contactID>(
            "Contact", "Contact",
            "contactID:Contact alias:string? anniversaryDay:int anniversaryMonth:int anniversaryYear:int birthDay:int "
            "birthMonth:int birthYear:int createDate:date? creditation:string?" +
                deletion + "details:string?" + extras +
                "firstName:string? hobbies:string? imageAsset:image? individualSalutation:string? isFlagged:bool "
                "lastName:string? middleName:string? modifyDate:date? nickname:string? prefix:string? priority:enum "
                "relationshipToMe:string? suffix:string? tagline:string? permissions:permissions category:category? "
                "electronicAddresses:electronicAddresses geoAddresses:geoAddresses keywords:keywords phones:phones"),
    };
}

}  // namespace contract
