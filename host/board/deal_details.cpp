#include <host/board/deal_details.h>

#include <cstdint>
#include <type_traits>

namespace kestrel::host {
namespace {

/// The name of a record by the key that another one has of it; also of one that has been deleted since.
template <class Record>
std::optional<std::string> nameOf(ReadableRecords& records, const std::optional<std::int64_t>& key) {
    if (!key) return std::nullopt;
    const auto record = records.findAny(ObjectID<Record>(*key));
    return record ? record->name : std::nullopt;
}

std::vector<Company> companiesOf(ReadableRecords& records, const ObjectID<Opportunity>& id) {
    std::vector<Company> companies;
    SQLite::Statement links(
        records.database(),
        "SELECT organizationID FROM OpportunityOrganization WHERE opportunityID = ? ORDER BY organizationID");
    links.bind(1, id.value().value());
    while (links.executeStep()) {
        if (auto company = records.find(ObjectID<Company>(links.getColumn(0).getInt64())))
            companies.push_back(*std::move(company));
    }
    return companies;
}

/// `column` names the record that the stays are of.
std::vector<PipelineStageHistory> historyOf(ReadableRecords& records, const std::string& column, std::int64_t key) {
    std::vector<PipelineStageHistory> history;
    SQLite::Statement rows(records.database(),
                           "SELECT id, record FROM \"PipelineStageHistory\" WHERE " + column + " = ? ORDER BY id DESC");
    rows.bind(1, key);
    while (rows.executeStep()) {
        auto row = decodeStored<PipelineStageHistory>(records.database(), rows.getColumn(0).getInt64(),
                                                      textOf(rows.getColumn(1)));
        if (records.isReadable(row)) history.push_back(std::move(row));
    }
    return history;
}

template <class Record>
DealDetails detailsOf(ReadableRecords& records, const ObjectID<Record>& id) {
    constexpr bool isOpportunity = std::is_same_v<Record, Opportunity>;
    Record deal = records.required(id);
    DealDetails details{.record = deal};
    details.pipelineName = nameOf<Pipeline>(records, deal.currentPipelineID);
    details.stageName = nameOf<PipelineStage>(records, deal.currentPipelineStageID);
    if (deal.assignedToID) {
        const auto user = records.findAny(ObjectID<User>(*deal.assignedToID));
        if (user) details.assigneeName = shownName(*user);
    }
    if constexpr (isOpportunity) {
        details.typeName = nameOf<OpportunityType>(records, deal.opportunityTypeID);
        details.companies = companiesOf(records, id);
    }
    details.history = historyOf(records, isOpportunity ? "opportunityID" : "projectID", *id.value());
    return details;
}

}  // namespace

DealDetails dealDetailsOf(ReadableRecords& records, const PipelineBoardObjectID& id) {
    return id.match([&](const auto& typed) { return detailsOf(records, typed); });
}

}  // namespace kestrel::host
