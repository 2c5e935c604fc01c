#include <host/crm/importer.h>
#include <host/store/record_table.h>
#include <kestrel/boards/opportunity_state.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace kestrel::host {
namespace {

using Stage = CRMExport::Stage;

/// The stages of the sales pipeline, in its order: CRMExport::Stage counts them.
struct SalesStage {
    std::string_view name;
    /// The band of the probability of success, in percent.
    std::int64_t lowerThreshold;
    std::int64_t upperThreshold;
    /// Of a deal in the stage, in percent.
    std::int64_t probability;
    OpportunityState state;
};
constexpr std::array<SalesStage, 4> salesStages{{{"Prospecting", 0, 25, 10, OpportunityState::open},
                                                 {"Engaging", 25, 75, 40, OpportunityState::open},
                                                 {"Won", 100, 100, 100, OpportunityState::won},
                                                 {"Lost", 0, 0, 0, OpportunityState::lost}}};
constexpr std::string_view salesPipelineName = "Sales";

/// The colours that new categories get, in turn.
constexpr std::array<RGBAColor, 6> categoryColors{{{0.20, 0.45, 0.80, 1},
                                                   {0.15, 0.60, 0.35, 1},
                                                   {0.85, 0.45, 0.10, 1},
                                                   {0.60, 0.30, 0.70, 1},
                                                   {0.75, 0.20, 0.25, 1},
                                                   {0.10, 0.60, 0.65, 1}}};

/// The records of one type, as they are in the database, by what tells them apart in an export.
template <class Record, class Key>
class MergedTable {
  public:
    /// A record's place: one that is there, or a primary key for a new one.
    struct Place {
        std::int64_t id;
        const Record* existing;
    };

    /// `keyOf` gives the key of a record, or nothing for one that no export can mean. Of several with the same key the
    /// first counts.
    template <class KeyOf>
    MergedTable(SQLite::Database& database, std::string_view label, KeyOf&& keyOf)
        : table_(database), line_{.recordName = Record::recordName, .label = label} {
        for (Record& record : table_.all()) {
            lastID_ = *record.objectID().value();
            if (std::optional<Key> key = keyOf(std::as_const(record)))
                existing_.try_emplace(*std::move(key), std::move(record));
        }
    }

    [[nodiscard]] const Record* find(const Key& key) const {
        const auto found = existing_.find(key);
        return found == existing_.end() ? nullptr : &found->second;
    }
    /// The place for a key. Each place has to be merged.
    [[nodiscard]] Place place(const Key& key) {
        const Record* record = find(key);
        return {.id = record != nullptr ? *record->objectID().value() : ++lastID_, .existing = record};
    }
    /// Makes the record what `change` makes of it, which is called with it and whether it is new. Gives it back.
    template <class Change>
    Record mergeAt(const Place& place, Change&& change) {
        if (place.existing == nullptr) {
            Record record{ObjectID<Record>(place.id)};
            change(record, true);
            table_.insert(record);
            ++line_.added;
            return record;
        }
        Record record = *place.existing;
        change(record, false);
        if (record == *place.existing) {
            ++line_.unchanged;
        } else {
            table_.update(record);
            ++line_.changed;
        }
        return record;
    }
    template <class Change>
    Record merge(const Key& key, Change&& change) {
        return mergeAt(place(key), std::forward<Change>(change));
    }
    void remove(const Record& record) {
        table_.remove(record.objectID());
        ++line_.changed;
    }

    [[nodiscard]] const ImportReport::Line& line() const { return line_; }

  private:
    RecordTable<Record> table_;
    std::map<Key, Record> existing_;
    std::int64_t lastID_ = 0;
    ImportReport::Line line_;
};

constexpr auto byName = [](const auto& record) { return record.name; };

/// The companies that deals are linked to.
class CompanyLinks {
  public:
    explicit CompanyLinks(SQLite::Database& database)
        : insert_(database, "INSERT INTO OpportunityOrganization(opportunityID, organizationID) VALUES(?, ?)"),
          remove_(database, "DELETE FROM OpportunityOrganization WHERE opportunityID = ?") {
        SQLite::Statement links(database, "SELECT opportunityID, organizationID FROM OpportunityOrganization");
        while (links.executeStep())
            existing_[links.getColumn(0).getInt64()].insert(links.getColumn(1).getInt64());
    }

