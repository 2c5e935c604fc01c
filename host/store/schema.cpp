#include <fmt/format.h>
#include <host/store/schema.h>

#include <array>
#include <cstddef>

namespace kestrel::host {
namespace {

// A key that is checked only when the transaction ends belongs to records that point at each other: a deal and its
// pipeline. Checking those makes SQLite look for waiting rows by that key, hence their indexes.
constexpr const char* version1 = R"sql(
CREATE TABLE "Category"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "ExtraFieldsNames"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "ExtraVInfo"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "IndustryType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Keyword"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "OpportunityStateReason"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "OpportunityType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "OrganizationType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "PipelineDefinition"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "RegionType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Team"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "User"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "VisibilityPreset"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;

CREATE TABLE "PipelineStageDefinition"(
  id INTEGER PRIMARY KEY,
  pipelineDefinitionID INTEGER REFERENCES "PipelineDefinition",
  record TEXT NOT NULL
) STRICT;
CREATE TABLE "Pipeline"(
  id INTEGER PRIMARY KEY,
  opportunityID INTEGER REFERENCES "Opportunity" DEFERRABLE INITIALLY DEFERRED,
  pipelineDefinitionID INTEGER REFERENCES "PipelineDefinition",
  projectID INTEGER REFERENCES "Project" DEFERRABLE INITIALLY DEFERRED,
  record TEXT NOT NULL
) STRICT;
CREATE INDEX "Pipeline.opportunityID" ON "Pipeline"(opportunityID);
CREATE INDEX "Pipeline.projectID" ON "Pipeline"(projectID) WHERE projectID IS NOT NULL;
CREATE TABLE "PipelineStage"(
  id INTEGER PRIMARY KEY,
  pipelineID INTEGER REFERENCES "Pipeline",
  pipelineStageDefinitionID INTEGER REFERENCES "PipelineStageDefinition",
  record TEXT NOT NULL
) STRICT;
CREATE INDEX "PipelineStage.pipelineID" ON "PipelineStage"(pipelineID);
CREATE TABLE "PipelineStageHistory"(
  id INTEGER PRIMARY KEY,
  opportunityID INTEGER REFERENCES "Opportunity" DEFERRABLE INITIALLY DEFERRED,
  pipelineStageID INTEGER REFERENCES "PipelineStage",
  projectID INTEGER REFERENCES "Project" DEFERRABLE INITIALLY DEFERRED,
  record TEXT NOT NULL
) STRICT;
CREATE INDEX "PipelineStageHistory.opportunityID" ON "PipelineStageHistory"(opportunityID);
CREATE INDEX "PipelineStageHistory.projectID" ON "PipelineStageHistory"(projectID) WHERE projectID IS NOT NULL;

CREATE TABLE "Group"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  record TEXT NOT NULL
) STRICT;
CREATE TABLE "Organization"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  industryTypeID INTEGER REFERENCES "IndustryType",
  regionTypeID INTEGER REFERENCES "RegionType",
  record TEXT NOT NULL
) STRICT;
CREATE TABLE "Opportunity"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  currentPipelineID INTEGER REFERENCES "Pipeline",
  currentPipelineStageHistoryID INTEGER REFERENCES "PipelineStageHistory",
  currentPipelineStageID INTEGER REFERENCES "PipelineStage",
  opportunityTypeID INTEGER REFERENCES "OpportunityType",
  record TEXT NOT NULL
) STRICT;
CREATE TABLE "Project"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  currentPipelineID INTEGER REFERENCES "Pipeline",
  currentPipelineStageHistoryID INTEGER REFERENCES "PipelineStageHistory",
  currentPipelineStageID INTEGER REFERENCES "PipelineStage",
  record TEXT NOT NULL
) STRICT;

