#include <fmt/format.h>
#include <host/board/board_query.h>
#include <host/board/deal_links.h>
#include <host/store/record_lists.h>
#include <host/store/record_table.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrel::host {
namespace {

/// The companies of an opportunity, as far as the user may read them.
struct LinkedCompanies {
    std::vector<std::int64_t> keys{};
    /// Ready to show.
    std::string names{};
};

std::unordered_map<std::int64_t, LinkedCompanies> companiesOfDeals(SQLite::Database& database,
                                                                   const PermissionChecker& checker) {
    std::unordered_map<std::int64_t, std::string> names;
    for (const Company& company : RecordTable<Company>(database).all()) {
        if (company.name && !company.deletionDate && checker.canRead(company))
            names.emplace(*company.objectID().value(), *company.name);
    }
    std::unordered_map<std::int64_t, LinkedCompanies> companies;
    SQLite::Statement links(database,
                            "SELECT opportunityID, organizationID FROM OpportunityOrganization "
                            "ORDER BY opportunityID, organizationID");
    while (links.executeStep()) {
        const auto name = names.find(links.getColumn(1).getInt64());
        if (name == names.end()) continue;
        LinkedCompanies& linked = companies[links.getColumn(0).getInt64()];
        linked.keys.push_back(name->first);
        if (!linked.names.empty()) linked.names += ", ";
        linked.names += name->second;
    }
    return companies;
}

/// The keywords of each opportunity.
std::unordered_map<std::int64_t, std::vector<ObjectID<Keyword>>> keywordsOfDeals(SQLite::Database& database) {
    std::unordered_map<std::int64_t, std::vector<ObjectID<Keyword>>> keywords;
    SQLite::Statement links(database, "SELECT opportunityID, keywordID FROM OpportunityKeyword");
    while (links.executeStep())
        keywords[links.getColumn(0).getInt64()].emplace_back(links.getColumn(1).getInt64());
    return keywords;
}

/// The names of a list's records by their keys.
template <class Records, class Name>
std::unordered_map<std::int64_t, std::string> namesByKey(const Records& records, Name&& name) {
    std::unordered_map<std::int64_t, std::string> names;
    for (const auto& record : records) {
        if (const auto& text = name(record)) names.emplace(*record.objectID().value(), *text);
    }
    return names;
}

template <class Value>
std::optional<Value> valueOf(const std::unordered_map<std::int64_t, Value>& values,
                             const std::optional<std::int64_t>& key) {
    if (!key) return std::nullopt;
    const auto found = values.find(*key);
    if (found == values.end()) return std::nullopt;
    return found->second;
}

template <class Record>
std::optional<ObjectID<Record>> identifierOf(const std::optional<std::int64_t>& key) {
    return key.transform([](std::int64_t value) { return ObjectID<Record>(value); });
}

/// Calls `visit` with every record of a type that the user may read, in the order of the keys: the record, its
/// pipeline's template, the template's stage that it is in, and a function that reads when it came there.
template <class Record, class Visitor>
void forEachPlaced(ReadableRecords& records, Visitor&& visit) {
    SQLite::Database& database = records.database();
    SQLite::Statement deals(database, fmt::format(R"sql(
        SELECT deal.id, deal.record, pipeline.pipelineDefinitionID, stage.pipelineStageDefinitionID, history.id,
               history.record
          FROM "{}" deal
          LEFT JOIN "Pipeline" pipeline ON pipeline.id = deal.currentPipelineID
          LEFT JOIN "PipelineStage" stage ON stage.id = deal.currentPipelineStageID
          LEFT JOIN "PipelineStageHistory" history ON history.id = deal.currentPipelineStageHistoryID
         ORDER BY deal.id)sql",
                                                  entityNameOf<Record>));
    const auto stageStart = [&]() -> std::optional<Date> {
        const auto historyKey = keyOf(deals.getColumn(4));
        if (!historyKey) return std::nullopt;
        return decodeStored<PipelineStageHistory>(database, *historyKey, textOf(deals.getColumn(5))).startDate;
    };
    while (deals.executeStep()) {
        auto deal = decodeStored<Record>(database, deals.getColumn(0).getInt64(), textOf(deals.getColumn(1)));
        if (!records.isReadable(deal)) continue;
        visit(deal, identifierOf<PipelineDefinition>(keyOf(deals.getColumn(2))),
              identifierOf<PipelineStageDefinition>(keyOf(deals.getColumn(3))), stageStart);
    }
}