    /// Makes a company, or none, what a deal is linked to.
    void set(std::int64_t opportunityID, std::optional<std::int64_t> companyID) {
        std::set<std::int64_t> wanted;
        if (companyID) wanted.insert(*companyID);
        const auto found = existing_.find(opportunityID);
        const bool hasLinks = found != existing_.end();
        if (hasLinks ? found->second == wanted : wanted.empty()) {
            line_.unchanged += wanted.size();
            return;
        }
        if (hasLinks) {
            remove_.reset();
            remove_.bind(1, opportunityID);
            remove_.exec();
        }
        if (companyID) {
            insert_.reset();
            insert_.bind(1, opportunityID);
            insert_.bind(2, *companyID);
            insert_.exec();
        }
        ++(hasLinks ? line_.changed : line_.added);
    }

    [[nodiscard]] const ImportReport::Line& line() const { return line_; }

  private:
    SQLite::Statement insert_;
    SQLite::Statement remove_;
    std::map<std::int64_t, std::set<std::int64_t>> existing_;
    ImportReport::Line line_{.recordName = "OpportunityOrganization", .label = "links of deals to companies"};
};

/// One stay of a deal in a stage, as the export tells it.
struct Stay {
    Stage stage{};
    std::optional<Stage> previous{};
    std::optional<Date> start{};
    std::optional<Date> end{};
};

/// An open deal is where it is, since its engagement if that has come; a closed one was engaged in until it closed. The
/// export does not tell when prospecting began.
std::vector<Stay> staysOf(const CRMExport::Deal& deal) {
    if (deal.stage == Stage::prospecting) return {{.stage = Stage::prospecting}};
    std::vector<Stay> stays{{.stage = Stage::engaging, .previous = Stage::prospecting, .start = deal.engageDate}};
    if (deal.stage != Stage::engaging) {
        stays.back().end = deal.closeDate;
        stays.push_back({.stage = deal.stage, .previous = Stage::engaging, .start = deal.closeDate});
    }
    return stays;
}

class Importer {
  public:
    Importer(const CRMExport& exported, SQLite::Database& database) : export_(exported), database_(database) {}

    ImportReport run(const ImportProgress& progress) {
        mergeTeamsAndUsers();
        mergeCompanies();
        mergeProducts();
        mergePipelineDefinition();
        for (std::size_t done = 0; done < export_.deals.size(); ++done) {
            mergeDeal(export_.deals[done]);
            if (progress) progress(done + 1, export_.deals.size());
        }
        return report();
    }

  private:
    using ByName = std::string;

    void mergeTeamsAndUsers() {
        struct Person {
            bool isManager{};
            std::set<std::string> offices{};
        };
        std::map<std::string, Person> people;
        for (const auto& agent : export_.agents) {
            people[agent.name].offices.insert(agent.regionalOffice);
            people[agent.manager].offices.insert(agent.regionalOffice);
            people[agent.manager].isManager = true;
            if (!offices_.contains(agent.regionalOffice))
                offices_.emplace(agent.regionalOffice, mergeTeam(agent.regionalOffice, false));
        }
        mergeUser(std::string(administratorName), "Administrator", {}, true);
        std::map<std::string, ObjectID<Team>> privateTeams;
        std::map<std::string, std::int64_t> userKeys;
        for (const auto& [name, person] : people) {
            const ObjectID<Team> privateTeam = privateTeams.emplace(name, mergeTeam(name, true)).first->second;
            TeamIDs membership{privateTeam};
            for (const auto& office : person.offices)
                membership.insert(offices_.at(office));
            const User user = mergeUser(name, person.isManager ? "Sales Manager" : "Sales Agent", membership, false);
            userKeys.emplace(name, *user.objectID().value());
        }
        for (const auto& agent : export_.agents) {
            agents_.emplace(agent.name,
                            AgentKeys{.userID = userKeys.at(agent.name),
                                      .teams{privateTeams.at(agent.name), offices_.at(agent.regionalOffice)}});
        }
    }

    ObjectID<Team> mergeTeam(const std::string& name, bool isPrivate) {
        const Team merged = teams_.merge({isPrivate, name}, [&](Team& team, bool) {
            team.name = name;
            team.isUserPrivateTeam = isPrivate;
        });
        return merged.objectID();
    }

    User mergeUser(const std::string& name, const std::string& jobTitle, const TeamIDs& membership, bool isAdmin) {
        return users_.merge(name, [&](User& user, bool) {
            const auto blank = name.rfind(' ');
            user.name = name;
            if (blank == name.npos) {
                user.firstName.reset();
                user.lastName = name;
            } else {
                user.firstName = name.substr(0, blank);
                user.lastName = name.substr(blank + 1);
            }
            user.username = usernameOf(name);
            user.jobTitle = jobTitle;
            user.isAdmin = isAdmin;
            user.teamIDs = membership;
        });
    }

