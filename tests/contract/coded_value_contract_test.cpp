#include <kestrel/access/permission_checker.h>
#include <kestrel/activity/activity_item.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/records/contact.h>
#include <kestrel/relationships/relationship_type.h>
#include <kestrel/relationships/role_type.h>

#include "record_contract.h"

namespace {

using namespace kestrel;

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

TEST(EveryCodedValue, keepsTheContractOfPeopleAndActivity) {
    using contract::expectCodedAs;
    const std::string view = "electronicAddressID:AnyElectronicAddress address:string? createDate:date?" +
                             contract::deletion + "label:label? modifyDate:date? serviceName:string?";
    expectCodedAs<EmailAddress>(view);
    expectCodedAs<URLAddress>(view);
    expectCodedAs<SocialProfile>(view);
    expectCodedAs<PartialDate>("day:int month:int year:int?");
    expectCodedAs<Name>(
        "prefix:string? first:string? middle:string? last:string? suffix:string? nickname:string? alias:string?");
    expectCodedAs<TextAttributes>(
        "backgroundColor:color? fontName:string? fontSize:double? foregroundColor:color? isBold:bool isItalic:bool "
        "isStruckThrough:bool isUnderlined:bool link:string? namePart:enum?");
    expectCodedAs<AttributedString>("text:text runs:runs");
    const std::string edited = " createDate:date?" + contract::deletion;
    expectCodedAs<EditAnyRoleType>("roleTypeID:AnyRoleType appliesTo:enum" + edited +
                                   "isActive:bool isForCompany:bool isForContact:bool isForOpportunity:bool "
                                   "isForProject:bool name:string?");
    expectCodedAs<EditRelationshipType>(
        "relationshipTypeID:RelationshipType" + edited +
        "forwardName:string? isActive:bool isForCompany:bool isForContact:bool reverseName:string? "
        "shortForwardName:string? shortReverseName:string?");
    expectCodedAs<FormFieldItem>("record:customRecord definition:customDefinition?");
    expectCodedAs<FormItem>("form:form definition:setDefinition? fields:fields");
    expectCodedAs<TaskItem>("task:task ownerID:User? ownerName:name");
    expectCodedAs<NoteItem>("note:note ownerID:User? ownerName:name");
    expectCodedAs<EmailItem>("email:email");
    expectCodedAs<FileItem>("fileAttachment:file");
    expectCodedAs<URLReferenceItem>("urlReference:link");
    expectCodedAs<TimeblockItem>("timeblock:timeblock");
}

}  // namespace
