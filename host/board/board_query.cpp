#include <host/board/board_query.h>
#include <host/board/deal_links.h>
#include <host/store/record_table.h>

#include <algorithm>
#include <string>
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

std::unordered_map<std::int64_t, LinkedCompanies> companiesOf(SQLite::Database& database,
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
std::unordered_map<std::int64_t, std::vector<ObjectID<Keyword>>> keywordsOf(SQLite::Database& database) {
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

}  // namespace

BoardData boardOf(SQLite::Database& database, const BoardLists& lists, const PermissionChecker& checker,
                  const BoardView& view, const CalendarMoment& at) {
    const OpportunityBoardMatcher matcher(view.filter, at.calendar, at.now);
    const auto companies = companiesOf(database, checker);
    const DealLinks dealLinks(database, checker, at);
    const auto keywords = view.filter.keywordID ? keywordsOf(database) : decltype(keywordsOf(database)){};
    const auto typeNames = namesByKey(lists.types, [](const auto& type) -> const auto& { return type.name; });
    const auto userNames =
        namesByKey(lists.directory.users(), [](const auto& user) -> const auto& { return user.name; });

    std::vector<BoardCandidate> candidates;
    SQLite::Statement deals(database, R"sql(
        SELECT deal.id, deal.record, pipeline.pipelineDefinitionID, stage.pipelineStageDefinitionID, history.id,
               history.record
          FROM "Opportunity" deal
          LEFT JOIN "Pipeline" pipeline ON pipeline.id = deal.currentPipelineID
          LEFT JOIN "PipelineStage" stage ON stage.id = deal.currentPipelineStageID
          LEFT JOIN "PipelineStageHistory" history ON history.id = deal.currentPipelineStageHistoryID
         ORDER BY deal.id)sql");
    while (deals.executeStep()) {
        const std::int64_t key = deals.getColumn(0).getInt64();
        auto deal = decodeStored<Opportunity>(database, key, textOf(deals.getColumn(1)));
        if (deal.deletionDate || !checker.canRead(deal)) continue;
        const auto definitionID = identifierOf<PipelineDefinition>(keyOf(deals.getColumn(2)));
        const auto keywordIDs = keywords.find(key);
        BoardRecordLinks links{.pipelineDefinitionID = definitionID};
        if (keywordIDs != keywords.end()) links.keywordIDs = keywordIDs->second;
        if (!matcher.matches(deal, links)) continue;

        std::optional<Date> stageStartDate;
        if (const auto historyKey = keyOf(deals.getColumn(4))) {
            stageStartDate =
                decodeStored<PipelineStageHistory>(database, *historyKey, textOf(deals.getColumn(5))).startDate;
        }
        std::optional<AvatarInfo> avatar;
        if (auto name = valueOf(userNames, deal.assignedToID)) avatar = AvatarInfo{.name = *std::move(name)};
        const LinkedCompanies linked = valueOf(companies, key).value_or(LinkedCompanies{});
        const Upcoming next = dealLinks.upcomingOf(key, linked.keys);
        OpportunityBoardCardData::Facts facts{
            .id = deal.objectID(),
            .title = std::move(deal.name).value_or(""),
            .linkedPeople = dealLinks.peopleOn(key),
            .linkedCompanies = linked.names,
            .value = deal.cachedTotalAmount,
            .probability = deal.probability,
            .type = valueOf(typeNames, deal.opportunityTypeID),
            .nextTaskId = next.task.transform([](const auto& task) { return task.id; }),
            .nextTaskDueDate = next.task.transform([](const auto& task) { return task.dueDate; }),
            .nextAppointmentId = next.appointment.transform([](const auto& one) { return one.id; }),
            .nextAppointmentDate = next.appointment.transform([](const auto& one) { return one.startDate; }),
            .nextAppointmentIsAllDay = next.appointment.transform([](const auto& one) { return one.isAllDay; }),
            .pipelineId = definitionID,
            .stageId = identifierOf<PipelineStageDefinition>(keyOf(deals.getColumn(3))),
            .categoryColor = deal.category ? deal.category->color : std::nullopt,
            .stageStartDate = stageStartDate,
            .closeDate = deal.dueDate,
            .avatarInfo = std::move(avatar),
        };
        candidates.push_back({.card = BoardCardData::opportunity(OpportunityBoardCardData::from(std::move(facts), at)),
                              .createDate = deal.createDate});
    }

    std::vector<PipelineStageDefinition> stages;
    std::ranges::copy_if(lists.stageDefinitions, std::back_inserter(stages), [&](const auto& stage) {
        return stage.pipelineDefinitionID == view.filter.pipelineDefinitionID.value();
    });
    return assembleBoard(BoardKind::opportunities, stages, std::move(candidates), view.sort);
}

std::string filterText(const BoardLists& lists, const BoardView& view) {
    std::vector<BoardUser> users;
    for (const User& user : lists.directory.users())
        users.push_back({.id = user.objectID(), .name = shownName(user)});
    return view.filter.filterString(users, lists.categories, lists.types);
}

}  // namespace kestrel::host