    void mergeCompanies() {
        extraFieldsNames_.merge(std::string(Company::recordName), [&](ExtraFieldsNames& names, bool isNew) {
            names.typeString = Company::recordName;
            if (!isNew) return;
            names.extra1 = "Year Established";
            names.extra2 = "Annual Revenue (million USD)";
            names.extra3 = "Subsidiary Of";
        });
        const auto present = [](const std::string& text) {
            return text.empty() ? std::nullopt : std::optional<std::string>(text);
        };
        for (const auto& account : export_.accounts) {
            const std::int64_t industry = keyOfNamed(industries_, industryKeys_, account.sector);
            const std::int64_t region = keyOfNamed(regions_, regionKeys_, account.officeLocation);
            const Company merged = companies_.merge(account.name, [&](Company& company, bool) {
                company.name = account.name;
                company.sourceImportID = account.name;
                company.numberOfEmployees = account.employees;
                company.industryTypeID = industry;
                company.regionTypeID = region;
                company.extra1 = present(account.yearEstablished);
                company.extra2 = present(account.revenue);
                company.extra3 = present(account.subsidiaryOf);
            });
            companyKeys_.emplace(account.name, *merged.objectID().value());
        }
    }

    /// The key of the lookup record of a name, merged when it is met for the first time.
    template <class Record>
    std::int64_t keyOfNamed(MergedTable<Record, ByName>& table, std::map<std::string, std::int64_t>& keys,
                            const std::string& name) {
        const auto known = keys.find(name);
        if (known != keys.end()) return known->second;
        const Record merged = table.merge(name, [&](Record& record, bool) { record.name = name; });
        return keys.emplace(name, *merged.objectID().value()).first->second;
    }

    void mergeProducts() {
        for (const auto& product : export_.products) {
            if (!seriesCategories_.contains(product.series)) {
                const auto order = static_cast<std::int64_t>(seriesCategories_.size());
                seriesCategories_.emplace(
                    product.series, categories_.merge(product.series, [&](Category& category, bool isNew) {
                        category.name = product.series;
                        category.order = order;
                        if (isNew) category.color = categoryColors[seriesCategories_.size() % categoryColors.size()];
                    }));
            }
            const OpportunityType type = types_.merge(product.name, [&](OpportunityType& merged, bool) {
                merged.name = product.name;
                merged.order = static_cast<std::int64_t>(productTypes_.size());
            });
            productTypes_.push_back(*type.objectID().value());
        }
    }

    /// The template and its stages are the users' once they are there: only what is missing is made.
    void mergePipelineDefinition() {
        const PipelineDefinition sales =
            definitions_.merge(std::string(salesPipelineName), [](PipelineDefinition& definition, bool isNew) {
                if (!isNew) return;
                definition.name = salesPipelineName;
                definition.active = 1;
                definition.forOpportunity = 1;
                definition.lowerThreshold = 0;
                definition.upperThreshold = 100;
            });
        definition_ = sales;
        for (std::size_t i = 0; i < salesStages.size(); ++i) {
            const SalesStage& stage = salesStages[i];
            const std::pair key(*sales.objectID().value(), std::string(stage.name));
            stageDefinitions_.push_back(
                stageDefinitionTable_.merge(key, [&](PipelineStageDefinition& definition, bool isNew) {
                    if (!isNew) return;
                    definition.name = stage.name;
                    definition.order = static_cast<std::int64_t>(i);
                    definition.pipelineDefinitionID = key.first;
                    definition.lowerThreshold = stage.lowerThreshold;
                    definition.upperThreshold = stage.upperThreshold;
                }));
        }
    }

