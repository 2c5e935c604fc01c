#pragma once

#include <kestrel/access/visibility_preset.h>
#include <kestrel/activity/email.h>
#include <kestrel/activity/form.h>
#include <kestrel/activity/note.h>
#include <kestrel/boards/opportunity_state_reason.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/calendar/occurrence_exceptions.h>
#include <kestrel/calendar/task.h>
#include <kestrel/calendar/task_list.h>
#include <kestrel/calendar/timeblock.h>
#include <kestrel/custom/custom_record.h>
#include <kestrel/details/label.h>
#include <kestrel/files/file_attachment.h>
#include <kestrel/files/url_reference.h>
#include <kestrel/invitations/meeting_invite.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/company_types.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/lookups/opportunity_type.h>
#include <kestrel/lookups/team.h>
#include <kestrel/lookups/user.h>
#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/extra_fields_names.h>
#include <kestrel/records/extra_v_info.h>
#include <kestrel/records/group.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>
#include <kestrel/relationships/any_relationship.h>
#include <kestrel/relationships/any_role.h>
#include <kestrel/relationships/relationship_type.h>
#include <kestrel/relationships/role_type.h>
#include <kestrel/session/database_preference.h>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

/// Which records a database holds, and which of their keys stand in columns of their own.
namespace kestrel::host {

template <class... Records>
struct RecordList {
    /// Calls `visit.operator()<Record>()` for every type.
    template <class Visitor>
    static void forEach(Visitor&& visit) {
        (visit.template operator()<Records>(), ...);
    }
};

using StoredRecords =
    RecordList<AnyLabel, AnyRelationship, AnyRole, AnyRoleType, Category, Company, CompanyType, Contact, CustomRecord,
               CustomRecordDefinition, CustomRecordSetDefinition, DatabasePreference, Email, ExtraFieldsNames,
               ExtraVInfo, FileAttachment, Form, Group, IndustryType, Keyword, MeetingInvite, Note, Opportunity,
               OpportunityStateReason, OpportunityType, Pipeline, PipelineDefinition, PipelineStage,
               PipelineStageDefinition, PipelineStageHistory, Project, RegionType, RelationshipType, Task,
               TaskException, TaskList, Team, Timeblock, TimeblockException, URLReference, User, VisibilityPreset>;

/// A column that repeats a member of the record: the key of another record.
template <class Record>
struct KeyColumn {
    std::string_view name;
    std::optional<std::int64_t> Record::* member;
};

/// The key columns of a record type's table; most have none.
template <class Record>
inline constexpr std::array<KeyColumn<Record>, 0> keyColumns{};
template <>
inline constexpr std::array keyColumns<PipelineStageDefinition>{
    KeyColumn<PipelineStageDefinition>{"pipelineDefinitionID", &PipelineStageDefinition::pipelineDefinitionID}};
template <>
inline constexpr std::array keyColumns<Pipeline>{
    KeyColumn<Pipeline>{"opportunityID", &Pipeline::opportunityID},
    KeyColumn<Pipeline>{"pipelineDefinitionID", &Pipeline::pipelineDefinitionID},
    KeyColumn<Pipeline>{"projectID", &Pipeline::projectID}};
template <>
inline constexpr std::array keyColumns<PipelineStage>{
    KeyColumn<PipelineStage>{"pipelineID", &PipelineStage::pipelineID},
    KeyColumn<PipelineStage>{"pipelineStageDefinitionID", &PipelineStage::pipelineStageDefinitionID}};
template <>
inline constexpr std::array keyColumns<PipelineStageHistory>{
    KeyColumn<PipelineStageHistory>{"opportunityID", &PipelineStageHistory::opportunityID},
    KeyColumn<PipelineStageHistory>{"pipelineStageID", &PipelineStageHistory::pipelineStageID},
    KeyColumn<PipelineStageHistory>{"projectID", &PipelineStageHistory::projectID}};
template <>
inline constexpr std::array keyColumns<Group>{KeyColumn<Group>{"assignedToID", &Group::assignedToID},
                                              KeyColumn<Group>{"categoryID", &Group::categoryID}};
template <>
inline constexpr std::array keyColumns<Company>{KeyColumn<Company>{"assignedToID", &Company::assignedToID},
                                                KeyColumn<Company>{"categoryID", &Company::categoryID},
                                                KeyColumn<Company>{"industryTypeID", &Company::industryTypeID},
                                                KeyColumn<Company>{"regionTypeID", &Company::regionTypeID}};
template <>
inline constexpr std::array keyColumns<Opportunity>{
    KeyColumn<Opportunity>{"assignedToID", &Opportunity::assignedToID},
    KeyColumn<Opportunity>{"categoryID", &Opportunity::categoryID},
    KeyColumn<Opportunity>{"currentPipelineID", &Opportunity::currentPipelineID},
    KeyColumn<Opportunity>{"currentPipelineStageHistoryID", &Opportunity::currentPipelineStageHistoryID},
    KeyColumn<Opportunity>{"currentPipelineStageID", &Opportunity::currentPipelineStageID},
    KeyColumn<Opportunity>{"opportunityTypeID", &Opportunity::opportunityTypeID}};
template <>
inline constexpr std::array keyColumns<Project>{
    KeyColumn<Project>{"assignedToID", &Project::assignedToID}, KeyColumn<Project>{"categoryID", &Project::categoryID},
    KeyColumn<Project>{"currentPipelineID", &Project::currentPipelineID},
    KeyColumn<Project>{"currentPipelineStageHistoryID", &Project::currentPipelineStageHistoryID},
    KeyColumn<Project>{"currentPipelineStageID", &Project::currentPipelineStageID}};
template <>
inline constexpr std::array keyColumns<CustomRecord>{
    KeyColumn<CustomRecord>{"customRecordDefinitionID", &CustomRecord::customRecordDefinitionID},
    KeyColumn<CustomRecord>{"customRecordSetID", &CustomRecord::customRecordSetID}};
template <>
inline constexpr std::array keyColumns<TaskException>{KeyColumn<TaskException>{"taskID", &TaskException::taskID}};
template <>
inline constexpr std::array keyColumns<TimeblockException>{
    KeyColumn<TimeblockException>{"timeblockID", &TimeblockException::timeblockID}};

}  // namespace kestrel::host
