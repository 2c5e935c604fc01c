#include <fmt/format.h>
#include <host/board/board_options.h>
#include <host/board/board_query.h>
#include <host/failure.h>
#include <host/terminal/file.h>
#include <host/terminal/text.h>
#include <kestrel/coding/json.h>

#include <algorithm>
#include <array>
#include <set>

namespace kestrel::host {
namespace {

using SortKey = PipelineBoardSortKey;
using SortOrder = PipelineBoardSortOrder;

/// By the name as people type it, "total-value", or as it is stored, "totalValue".
template <Enumeration E>
std::optional<E> fromKebabName(std::string_view name) {
    for (const E value : allCases<E>) {
        if (inKebabCase(caseName(value)) == name || caseName(value) == name) return value;
    }
    return std::nullopt;
}

template <Enumeration E>
std::vector<std::string> kebabNames() {
    std::vector<std::string> names;
    for (const E value : allCases<E>)
        names.push_back(inKebabCase(caseName(value)));
    return names;
}

[[noreturn]] void refuse(std::string_view what, std::string_view given, std::span<const std::string> possible) {
    throw WrongUsage(fmt::format("there is no {} \"{}\"; there {}", what, given,
                                 possible.empty() ? "is none" : "is: " + listed(possible)));
}

/// The record of a list that has the name, whatever the case of its letters.
template <class Record>
ObjectID<Record> named(std::string_view what, std::string_view name, const std::vector<Record>& records) {
    const std::string wanted = foldedCase(name);
    std::vector<std::string> possible;
    for (const Record& record : records) {
        if (!record.name) continue;
        if (foldedCase(*record.name) == wanted) return record.objectID();
        possible.push_back(*record.name);
    }
    refuse(what, name, possible);
}

PipelineBoardDateRange rangeNamed(std::string_view name) {
    const auto range = fromKebabName<PipelineBoardDateRange>(name);
    if (!range) refuse("date range", name, rangeNames());
    return *range;
}

ObjectID<User> userNamed(std::string_view name, const Directory& directory) {
    const auto found = directory.usersCalled(name);
    if (found.size() == 1) return found.front()->objectID();
    if (found.size() > 1) throw WrongUsage(fmt::format("\"{}\" is the name of several users", name));
    std::vector<std::string> possible;
    for (const User& user : directory.users())
        possible.push_back(shownName(user));
    refuse("user", name, possible);
}

/// A key of a filter on the command line, and how its value becomes part of the filter.
struct FilterKey {
    std::string_view name;
    void (*apply)(OpportunityBoardFilter& filter, std::string_view value, const BoardLists& lists);
};
constexpr std::array filterKeys{
    FilterKey{"created", [](OpportunityBoardFilter& filter, std::string_view value,
                            const BoardLists&) { filter.createDate = rangeNamed(value); }},
    FilterKey{"closes", [](OpportunityBoardFilter& filter, std::string_view value,
                           const BoardLists&) { filter.closeDate = rangeNamed(value); }},
    FilterKey{"user", [](OpportunityBoardFilter& filter, std::string_view value,
                         const BoardLists& lists) { filter.userID = userNamed(value, lists.directory); }},
    FilterKey{"category",
              [](OpportunityBoardFilter& filter, std::string_view value, const BoardLists& lists) {
                  filter.categoryID = named("category", value, lists.categories);
              }},
    FilterKey{"type",
              [](OpportunityBoardFilter& filter, std::string_view value, const BoardLists& lists) {
                  filter.opportunityTypeID = named("opportunity type", value, lists.types);
              }},
    FilterKey{"keyword", [](OpportunityBoardFilter& filter, std::string_view value, const BoardLists& lists) {
                  filter.keywordID = named("keyword", value, lists.keywords);
              }}};

constexpr std::string_view noFilter = "none";

void applyFilters(OpportunityBoardFilter& filter, std::span<const std::string> arguments, const BoardLists& lists) {
    std::set<std::string_view> given;
    for (const std::string& argument : arguments) {
        if (argument == noFilter) continue;
        const auto equals = argument.find('=');
        const auto key = std::string_view(argument).substr(0, equals);
        const auto* found = std::ranges::find(filterKeys, key, &FilterKey::name);
        if (found == filterKeys.end()) refuse("filter key", key, filterKeyNames());
        if (equals == argument.npos) throw WrongUsage(fmt::format("the filter {} needs a value: {}=VALUE", key, key));
        if (!given.insert(found->name).second) throw WrongUsage(fmt::format("the filter {} is given twice", key));
        found->apply(filter, std::string_view(argument).substr(equals + 1), lists);
    }
}

PipelineBoardSortDescriptor sortNamed(std::string_view text) {
    const auto colon = text.find(':');
    const auto key = fromKebabName<SortKey>(text.substr(0, colon));
    if (!key) refuse("sort key", text.substr(0, colon), sortKeyNames());
    if (colon == text.npos) return {*key};
    const auto order = fromKebabName<SortOrder>(text.substr(colon + 1));
    if (!order) refuse("sort order", text.substr(colon + 1), kebabNames<SortOrder>());
    return {*key, order};
}

}  // namespace

std::vector<std::string> filterKeyNames() {
    std::vector<std::string> names;
    for (const FilterKey& key : filterKeys)
        names.emplace_back(key.name);
    return names;
}
std::vector<std::string> rangeNames() {
    return kebabNames<PipelineBoardDateRange>();
}
std::vector<std::string> sortKeyNames() {
    return kebabNames<SortKey>();
}

BoardView boardView(const BoardLists& lists, const std::optional<OpportunityBoardConfig>& saved,
                    std::span<const std::string> filters, const std::optional<std::string>& sort) {
    const PipelineDefinition* usual = usualDefinition(lists.definitions);
    if (usual == nullptr) throw Refusal(noPipelineText(BoardKind::opportunities));
    BoardView view{.filter{.pipelineDefinitionID = usual->objectID()},
                   .sort = PipelineBoardSortDescriptor::opportunityDefault()};
    if (saved) {
        view.sort = saved->sortDescriptor;
        if (saved->filter && std::ranges::find(filters, noFilter) == filters.end()) view.filter = *saved->filter;
        const auto& wanted = view.filter.pipelineDefinitionID;
        if (std::ranges::find(lists.definitions, wanted, &PipelineDefinition::objectID) == lists.definitions.end()) {
            throw Failure(
                fmt::format("the saved board is of {}, which the database does not have", wanted.stringValue()));
        }
    }
    applyFilters(view.filter, filters, lists);
    if (sort) view.sort = sortNamed(*sort);
    return view;
}

BoardConfig configOf(const BoardView& view) {
    return BoardConfig::opportunity(view.filter.isFiltered() ? std::optional(view.filter) : std::nullopt, view.sort);
}

std::optional<OpportunityBoardConfig> readBoardConfig(const std::filesystem::path& file) {
    std::error_code problem;
    if (std::filesystem::status(file, problem).type() == std::filesystem::file_type::not_found) return std::nullopt;
    auto config = decodeJSON<BoardConfig>(readFile(file));
    if (!config) throw Failure(fmt::format("{}: {}", file.native(), config.error().message()));
    auto ofOpportunities = config->opportunity();
    if (!ofOpportunities) throw Failure(fmt::format("{}: is of a board of projects", file.native()));
    return ofOpportunities;
}

void writeBoardConfig(const std::filesystem::path& file, const BoardConfig& config) {
    auto json = encodeJSON(config);
    if (!json) throw Failure(fmt::format("{}: {}", file.native(), json.error().message()));
    *json += '\n';
    std::error_code problem;
    if (std::filesystem::exists(file, problem) && readFile(file) == *json) return;
    writeFileAtomically(file, *json);
}

Date momentOf(std::string_view text, const Calendar& calendar) {
    constexpr std::size_t dateLength = 10;
    const auto moment = Date::parseISO8601(text);
    if (!moment || *moment >= Date::distantFuture()) {
        throw WrongUsage(
            fmt::format("\"{}\" is no moment of the years 1 to 4000; write 2017-12-31, or "
                        "2017-12-31T09:30:00Z, or with an offset 2017-12-31T09:30:00+01:00",
                        text));
    }
    if (text.size() != dateLength) return *moment;
    // A date alone is parsed as midnight UTC: its day there is the day that was written.
    return calendar.startOf(Calendar::utc().dayOf(*moment));
}

}  // namespace kestrel::host
