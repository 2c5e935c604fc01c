-- A database of version 1 of the schema: a small CRM export as the host imported it then.
PRAGMA foreign_keys=OFF;
BEGIN TRANSACTION;
CREATE TABLE IF NOT EXISTS "Category"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO Category VALUES(1,'{"categoryID":{"recordName":"Category","primaryKey":1},"color":{"red":0.2,"green":0.45,"blue":0.8,"alpha":1},"isActive":true,"name":"GTX","order":0}');
INSERT INTO Category VALUES(2,'{"categoryID":{"recordName":"Category","primaryKey":2},"color":{"red":0.15,"green":0.6,"blue":0.35,"alpha":1},"isActive":true,"name":"MG","order":1}');
CREATE TABLE IF NOT EXISTS "ExtraFieldsNames"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO ExtraFieldsNames VALUES(1,'{"objectID":{"recordName":"ExtraFieldsNames","primaryKey":1},"extra1":"Year Established","extra2":"Annual Revenue (million USD)","extra3":"Subsidiary Of","typeString":"Company"}');
CREATE TABLE IF NOT EXISTS "ExtraVInfo"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE IF NOT EXISTS "IndustryType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO IndustryType VALUES(1,'{"industryTypeID":{"recordName":"IndustryType","primaryKey":1},"isActive":true,"name":"retail","order":0}');
INSERT INTO IndustryType VALUES(2,'{"industryTypeID":{"recordName":"IndustryType","primaryKey":2},"isActive":true,"name":"medical","order":0}');
CREATE TABLE IF NOT EXISTS "Keyword"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE IF NOT EXISTS "OpportunityStateReason"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE IF NOT EXISTS "OpportunityType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO OpportunityType VALUES(1,'{"opportunityTypeID":{"recordName":"OpportunityType","primaryKey":1},"isActive":true,"name":"GTX Pro","order":0}');
INSERT INTO OpportunityType VALUES(2,'{"opportunityTypeID":{"recordName":"OpportunityType","primaryKey":2},"isActive":true,"name":"MG Special","order":1}');
CREATE TABLE IF NOT EXISTS "OrganizationType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE IF NOT EXISTS "PipelineDefinition"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO PipelineDefinition VALUES(1,'{"pipelineDefinitionID":{"recordName":"PipelineDefinition","primaryKey":1},"active":1,"forOpportunity":1,"forProject":0,"lowerThreshold":0,"name":"Sales","upperThreshold":100}');
CREATE TABLE IF NOT EXISTS "RegionType"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO RegionType VALUES(1,'{"regionTypeID":{"recordName":"RegionType","primaryKey":1},"isActive":true,"name":"United States","order":0}');
INSERT INTO RegionType VALUES(2,'{"regionTypeID":{"recordName":"RegionType","primaryKey":2},"isActive":true,"name":"Philippines","order":0}');
CREATE TABLE IF NOT EXISTS "Team"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO Team VALUES(1,'{"teamID":{"recordName":"Team","primaryKey":1},"isActive":true,"isUserPrivateTeam":false,"name":"Central","order":0}');
INSERT INTO Team VALUES(2,'{"teamID":{"recordName":"Team","primaryKey":2},"isActive":true,"isUserPrivateTeam":false,"name":"East","order":0}');
INSERT INTO Team VALUES(3,'{"teamID":{"recordName":"Team","primaryKey":3},"isActive":true,"isUserPrivateTeam":true,"name":"Donn Cantrell","order":0}');
INSERT INTO Team VALUES(4,'{"teamID":{"recordName":"Team","primaryKey":4},"isActive":true,"isUserPrivateTeam":true,"name":"Dustin Brinkmann","order":0}');
INSERT INTO Team VALUES(5,'{"teamID":{"recordName":"Team","primaryKey":5},"isActive":true,"isUserPrivateTeam":true,"name":"Moses Frase","order":0}');
INSERT INTO Team VALUES(6,'{"teamID":{"recordName":"Team","primaryKey":6},"isActive":true,"isUserPrivateTeam":true,"name":"Rocco Neubert","order":0}');
CREATE TABLE IF NOT EXISTS "User"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
INSERT INTO User VALUES(1,'{"userID":{"recordName":"User","primaryKey":1},"isActive":true,"isAdmin":true,"isRestrictedToDeleteObjects":false,"isSuper":false,"jobTitle":"Administrator","lastName":"Administrator","name":"Administrator","username":"administrator","teamIDs":[]}');
INSERT INTO User VALUES(2,'{"userID":{"recordName":"User","primaryKey":2},"firstName":"Donn","isActive":true,"isAdmin":false,"isRestrictedToDeleteObjects":false,"isSuper":false,"jobTitle":"Sales Agent","lastName":"Cantrell","name":"Donn Cantrell","username":"donn.cantrell","teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":3}]}');
INSERT INTO User VALUES(3,'{"userID":{"recordName":"User","primaryKey":3},"firstName":"Dustin","isActive":true,"isAdmin":false,"isRestrictedToDeleteObjects":false,"isSuper":false,"jobTitle":"Sales Manager","lastName":"Brinkmann","name":"Dustin Brinkmann","username":"dustin.brinkmann","teamIDs":[{"recordName":"Team","primaryKey":1},{"recordName":"Team","primaryKey":4}]}');
INSERT INTO User VALUES(4,'{"userID":{"recordName":"User","primaryKey":4},"firstName":"Moses","isActive":true,"isAdmin":false,"isRestrictedToDeleteObjects":false,"isSuper":false,"jobTitle":"Sales Agent","lastName":"Frase","name":"Moses Frase","username":"moses.frase","teamIDs":[{"recordName":"Team","primaryKey":1},{"recordName":"Team","primaryKey":5}]}');
INSERT INTO User VALUES(5,'{"userID":{"recordName":"User","primaryKey":5},"firstName":"Rocco","isActive":true,"isAdmin":false,"isRestrictedToDeleteObjects":false,"isSuper":false,"jobTitle":"Sales Manager","lastName":"Neubert","name":"Rocco Neubert","username":"rocco.neubert","teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":6}]}');
CREATE TABLE IF NOT EXISTS "VisibilityPreset"(id INTEGER PRIMARY KEY, record TEXT NOT NULL) STRICT;
CREATE TABLE IF NOT EXISTS "PipelineStageDefinition"(
  id INTEGER PRIMARY KEY,
  pipelineDefinitionID INTEGER REFERENCES "PipelineDefinition",
  record TEXT NOT NULL
) STRICT;
INSERT INTO PipelineStageDefinition VALUES(1,1,'{"pipelineStageDefinitionID":{"recordName":"PipelineStageDefinition","primaryKey":1},"lowerThreshold":0,"name":"Prospecting","order":0,"pipelineDefinitionID":1,"upperThreshold":25}');
INSERT INTO PipelineStageDefinition VALUES(2,1,'{"pipelineStageDefinitionID":{"recordName":"PipelineStageDefinition","primaryKey":2},"lowerThreshold":25,"name":"Engaging","order":1,"pipelineDefinitionID":1,"upperThreshold":75}');
INSERT INTO PipelineStageDefinition VALUES(3,1,'{"pipelineStageDefinitionID":{"recordName":"PipelineStageDefinition","primaryKey":3},"lowerThreshold":100,"name":"Won","order":2,"pipelineDefinitionID":1,"upperThreshold":100}');
INSERT INTO PipelineStageDefinition VALUES(4,1,'{"pipelineStageDefinitionID":{"recordName":"PipelineStageDefinition","primaryKey":4},"lowerThreshold":0,"name":"Lost","order":3,"pipelineDefinitionID":1,"upperThreshold":0}');
CREATE TABLE IF NOT EXISTS "Pipeline"(
  id INTEGER PRIMARY KEY,
  opportunityID INTEGER REFERENCES "Opportunity" DEFERRABLE INITIALLY DEFERRED,
  pipelineDefinitionID INTEGER REFERENCES "PipelineDefinition",
  projectID INTEGER REFERENCES "Project" DEFERRABLE INITIALLY DEFERRED,
  record TEXT NOT NULL
) STRICT;
INSERT INTO Pipeline VALUES(1,1,1,NULL,'{"pipelineID":{"recordName":"Pipeline","primaryKey":1},"lowerThreshold":0,"name":"Sales","opportunityID":1,"pipelineDefinitionID":1,"upperThreshold":100}');
INSERT INTO Pipeline VALUES(2,2,1,NULL,'{"pipelineID":{"recordName":"Pipeline","primaryKey":2},"lowerThreshold":0,"name":"Sales","opportunityID":2,"pipelineDefinitionID":1,"upperThreshold":100}');
INSERT INTO Pipeline VALUES(3,3,1,NULL,'{"pipelineID":{"recordName":"Pipeline","primaryKey":3},"lowerThreshold":0,"name":"Sales","opportunityID":3,"pipelineDefinitionID":1,"upperThreshold":100}');
CREATE TABLE IF NOT EXISTS "PipelineStage"(
  id INTEGER PRIMARY KEY,
  pipelineID INTEGER REFERENCES "Pipeline",
  pipelineStageDefinitionID INTEGER REFERENCES "PipelineStageDefinition",
  record TEXT NOT NULL
) STRICT;
INSERT INTO PipelineStage VALUES(1,1,1,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":1},"lowerThreshold":0,"name":"Prospecting","opportunityID":1,"order":0,"pipelineID":1,"pipelineStageDefinitionID":1,"upperThreshold":25}');
INSERT INTO PipelineStage VALUES(2,1,2,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":2},"lowerThreshold":25,"name":"Engaging","opportunityID":1,"order":1,"pipelineID":1,"pipelineStageDefinitionID":2,"upperThreshold":75}');
INSERT INTO PipelineStage VALUES(3,1,3,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":3},"lowerThreshold":100,"name":"Won","opportunityID":1,"order":2,"pipelineID":1,"pipelineStageDefinitionID":3,"upperThreshold":100}');
INSERT INTO PipelineStage VALUES(4,1,4,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":4},"lowerThreshold":0,"name":"Lost","opportunityID":1,"order":3,"pipelineID":1,"pipelineStageDefinitionID":4,"upperThreshold":0}');
INSERT INTO PipelineStage VALUES(5,2,1,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":5},"lowerThreshold":0,"name":"Prospecting","opportunityID":2,"order":0,"pipelineID":2,"pipelineStageDefinitionID":1,"upperThreshold":25}');
INSERT INTO PipelineStage VALUES(6,2,2,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":6},"lowerThreshold":25,"name":"Engaging","opportunityID":2,"order":1,"pipelineID":2,"pipelineStageDefinitionID":2,"upperThreshold":75}');
INSERT INTO PipelineStage VALUES(7,2,3,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":7},"lowerThreshold":100,"name":"Won","opportunityID":2,"order":2,"pipelineID":2,"pipelineStageDefinitionID":3,"upperThreshold":100}');
INSERT INTO PipelineStage VALUES(8,2,4,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":8},"lowerThreshold":0,"name":"Lost","opportunityID":2,"order":3,"pipelineID":2,"pipelineStageDefinitionID":4,"upperThreshold":0}');
INSERT INTO PipelineStage VALUES(9,3,1,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":9},"lowerThreshold":0,"name":"Prospecting","opportunityID":3,"order":0,"pipelineID":3,"pipelineStageDefinitionID":1,"upperThreshold":25}');
INSERT INTO PipelineStage VALUES(10,3,2,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":10},"lowerThreshold":25,"name":"Engaging","opportunityID":3,"order":1,"pipelineID":3,"pipelineStageDefinitionID":2,"upperThreshold":75}');
INSERT INTO PipelineStage VALUES(11,3,3,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":11},"lowerThreshold":100,"name":"Won","opportunityID":3,"order":2,"pipelineID":3,"pipelineStageDefinitionID":3,"upperThreshold":100}');
INSERT INTO PipelineStage VALUES(12,3,4,'{"pipelineStageID":{"recordName":"PipelineStage","primaryKey":12},"lowerThreshold":0,"name":"Lost","opportunityID":3,"order":3,"pipelineID":3,"pipelineStageDefinitionID":4,"upperThreshold":0}');
CREATE TABLE IF NOT EXISTS "PipelineStageHistory"(
  id INTEGER PRIMARY KEY,
  opportunityID INTEGER REFERENCES "Opportunity" DEFERRABLE INITIALLY DEFERRED,
  pipelineStageID INTEGER REFERENCES "PipelineStage",
  projectID INTEGER REFERENCES "Project" DEFERRABLE INITIALLY DEFERRED,
  record TEXT NOT NULL
) STRICT;
INSERT INTO PipelineStageHistory VALUES(1,1,2,NULL,'{"pipelineStageHistoryID":{"recordName":"PipelineStageHistory","primaryKey":1},"endDate":510019200,"opportunityID":1,"pipelineID":1,"pipelineName":"Sales","pipelineStageID":2,"previousPipelineID":1,"previousPipelineName":"Sales","previousPipelineStageID":1,"previousStageName":"Prospecting","stageName":"Engaging","startDate":498614400}');
INSERT INTO PipelineStageHistory VALUES(2,1,3,NULL,'{"pipelineStageHistoryID":{"recordName":"PipelineStageHistory","primaryKey":2},"opportunityID":1,"pipelineID":1,"pipelineName":"Sales","pipelineStageID":3,"previousPipelineID":1,"previousPipelineName":"Sales","previousPipelineStageID":2,"previousStageName":"Engaging","stageName":"Won","startDate":510019200}');
INSERT INTO PipelineStageHistory VALUES(3,2,5,NULL,'{"pipelineStageHistoryID":{"recordName":"PipelineStageHistory","primaryKey":3},"opportunityID":2,"pipelineID":2,"pipelineName":"Sales","pipelineStageID":5,"stageName":"Prospecting"}');
INSERT INTO PipelineStageHistory VALUES(4,3,10,NULL,'{"pipelineStageHistoryID":{"recordName":"PipelineStageHistory","primaryKey":4},"opportunityID":3,"pipelineID":3,"pipelineName":"Sales","pipelineStageID":10,"previousPipelineID":3,"previousPipelineName":"Sales","previousPipelineStageID":9,"previousStageName":"Prospecting","stageName":"Engaging","startDate":499046400}');
CREATE TABLE IF NOT EXISTS "Group"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  record TEXT NOT NULL
) STRICT;
CREATE TABLE IF NOT EXISTS "Organization"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  industryTypeID INTEGER REFERENCES "IndustryType",
  regionTypeID INTEGER REFERENCES "RegionType",
  record TEXT NOT NULL
) STRICT;
INSERT INTO Organization VALUES(1,NULL,NULL,1,1,'{"organizationID":{"recordName":"Company","primaryKey":1},"extra1":"2001","extra2":"718.62","flagged":0,"industryTypeID":1,"level":0,"name":"Cancity","numberOfEmployees":2448,"order":0,"permissionMask":0,"regionTypeID":1,"sourceImportID":"Cancity","permissions":{"readPermissions":{"teamIDs":[]},"writePermissions":{"teamIDs":[]}}}');
INSERT INTO Organization VALUES(2,NULL,NULL,2,2,'{"organizationID":{"recordName":"Company","primaryKey":2},"extra1":"2002","extra2":"3178.24","extra3":"Cancity","flagged":0,"industryTypeID":2,"level":0,"name":"Isdom","numberOfEmployees":4540,"order":0,"permissionMask":0,"regionTypeID":2,"sourceImportID":"Isdom","permissions":{"readPermissions":{"teamIDs":[]},"writePermissions":{"teamIDs":[]}}}');
CREATE TABLE IF NOT EXISTS "Opportunity"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  currentPipelineID INTEGER REFERENCES "Pipeline",
  currentPipelineStageHistoryID INTEGER REFERENCES "PipelineStageHistory",
  currentPipelineStageID INTEGER REFERENCES "PipelineStage",
  opportunityTypeID INTEGER REFERENCES "OpportunityType",
  record TEXT NOT NULL
) STRICT;
INSERT INTO Opportunity VALUES(1,4,1,1,2,3,1,'{"opportunityID":{"recordName":"Opportunity","primaryKey":1},"assignedToID":4,"cachedTotalAmount":1054,"categoryID":1,"completeDate":510019200,"createDate":498614400,"currentPipelineID":1,"currentPipelineStageHistoryID":2,"currentPipelineStageID":3,"dueDate":510019200,"lastOpportunityStateType":0,"level":0,"name":"GTX Pro for Cancity","opportunityCode":"A1","opportunityStateType":1,"opportunityTypeID":1,"order":0,"permissionMask":0,"probability":100,"sourceImportID":"A1","startDate":498614400,"unitPrice":4821,"units":1,"permissions":{"readPermissions":{"teamIDs":[{"recordName":"Team","primaryKey":1},{"recordName":"Team","primaryKey":5}]},"writePermissions":{"teamIDs":[{"recordName":"Team","primaryKey":1},{"recordName":"Team","primaryKey":5}]}},"category":{"categoryID":{"recordName":"Category","primaryKey":1},"color":{"red":0.2,"green":0.45,"blue":0.8,"alpha":1},"isActive":true,"name":"GTX","order":0}}');
INSERT INTO Opportunity VALUES(2,2,2,2,3,5,2,'{"opportunityID":{"recordName":"Opportunity","primaryKey":2},"assignedToID":2,"cachedTotalAmount":0,"categoryID":2,"currentPipelineID":2,"currentPipelineStageHistoryID":3,"currentPipelineStageID":5,"lastOpportunityStateType":0,"level":0,"name":"MG Special","opportunityCode":"A2","opportunityStateType":0,"opportunityTypeID":2,"order":0,"permissionMask":0,"probability":10,"sourceImportID":"A2","unitPrice":55,"units":1,"permissions":{"readPermissions":{"teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":3}]},"writePermissions":{"teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":3}]}},"category":{"categoryID":{"recordName":"Category","primaryKey":2},"color":{"red":0.15,"green":0.6,"blue":0.35,"alpha":1},"isActive":true,"name":"MG","order":1}}');
INSERT INTO Opportunity VALUES(3,2,1,3,4,10,1,'{"opportunityID":{"recordName":"Opportunity","primaryKey":3},"assignedToID":2,"cachedTotalAmount":0,"categoryID":1,"createDate":499046400,"currentPipelineID":3,"currentPipelineStageHistoryID":4,"currentPipelineStageID":10,"lastOpportunityStateType":0,"level":0,"name":"GTX Pro for Isdom","opportunityCode":"A3","opportunityStateType":0,"opportunityTypeID":1,"order":0,"permissionMask":0,"probability":40,"sourceImportID":"A3","startDate":499046400,"unitPrice":4821,"units":1,"permissions":{"readPermissions":{"teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":3}]},"writePermissions":{"teamIDs":[{"recordName":"Team","primaryKey":2},{"recordName":"Team","primaryKey":3}]}},"category":{"categoryID":{"recordName":"Category","primaryKey":1},"color":{"red":0.2,"green":0.45,"blue":0.8,"alpha":1},"isActive":true,"name":"GTX","order":0}}');
CREATE TABLE IF NOT EXISTS "Project"(
  id INTEGER PRIMARY KEY,
  assignedToID INTEGER REFERENCES "User",
  categoryID INTEGER REFERENCES "Category",
  currentPipelineID INTEGER REFERENCES "Pipeline",
  currentPipelineStageHistoryID INTEGER REFERENCES "PipelineStageHistory",
  currentPipelineStageID INTEGER REFERENCES "PipelineStage",
  record TEXT NOT NULL
) STRICT;
CREATE TABLE IF NOT EXISTS "OpportunityOrganization"(
  opportunityID INTEGER NOT NULL REFERENCES "Opportunity",
  organizationID INTEGER NOT NULL REFERENCES "Organization",
  PRIMARY KEY(opportunityID, organizationID)
) STRICT, WITHOUT ROWID;
INSERT INTO OpportunityOrganization VALUES(1,1);
INSERT INTO OpportunityOrganization VALUES(3,2);
CREATE TABLE IF NOT EXISTS "OpportunityKeyword"(
  opportunityID INTEGER NOT NULL REFERENCES "Opportunity",
  keywordID INTEGER NOT NULL REFERENCES "Keyword",
  PRIMARY KEY(opportunityID, keywordID)
) STRICT, WITHOUT ROWID;
CREATE INDEX "Pipeline.opportunityID" ON "Pipeline"(opportunityID);
CREATE INDEX "Pipeline.projectID" ON "Pipeline"(projectID) WHERE projectID IS NOT NULL;
CREATE INDEX "PipelineStage.pipelineID" ON "PipelineStage"(pipelineID);
CREATE INDEX "PipelineStageHistory.opportunityID" ON "PipelineStageHistory"(opportunityID);
CREATE INDEX "PipelineStageHistory.projectID" ON "PipelineStageHistory"(projectID) WHERE projectID IS NOT NULL;
COMMIT;
PRAGMA application_id = 1263751756;
PRAGMA user_version = 1;