/// Gathers the cards of a board of `Record`, which `Filter` and `Matcher` narrow.
template <class Record, class Filter, class Matcher>
class CardGatherer {
  public:
    CardGatherer(ReadableRecords& records, const Directory& directory, const Filter& filter, const CalendarMoment& at)
        : records_(records),
          at_(at),
          matcher_(filter, at.calendar, at.now),
          dealLinks_(records.database(), records.checker(), at, entityNameOf<Record>),
          userNames_(namesByKey(directory.users(), [](const auto& user) -> const auto& { return user.name; })) {
        if constexpr (isOpportunity) {
            companies_ = companiesOfDeals(records.database(), records.checker());
            if (filter.keywordID) keywords_ = keywordsOfDeals(records.database());
            typeNames_ = namesByKey(listedBy(records, &OpportunityType::order),
                                    [](const auto& type) -> const auto& { return type.name; });
        }
    }

    [[nodiscard]] std::vector<BoardCandidate> candidates() {
        std::vector<BoardCandidate> found;
        forEachPlaced<Record>(
            records_, [&](Record& deal, const auto& definitionID, const auto& stageID, const auto& stageStart) {
                const std::int64_t key = *deal.objectID().value();
                BoardRecordLinks links{.pipelineDefinitionID = definitionID};
                if (const auto known = keywords_.find(key); known != keywords_.end()) links.keywordIDs = known->second;
                if (!matcher_.matches(deal, links)) return;
                const auto createDate = deal.createDate;
                found.push_back({.card = cardOf(deal, definitionID, stageID, stageStart()), .createDate = createDate});
            });
        return found;
    }

  private:
    static constexpr bool isOpportunity = std::is_same_v<Record, Opportunity>;
    using Card = std::conditional_t<isOpportunity, OpportunityBoardCardData, ProjectBoardCardData>;

    /// Takes the name of the record.
    BoardCardData cardOf(Record& deal, const std::optional<ObjectID<PipelineDefinition>>& definitionID,
                         const std::optional<ObjectID<PipelineStageDefinition>>& stageID,
                         const std::optional<Date>& stageStartDate) {
        const std::int64_t key = *deal.objectID().value();
        const LinkedCompanies linked = valueOf(companies_, key).value_or(LinkedCompanies{});
        const Upcoming next = dealLinks_.upcomingOf(key, linked.keys);
        typename Card::Facts facts{.id = deal.objectID()};
        facts.title = std::move(deal.name).value_or("");
        facts.linkedPeople = dealLinks_.peopleOn(key);
        facts.linkedCompanies = linked.names;
        facts.nextTaskId = next.task.transform([](const auto& task) { return task.id; });
        facts.nextTaskDueDate = next.task.transform([](const auto& task) { return task.dueDate; });
        facts.nextAppointmentId = next.appointment.transform([](const auto& one) { return one.id; });
        facts.nextAppointmentDate = next.appointment.transform([](const auto& one) { return one.startDate; });
        facts.nextAppointmentIsAllDay = next.appointment.transform([](const auto& one) { return one.isAllDay; });
        facts.pipelineId = definitionID;
        facts.stageId = stageID;
        if (deal.category) facts.categoryColor = deal.category->color;
        facts.stageStartDate = stageStartDate;
        if (auto name = valueOf(userNames_, deal.assignedToID)) facts.avatarInfo = AvatarInfo{.name = *std::move(name)};
        if constexpr (isOpportunity) {
            facts.value = deal.cachedTotalAmount;
            facts.probability = deal.probability;
            facts.type = valueOf(typeNames_, deal.opportunityTypeID);
            facts.closeDate = deal.dueDate;
            return BoardCardData::opportunity(Card::from(std::move(facts), at_));
        } else {
            facts.dueDate = deal.dueDate;
            return BoardCardData::project(Card::from(std::move(facts), at_));
        }
    }

    ReadableRecords& records_;
    const CalendarMoment& at_;
    Matcher matcher_;
    DealLinks dealLinks_;
    std::unordered_map<std::int64_t, LinkedCompanies> companies_;
    std::unordered_map<std::int64_t, std::vector<ObjectID<Keyword>>> keywords_;
    std::unordered_map<std::int64_t, std::string> typeNames_;
    std::unordered_map<std::int64_t, std::string> userNames_;
};

