#include <kestrel/access/permission_checker.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/opportunity_state_reason.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/lookups/company_types.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/lookups/opportunity_type.h>
#include <kestrel/lookups/user.h>
#include <kestrel/records/company.h>
#include <kestrel/records/extra_fields_namer.h>
#include <kestrel/records/extra_v_info.h>
#include <kestrel/records/group.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>

#include <type_traits>

#include "coded_contract.h"

namespace {

using namespace kestrel;

const std::string deletion = " deletionDate:date? deletionIdentifier:string? deletionUserID:int? ";
const std::string extraTexts =
    " extra1:string? extra10:string? extra11:string? extra12:string? extra2:string? extra3:string? extra4:string? "
    "extra5:string?"
    " extra6:string? extra7:string? extra8:string? extra9:string? ";
const std::string extras = extraTexts + " extraDate1:date? extraDate2:date? extraDate3:date? extraDate4:date? ";
const std::string listEntry = " createDate:date?" + deletion + "isActive:bool modifyDate:date? name:string? order:int ";

/// The contract of a record: that of its fields, and that its identifier is its own and read-only.
template <class Record>
void expectRecord(std::string_view recordName, std::string_view entityName, const std::string& fields) {
    SCOPED_TRACE(recordName);
    static_assert(BaseRecord<Record>);
    EXPECT_EQ(Record::recordName, recordName);
    EXPECT_EQ(Record::entityName, entityName);
    contract::expectCodedAs<Record>(fields);
    static_assert(!std::is_assignable_v<decltype(std::declval<Record&>().objectID()), ObjectID<Record>>);
    static_assert(std::is_nothrow_move_constructible_v<Record> && std::is_copy_assignable_v<Record>);

    Record one{ObjectID<Record>(1)};
    Record two{ObjectID<Record>(2)};
    std::swap(one, two);
    EXPECT_EQ(one.id(), ObjectID<Record>(2)) << "whole records still swap";
    const auto unsaved = encodeJSON(Record{ObjectID<Record>()});
    ASSERT_FALSE(unsaved.has_value());
    EXPECT_EQ(unsaved.error().codingPath.keys().size(), 1U);
    EXPECT_EQ(unsaved.error().description, "Cannot encode a .new ObjectID using Encodable. Persist the record first.");
}

TEST(EveryRecord, keepsTheContractOfLookups) {
    expectRecord<Category>("Category", "Category", "categoryID:Category color:color?" + listEntry);
    expectRecord<Keyword>("Keyword", "Keyword", "keywordID:Keyword" + listEntry);
    expectRecord<OpportunityType>("OpportunityType", "OpportunityType",
                                  "opportunityTypeID:OpportunityType" + listEntry);
    expectRecord<CompanyType>("CompanyType", "OrganizationType", "companyTypeID:CompanyType" + listEntry);
    expectRecord<IndustryType>("IndustryType", "IndustryType", "industryTypeID:IndustryType" + listEntry);
    expectRecord<RegionType>("RegionType", "RegionType", "regionTypeID:RegionType" + listEntry);
    expectRecord<Team>(
        "Team", "Team",
        "teamID:Team createDate:date?" + deletion +
            "details:string? isActive:bool isUserPrivateTeam:bool modifyDate:date? name:string? order:int");
    expectRecord<User>(
        "User", "User",
        "userID:User createDate:date?" + deletion +
            "email:string? firstName:string? isActive:bool isAdmin:bool isRestrictedToDeleteObjects:bool isSuper:bool "
            "jobTitle:string? lastLoginDate:date? lastName:string? modifyDate:date? name:string? phone:string? "
            "timeZoneName:string? username:string? teamIDs:teams");
    expectRecord<VisibilityPreset>(
        "VisibilityPreset", "VisibilityPreset",
        "objectID:VisibilityPreset" + deletion + "name:string? noReadAccess:int noWriteAccess:int");
}

TEST(EveryRecord, keepsTheContractOfTopLevelRecords) {
    expectRecord<Company>("Company", "Organization",
                          "organizationID:Company assignedToID:int? categoryID:int? createDate:date? createdByID:int? "
                          "davCachedDepartment:string? "
                          "davIdentifier:string? defaultNoteID:int?" +
                              deletion + "detailsID:int? eTag:string?" + extras +
                              "flagged:int imageDataID:int? industryTypeID:int? level:int modifyDate:date? "
                              "name:string? numberOfEmployees:int order:int "
                              "permissionMask:int regionTypeID:int? sicCode:string? sourceImportID:string? "
                              "tagline:string? tickerSymbol:string? "
                              "visibilityPresetID:int? permissions:permissions category:category?");
    expectRecord<Opportunity>(
        "Opportunity", "Opportunity",
        "opportunityID:Opportunity assignedToID:int? cachedTotalAmount:double categoryID:int? completeDate:date? "
        "connectorLockDate:date? connectorLockIdentifier:string? connectorLockUserID:int? createDate:date? "
        "createdByID:int? "
        "currentPipelineID:int? currentPipelineStageHistoryID:int? currentPipelineStageID:int? defaultNoteID:int? "
        "delegateChain:string?" +
            deletion + "details:string? dueDate:date?" + extras +
            "goalID:int? lastOpportunityStateType:int level:int modifyDate:date? name:string? opportunityCode:string? "
            "opportunityStateReasonID:int? opportunityStateType:int opportunityTypeID:int? order:int "
            "permissionMask:int "
            "probability:int productServiceID:int? sourceImportID:string? startDate:date? termID:int? unitPrice:double "
            "units:double "
            "visibilityPresetID:int? permissions:permissions category:category?");
    expectRecord<Project>("Project", "Project",
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
                              "permissions:permissions category:category?");
    expectRecord<Group>(
        "Group", "Group",
        "groupID:Group active:int assignedToID:int? categoryID:int? createDate:date? createdByID:int? "
        "defaultNoteID:int?" +
            deletion + "endDate:date?" + extras +
            "level:int message:string? modifyDate:date? name:string? note:string? order:int parentGroupID:int? "
            "permissionMask:int sourceImportID:string? startDate:date? visibilityPresetID:int? "
            "permissions:permissions");
    expectRecord<ExtraFieldsNames>(
        "ExtraFieldsNames", "ExtraFieldsNames",
        "objectID:ExtraFieldsNames" + deletion + extraTexts +
            "extraDate1:string? extraDate2:string? extraDate3:string? extraDate4:string? typeString:string?");
    expectRecord<ExtraVInfo>("ExtraVInfo", "ExtraVInfo",
                             "objectID:ExtraVInfo contactID:int" + deletion +
                                 "info:string? organizationID:int taskID:int timeblockID:int userID:int");
}

TEST(EveryRecord, keepsTheContractOfPipelines) {
    const std::string stage = " createDate:date?" + deletion;
    expectRecord<PipelineDefinition>(
        "PipelineDefinition", "PipelineDefinition",
        "pipelineDefinitionID:PipelineDefinition active:int" + stage +
            "forOpportunity:int forProject:int lowerThreshold:int modifyDate:date? name:string? "
            "note:string? upperThreshold:int");
    expectRecord<PipelineStageDefinition>("PipelineStageDefinition", "PipelineStageDefinition",
                                          "pipelineStageDefinitionID:PipelineStageDefinition actionSetID:int?" + stage +
                                              "lowerThreshold:int modifyDate:date? name:string? note:string? order:int "
                                              "pipelineDefinitionID:int? upperThreshold:int");
    expectRecord<Pipeline>("Pipeline", "Pipeline",
                           "pipelineID:Pipeline" + stage +
                               "lowerThreshold:int modifyDate:date? name:string? note:string? opportunityID:int? "
                               "pipelineDefinitionID:int? projectID:int? upperThreshold:int");
    expectRecord<PipelineStage>(
        "PipelineStage", "PipelineStage",
        "pipelineStageID:PipelineStage" + stage +
            "isActivitySetCreated:int? lowerThreshold:int modifyDate:date? name:string? note:string? "
            "opportunityID:int? order:int pipelineID:int? pipelineStageDefinitionID:int? projectID:int? "
            "upperThreshold:int");
    expectRecord<PipelineStageHistory>(
        "PipelineStageHistory", "PipelineStageHistory",
        "pipelineStageHistoryID:PipelineStageHistory createDate:date? createdByID:int? createdByUsername:string?" +
            deletion +
            "endDate:date? modifyDate:date? note:string? opportunityID:int? pipelineID:int? pipelineName:string? "
            "pipelineStageID:int? previousPipelineID:int? previousPipelineName:string? previousPipelineStageID:int? "
            "previousStageName:string? projectID:int? stageName:string? startDate:date?");
    expectRecord<OpportunityStateReason>(
        "OpportunityStateReason", "OpportunityStateReason",
        "opportunityStateReasonID:OpportunityStateReason active:int" + stage +
            "details:string? name:string? opportunityStateType:int order:int privateTypeCode:int");
}

TEST(EveryCodedValue, keepsTheContractOfItsFields) {
    using contract::expectCodedAs;
    expectCodedAs<RGBAColor>("red:double green:double blue:double alpha:double");
    expectCodedAs<PermissionSet>("teamIDs:teams");
    expectCodedAs<Permissions>("readPermissions:set writePermissions:set visibilityPreset:preset?");
    expectCodedAs<TimeblockOccurrence>("parentID:Timeblock startDate:date");
    expectCodedAs<EventOccurrence>("eventID:string startDate:date");
    expectCodedAs<TaskOccurrence>("parentID:Task dueDate:date");
    expectCodedAs<AppointmentOccurrenceTarget>("parentID:Timeblock startDate:date editScope:scope");
    expectCodedAs<NextActivity>("type:activityType date:date isAllDay:bool");
    expectCodedAs<BoardUser>("id:User name:string count:int");
    expectCodedAs<OpportunityBoardFilter>(
        "pipelineDefinitionID:PipelineDefinition userID:User? categoryID:Category? opportunityTypeID:OpportunityType? "
        "createDate:range? closeDate:range? keywordID:Keyword?");
    expectCodedAs<ProjectBoardFilter>(
        "pipelineDefinitionID:PipelineDefinition userID:User? categoryID:Category? createDate:range? dueDate:range? "
        "keywordID:Keyword?");
    expectCodedAs<PipelineBoardSortDescriptor>("key:sortKey order:sortOrder");
    expectCodedAs<OpportunityBoardConfig>("_0:filter? _1:sort");
    expectCodedAs<ProjectBoardConfig>("_0:filter? _1:sort");
    expectCodedAs<AvatarInfo>("name:string imageData:data?");
    expectCodedAs<OpportunityBoardCardData>(
        "id:Opportunity title:string linkedPeople:string linkedCompanies:string value:double probability:int "
        "type:string? "
        "pipelineId:PipelineDefinition? stageId:PipelineStageDefinition? nextActivities:activities? "
        "categoryColor:color? "
        "stageStartDate:date? closeDate:date? avatarInfo:avatar? priority:int?");
    expectCodedAs<ProjectBoardCardData>(
        "id:Project title:string linkedPeople:string linkedCompanies:string pipelineId:PipelineDefinition? "
        "stageId:PipelineStageDefinition? nextActivities:activities? categoryColor:color? stageStartDate:date? "
        "dueDate:date? "
        "avatarInfo:avatar? priority:int?");
    expectCodedAs<PipelineBoardCardPasteboardData>(
        "id:boardID pipelineId:PipelineDefinition? stageId:PipelineStageDefinition?");
    expectCodedAs<BoardColumnHeaderData>("id:int title:string count:int total:double? active:bool");
    expectCodedAs<BoardColumnData>("id:int header:header cards:cards");
    expectCodedAs<BoardData>("columns:columns count:int total:double");
}

}  // namespace
