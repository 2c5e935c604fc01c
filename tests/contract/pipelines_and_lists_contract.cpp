#include <kestrel/access/visibility_preset.h>
#include <kestrel/boards/opportunity_state_reason.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/details/label.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/company_types.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/lookups/opportunity_type.h>
#include <kestrel/lookups/team.h>
#include <kestrel/lookups/user.h>
#include <kestrel/relationships/relationship_type.h>
#include <kestrel/relationships/role_type.h>

#include "record_contract.h"

namespace contract {

using namespace kestrel;

// Types are changed through a copy alone.
static_assert(areReadOnly<&AnyRoleType::appliesTo, &AnyRoleType::createDate, &AnyRoleType::deletionDate,
                          &AnyRoleType::deletionIdentifier, &AnyRoleType::deletionUserID, &AnyRoleType::isActive,
                          &AnyRoleType::isForCompany, &AnyRoleType::isForContact, &AnyRoleType::isForOpportunity,
                          &AnyRoleType::isForProject, &AnyRoleType::name>);
static_assert(
    areReadOnly<&RelationshipType::createDate, &RelationshipType::deletionDate, &RelationshipType::deletionIdentifier,
                &RelationshipType::deletionUserID, &RelationshipType::forwardName, &RelationshipType::isActive,
                &RelationshipType::isForCompany, &RelationshipType::isForContact, &RelationshipType::reverseName,
                &RelationshipType::shortForwardName, &RelationshipType::shortReverseName>);
static_assert(areReadOnly<&EditAnyRoleType::roleTypeID, &EditAnyRoleType::createDate> &&
              areReadOnly<&EditRelationshipType::relationshipTypeID, &EditRelationshipType::createDate>);

std::vector<RecordContract> contractsOfPipelinesAndLists() {
    const std::string stage = " createDate:date?" + deletion;
    return {
        recordContract<Category, &Category::categoryID>("Category", "Category",
                                                        "categoryID:Category color:color?" + listEntry),
        recordContract<Keyword, &Keyword::keywordID>("Keyword", "Keyword", "keywordID:Keyword" + listEntry),
        recordContract<OpportunityType, &OpportunityType::opportunityTypeID>(
            "OpportunityType", "OpportunityType", "opportunityTypeID:OpportunityType" + listEntry),
        recordContract<CompanyType, &CompanyType::companyTypeID>("CompanyType", "OrganizationType",
                                                                 "companyTypeID:CompanyType" + listEntry),
        recordContract<IndustryType, &IndustryType::industryTypeID>("IndustryType", "IndustryType",
                                                                    "industryTypeID:IndustryType" + listEntry),
        recordContract<RegionType, &RegionType::regionTypeID>("RegionType", "RegionType",
                                                              "regionTypeID:RegionType" + listEntry),
        recordContract<Team, &Team::teamID>(
            "Team", "Team",
            "teamID:Team createDate:date?" + deletion +
                "details:string? isActive:bool isUserPrivateTeam:bool modifyDate:date? name:string? order:int"),
        recordContract<User, &User::userID>(
            "User", "User",
            "userID:User createDate:date?" + deletion +
                "email:string? firstName:string? isActive:bool isAdmin:bool isRestrictedToDeleteObjects:bool "
                "isSuper:bool "
                "jobTitle:string? lastLoginDate:date? lastName:string? modifyDate:date? name:string? phone:string? "
                "timeZoneName:string? username:string? teamIDs:teams"),
        recordContract<VisibilityPreset, &VisibilityPreset::visibilityPresetID>(
            "VisibilityPreset", "VisibilityPreset",
            "objectID:VisibilityPreset" + deletion + "name:string? noReadAccess:int noWriteAccess:int"),
        recordContract<PipelineDefinition, &PipelineDefinition::pipelineDefinitionID>(
            "PipelineDefinition", "PipelineDefinition",
            "pipelineDefinitionID:PipelineDefinition active:int" + stage +
                "forOpportunity:int forProject:int lowerThreshold:int modifyDate:date? name:string? "
                "note:string? upperThreshold:int"),
        recordContract<PipelineStageDefinition, &PipelineStageDefinition::pipelineStageDefinitionID>(
            "PipelineStageDefinition", "PipelineStageDefinition",
            "pipelineStageDefinitionID:PipelineStageDefinition actionSetID:int?" + stage +
                "lowerThreshold:int modifyDate:date? name:string? note:string? order:int "
                "pipelineDefinitionID:int? upperThreshold:int"),
        recordContract<Pipeline, &Pipeline::pipelineID>(
            "Pipeline", "Pipeline",
            "pipelineID:Pipeline" + stage +
                "lowerThreshold:int modifyDate:date? name:string? note:string? opportunityID:int? "
                "pipelineDefinitionID:int? projectID:int? upperThreshold:int"),
        recordContract<PipelineStage, &PipelineStage::pipelineStageID>(
            "PipelineStage", "PipelineStage",
            "pipelineStageID:PipelineStage" + stage +
                "isActivitySetCreated:int? lowerThreshold:int modifyDate:date? name:string? note:string? "
                "opportunityID:int? order:int pipelineID:int? pipelineStageDefinitionID:int? projectID:int? "
                "upperThreshold:int"),
        recordContract<PipelineStageHistory, &PipelineStageHistory::pipelineStageHistoryID>(
            "PipelineStageHistory", "PipelineStageHistory",
            "pipelineStageHistoryID:PipelineStageHistory createDate:date? createdByID:int? createdByUsername:string?" +
                deletion +
                "endDate:date? modifyDate:date? note:string? opportunityID:int? pipelineID:int? pipelineName:string? "
                "pipelineStageID:int? previousPipelineID:int? previousPipelineName:string? "
                "previousPipelineStageID:int? "
                "previousStageName:string? projectID:int? stageName:string? startDate:date?"),
        recordContract<OpportunityStateReason, &OpportunityStateReason::opportunityStateReasonID>(
            "OpportunityStateReason", "OpportunityStateReason",
            "opportunityStateReasonID:OpportunityStateReason active:int" + stage +
                "details:string? name:string? opportunityStateType:int order:int privateTypeCode:int"),
        recordContract<AnyLabel, &AnyLabel::labelID>(
            "AnyLabel", "Label",
            "labelID:AnyLabel" + stage +
                "isActive:bool isForElectronicAddress:bool isForGeoAddress:bool isForPhone:bool "
                "modifyDate:date? name:string? order:int"),
        recordContract<AnyRoleType, &AnyRoleType::roleTypeID>(
            "AnyRoleType", "RoleType",
            "roleTypeID:AnyRoleType appliesTo:enum" + stage +
                "isActive:bool isForCompany:bool isForContact:bool isForOpportunity:bool "
                "isForProject:bool name:string?"),
        recordContract<RelationshipType, &RelationshipType::relationshipTypeID>(
            "RelationshipType", "RelationshipType",
            "relationshipTypeID:RelationshipType" + stage +
                "forwardName:string? isActive:bool isForCompany:bool isForContact:bool reverseName:string? "
                "shortForwardName:string? shortReverseName:string?"),
    };
}

}  // namespace contract