CREATE TABLE "OpportunityOrganization"(
  opportunityID INTEGER NOT NULL REFERENCES "Opportunity",
  organizationID INTEGER NOT NULL REFERENCES "Organization",
  PRIMARY KEY(opportunityID, organizationID)
) STRICT, WITHOUT ROWID;
CREATE TABLE "OpportunityKeyword"(
  opportunityID INTEGER NOT NULL REFERENCES "Opportunity",
  keywordID INTEGER NOT NULL REFERENCES "Keyword",
  PRIMARY KEY(opportunityID, keywordID)
) STRICT, WITHOUT ROWID;
)sql";

// Contacts with what belongs to them, and what happened around records. Who is linked to whom does not stand in the
// records themselves, so all of that is in one table, which is asked from both ends.
constexpr const char* version2 = R"sql(
CREATE TABLE "Contact"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "CustomRecordDefinition"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "CustomRecordSetDefinition"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Email"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "FileAttachment"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Form"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Label"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "MeetingInvite"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Note"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Relationship"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "RelationshipType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Role"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "RoleType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Task"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "TaskList"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "Timeblock"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE "URLReference"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;

CREATE TABLE "CustomRecord"(
  id INTEGER PRIMARY KEY,
  customRecordDefinitionID INTEGER REFERENCES "CustomRecordDefinition",
  customRecordSetID INTEGER REFERENCES "Form",
  record TEXT NOT NULL
) STRICT;
CREATE INDEX "CustomRecord.customRecordSetID" ON "CustomRecord"(customRecordSetID);
CREATE TABLE "TaskException"(
  id INTEGER PRIMARY KEY,
  taskID INTEGER REFERENCES "Task",
  record TEXT NOT NULL
) STRICT;
CREATE INDEX "TaskException.taskID" ON "TaskException"(taskID);
CREATE TABLE "TimeblockException"(
  id INTEGER PRIMARY KEY,
  timeblockID INTEGER REFERENCES "Timeblock",
  record TEXT NOT NULL
) STRICT;
CREATE INDEX "TimeblockException.timeblockID" ON "TimeblockException"(timeblockID);

CREATE TABLE "RecordLink"(
  entity TEXT NOT NULL,
  id INTEGER NOT NULL,
  kind TEXT NOT NULL,
  targetEntity TEXT NOT NULL,
  targetID INTEGER NOT NULL,
  PRIMARY KEY(entity, id, kind, targetEntity, targetID)
) STRICT, WITHOUT ROWID;
CREATE INDEX "RecordLink.target" ON "RecordLink"(targetEntity, targetID, entity, kind, id);
CREATE TABLE "ImportSource"(
  entity TEXT NOT NULL,
  source TEXT NOT NULL,
  id INTEGER NOT NULL,
  PRIMARY KEY(entity, source)
) STRICT, WITHOUT ROWID;
CREATE TABLE "AddressUse"(
  entity TEXT NOT NULL,
  id INTEGER NOT NULL,
  address TEXT NOT NULL,
  PRIMARY KEY(entity, id, address)
) STRICT, WITHOUT ROWID;
CREATE INDEX "AddressUse.address" ON "AddressUse"(address, entity, id);
CREATE TABLE "EmbeddedKey"(entity TEXT NOT NULL, lastID INTEGER NOT NULL, PRIMARY KEY(entity)) STRICT, WITHOUT ROWID;
)sql";

// Preferences of the database itself.
constexpr const char* version3 = R"sql(
CREATE TABLE "DatabasePreference"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
)sql";

/// What makes each version of the one before it; the first makes version 1 of an empty database. A step that has been
/// released is never changed again: databases of its version exist.
constexpr std::array steps{version1, version2, version3};
static_assert(steps.size() == schemaVersion, "Every version of the schema has its step.");

}  // namespace

void migrateSchema(SQLite::Database& database, int fromVersion) {
    for (auto step = static_cast<std::size_t>(fromVersion); step < steps.size(); ++step)
        database.exec(steps[step]);
    database.exec(fmt::format("PRAGMA application_id = {}", schemaApplicationID));
    database.exec(fmt::format("PRAGMA user_version = {}", schemaVersion));
}

}  // namespace kestrel::host