/// The stages of a template, those that are deleted included: they show while records are in them.
std::vector<PipelineStageDefinition> stagesOf(SQLite::Database& database, const ObjectID<PipelineDefinition>& id) {
    std::vector<PipelineStageDefinition> stages = RecordTable<PipelineStageDefinition>(database).all();
    std::erase_if(stages, [&](const auto& stage) { return stage.pipelineDefinitionID != id.value(); });
    return stages;
}

template <class Record, class Matcher, class Filter>
BoardData boardOf(ReadableRecords& records, const Directory& directory, BoardKind kind,
                  const std::optional<Filter>& chosen, PipelineBoardSortDescriptor order, const CalendarMoment& at) {
    const auto filter = [&]() -> Filter {
        if (chosen) return *chosen;
        const auto definitions = pipelinesOf(records, kind);
        const PipelineDefinition* usual = usualDefinition(definitions);
        if (usual == nullptr) throw Refusal(noPipelineText(kind));
        return {.pipelineDefinitionID = usual->objectID()};
    }();
    (void)records.required(filter.pipelineDefinitionID);
    auto candidates = CardGatherer<Record, Filter, Matcher>(records, directory, filter, at).candidates();
    return assembleBoard(kind, stagesOf(records.database(), filter.pipelineDefinitionID), std::move(candidates), order);
}

}  // namespace

BoardData boardOf(ReadableRecords& records, const Directory& directory, const BoardConfig& config,
                  const CalendarMoment& at) {
    return config.match(
        [&](const OpportunityBoardConfig& deals) {
            return boardOf<Opportunity, OpportunityBoardMatcher>(records, directory, BoardKind::opportunities,
                                                                 deals.filter, deals.sortDescriptor, at);
        },
        [&](const ProjectBoardConfig& projects) {
            return boardOf<Project, ProjectBoardMatcher>(records, directory, BoardKind::projects, projects.filter,
                                                         projects.sortDescriptor, at);
        });
}

std::vector<PipelineDefinition> pipelinesOf(ReadableRecords& records, BoardKind kind) {
    std::vector<PipelineDefinition> definitions = listedBy(records, &PipelineDefinition::name);
    std::erase_if(definitions, [&](const PipelineDefinition& definition) {
        return (kind == BoardKind::projects ? definition.forProject : definition.forOpportunity) == 0;
    });
    return definitions;
}

const PipelineDefinition* usualDefinition(std::span<const PipelineDefinition> definitions) {
    const PipelineDefinition* usual = nullptr;
    for (const PipelineDefinition& definition : definitions) {
        if (definition.active == 0) continue;
        if (usual == nullptr || definition.objectID() < usual->objectID()) usual = &definition;
    }
    return usual;
}

std::string noPipelineText(BoardKind kind) {
    return fmt::format("there is no active pipeline of {} to show", caseName(kind));
}

std::vector<BoardUser> usersOnBoard(ReadableRecords& records, const Directory& directory, BoardKind kind,
                                    const ObjectID<PipelineDefinition>& pipeline) {
    (void)records.required(pipeline);
    std::unordered_map<std::int64_t, std::int64_t> counts;
    const auto count = [&](const auto& deal, const auto& definitionID, const auto&, const auto&) {
        if (definitionID == pipeline && deal.assignedToID) ++counts[*deal.assignedToID];
    };
    if (kind == BoardKind::projects) {
        forEachPlaced<Project>(records, count);
    } else {
        forEachPlaced<Opportunity>(records, count);
    }
    std::vector<BoardUser> users;
    for (BoardUser& user : boardUsers(directory)) {
        const auto found = counts.find(*user.id.value());
        if (found == counts.end()) continue;
        user.count = found->second;
        users.push_back(std::move(user));
    }
    std::ranges::sort(users, {}, [](const BoardUser& user) { return std::tie(user.name, user.id); });
    return users;
}

std::vector<BoardUser> boardUsers(const Directory& directory) {
    std::vector<BoardUser> users;
    for (const User& user : directory.users())
        users.push_back({.id = user.objectID(), .name = shownName(user)});
    return users;
}

}  // namespace kestrel::host