    void mergeDeal(const CRMExport::Deal& deal) {
        const CRMExport::Product& product = export_.products[deal.product];
        const SalesStage& salesStage = salesStages[static_cast<std::size_t>(deal.stage)];
        const AgentKeys& agent = agents_.at(deal.agent);
        const Category& category = seriesCategories_.at(product.series);
        const auto place = opportunities_.place(deal.id);
        const Pipeline pipeline = mergePipeline(place.id);
        const std::array<PipelineStage, 4> stages = mergeStages(pipeline);
        const std::int64_t historyID = mergeHistory(deal, place.id, pipeline, stages);

        opportunities_.mergeAt(place, [&](Opportunity& opportunity, bool) {
            opportunity.name = deal.account.empty() ? product.name : product.name + " for " + deal.account;
            opportunity.opportunityCode = deal.id;
            opportunity.sourceImportID = deal.id;
            opportunity.opportunityStateType = rawValue(salesStage.state);
            opportunity.lastOpportunityStateType = rawValue(OpportunityState::open);
            opportunity.probability = salesStage.probability;
            opportunity.cachedTotalAmount = deal.closeValue;
            opportunity.unitPrice = product.salesPrice;
            opportunity.units = 1;
            opportunity.createDate = deal.engageDate;
            opportunity.startDate = deal.engageDate;
            opportunity.completeDate = deal.closeDate;
            opportunity.dueDate = deal.closeDate;
            opportunity.assignedToID = agent.userID;
            opportunity.category = category;
            opportunity.categoryID = category.objectID().value();
            opportunity.opportunityTypeID = productTypes_[deal.product];
            opportunity.permissions.readPermissions = PermissionSet(agent.teams);
            opportunity.permissions.writePermissions = PermissionSet(agent.teams);
            opportunity.currentPipelineID = pipeline.objectID().value();
            opportunity.currentPipelineStageID = stages[static_cast<std::size_t>(deal.stage)].objectID().value();
            opportunity.currentPipelineStageHistoryID = historyID;
        });
        removeLaterHistory(place.id, staysOf(deal).size());
        const auto company = companyKeys_.find(deal.account);
        links_.set(place.id,
                   company == companyKeys_.end() ? std::nullopt : std::optional<std::int64_t>(company->second));
    }

    Pipeline mergePipeline(std::int64_t opportunityID) {
        return pipelines_.merge(opportunityID, [&](Pipeline& pipeline, bool isNew) {
            if (!isNew) return;
            pipeline.name = definition_->name;
            pipeline.opportunityID = opportunityID;
            pipeline.pipelineDefinitionID = definition_->objectID().value();
            pipeline.lowerThreshold = definition_->lowerThreshold;
            pipeline.upperThreshold = definition_->upperThreshold;
        });
    }

    std::array<PipelineStage, 4> mergeStages(const Pipeline& pipeline) {
        const auto mergeStage = [&](std::size_t i) {
            const PipelineStageDefinition& definition = stageDefinitions_[i];
            const std::pair key(*pipeline.objectID().value(), *definition.objectID().value());
            return stages_.merge(key, [&](PipelineStage& stage, bool isNew) {
                if (!isNew) return;
                stage.name = definition.name;
                stage.order = definition.order;
                stage.opportunityID = pipeline.opportunityID;
                stage.pipelineID = key.first;
                stage.pipelineStageDefinitionID = key.second;
                stage.lowerThreshold = definition.lowerThreshold;
                stage.upperThreshold = definition.upperThreshold;
            });
        };
        return {mergeStage(0), mergeStage(1), mergeStage(2), mergeStage(3)};
    }

    /// Merges the rows of a deal's stays, the first with the first and so on. Gives back the key of the last one.
    std::int64_t mergeHistory(const CRMExport::Deal& deal, std::int64_t opportunityID, const Pipeline& pipeline,
                              const std::array<PipelineStage, 4>& stages) {
        std::int64_t lastID = 0;
        std::size_t index = 0;
        for (const Stay& stay : staysOf(deal)) {
            const PipelineStage& stage = stages[static_cast<std::size_t>(stay.stage)];
            const auto place = history_.place({opportunityID, index++});
            lastID = place.id;
            history_.mergeAt(place, [&](PipelineStageHistory& row, bool) {
                row.opportunityID = opportunityID;
                row.pipelineID = pipeline.objectID().value();
                row.pipelineName = pipeline.name;
                row.pipelineStageID = stage.objectID().value();
                row.stageName = stage.name;
                row.previousPipelineID.reset();
                row.previousPipelineName.reset();
                row.previousPipelineStageID.reset();
                row.previousStageName.reset();
                if (stay.previous) {
                    const PipelineStage& previous = stages[static_cast<std::size_t>(*stay.previous)];
                    row.previousPipelineID = row.pipelineID;
                    row.previousPipelineName = row.pipelineName;
                    row.previousPipelineStageID = previous.objectID().value();
                    row.previousStageName = previous.name;
                }
                row.startDate = stay.start;
                row.endDate = stay.end;
            });
        }
        return lastID;
    }

    /// Removes the rows of stays that the export does not tell any more, once the deal points at none of them.
    void removeLaterHistory(std::int64_t opportunityID, std::size_t firstIndex) {
        for (std::size_t index = firstIndex;; ++index) {
            const PipelineStageHistory* row = history_.find({opportunityID, index});
            if (row == nullptr) return;
            history_.remove(*row);
        }
    }

    [[nodiscard]] ImportReport report() const {
        return {.lines = {companies_.line(), opportunities_.line(), users_.line(), teams_.line(), industries_.line(),
                          regions_.line(), categories_.line(), types_.line(), extraFieldsNames_.line(),
                          definitions_.line(), stageDefinitionTable_.line(), pipelines_.line(), stages_.line(),
                          history_.line(), links_.line()}};
    }

    /// What a deal needs to know of the agent who has it.
    struct AgentKeys {
        std::int64_t userID;
        /// The agent's own team and that of the office.
        TeamIDs teams;
    };

    const CRMExport& export_;
    SQLite::Database& database_;

    MergedTable<Team, std::pair<bool, std::string>> teams_{
        database_, "teams", [](const Team& team) {
            return team.name ? std::optional(std::pair(team.isUserPrivateTeam, *team.name)) : std::nullopt;
        }};
    MergedTable<User, ByName> users_{database_, "users", byName};
    MergedTable<IndustryType, ByName> industries_{database_, "industries", byName};
    MergedTable<RegionType, ByName> regions_{database_, "regions", byName};
    MergedTable<ExtraFieldsNames, ByName> extraFieldsNames_{
        database_, "names of extra fields", [](const ExtraFieldsNames& names) { return names.typeString; }};
    MergedTable<Company, ByName> companies_{database_, "companies",
                                            [](const Company& company) { return company.sourceImportID; }};
    MergedTable<Category, ByName> categories_{database_, "categories", byName};
    MergedTable<OpportunityType, ByName> types_{database_, "opportunity types", byName};
    MergedTable<PipelineDefinition, ByName> definitions_{database_, "pipeline definitions", byName};
    MergedTable<PipelineStageDefinition, std::pair<std::int64_t, std::string>> stageDefinitionTable_{
        database_, "stage definitions", [](const PipelineStageDefinition& stage) {
            return stage.pipelineDefinitionID && stage.name
                       ? std::optional(std::pair(*stage.pipelineDefinitionID, *stage.name))
                       : std::nullopt;
        }};
    MergedTable<Opportunity, ByName> opportunities_{
        database_, "opportunities", [](const Opportunity& opportunity) { return opportunity.sourceImportID; }};
    MergedTable<Pipeline, std::int64_t> pipelines_{database_, "pipelines",
                                                   [](const Pipeline& pipeline) { return pipeline.opportunityID; }};
    MergedTable<PipelineStage, std::pair<std::int64_t, std::int64_t>> stages_{
        database_, "pipeline stages", [](const PipelineStage& stage) {
            return stage.pipelineID && stage.pipelineStageDefinitionID
                       ? std::optional(std::pair(*stage.pipelineID, *stage.pipelineStageDefinitionID))
                       : std::nullopt;
        }};
    MergedTable<PipelineStageHistory, std::pair<std::int64_t, std::size_t>> history_{
        database_, "rows of stage history",
        [rows = std::map<std::int64_t, std::size_t>()](const PipelineStageHistory& row) mutable {
            return row.opportunityID ? std::optional(std::pair(*row.opportunityID, rows[*row.opportunityID]++))
                                     : std::nullopt;
        }};
    CompanyLinks links_{database_};

    // Keys by the names that the export uses.
    std::map<std::string, ObjectID<Team>> offices_;
    std::map<std::string, AgentKeys> agents_;
    std::map<std::string, std::int64_t> industryKeys_;
    std::map<std::string, std::int64_t> regionKeys_;
    std::map<std::string, std::int64_t> companyKeys_;
    std::map<std::string, Category> seriesCategories_;
    /// By the product's place in the export.
    std::vector<std::int64_t> productTypes_;
    std::optional<PipelineDefinition> definition_;
    /// By CRMExport::Stage.
    std::vector<PipelineStageDefinition> stageDefinitions_;
};

}  // namespace

ImportReport importCRM(const CRMExport& exported, SQLite::Database& database, const ImportProgress& progress) {
    return Importer(exported, database).run(progress);
}

}  // namespace kestrel::host
