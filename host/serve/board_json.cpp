#include <fmt/format.h>
#include <host/failure.h>
#include <host/serve/board_json.h>
#include <host/serve/queried_board.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <host/terminal/day_text.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/services/pipeline_board_filter_service.h>
#include <kestrel/services/pipeline_board_service.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace kestrel::host {
namespace {

/// As many cards of a column as a page shows at once.
constexpr std::size_t columnStep = 50;
constexpr ServiceKey<PipelineBoardFilterService> boardFilters;

std::string integer(std::int64_t number) {
    return fmt::format("{}", number);
}

std::string hexColor(const RGBAColor& color) {
    const auto byte = [](double component) {
        return static_cast<int>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
    };
    return fmt::format("#{:02x}{:02x}{:02x}", byte(color.red), byte(color.green), byte(color.blue));
}

/// What a card is dragged as.
std::string dragged(const BoardCardData& card) {
    std::string text;
    const auto types = PipelineBoardCardPasteboardData::writableTypeIdentifiersForItemProvider();
    card.pasteboardData().loadData(types.front(), [&](const std::expected<Data, EncodingError>& data) {
        if (!data) throw Failure(data.error().message());
        text = data->text();
    });
    return text;
}

std::string nextJSON(const NextActivity& activity, const CalendarMoment& at) {
    const bool hasTime = activity.isAppointment() && !activity.isAllDay;
    return JSONObject()
        .add("kind", activity.isAppointment() ? "Appointment" : "Task")
        .add("when", hasTime ? momentText(activity.date, at.calendar) : dayText(activity.date, at.calendar))
        .json();
}

std::string cardJSON(const BoardCardData& card, const CalendarMoment& at) {
    JSONObject json;
    json.add("id", card.id().match([](const auto& id) { return id.stringValue(); }))
        .add("title", card.title())
        .add("people", card.linkedPeople())
        .add("companies", card.linkedCompanies())
        .add("drag", dragged(card));
    if (const OpportunityBoardCardData* deal = card.opportunityCard()) {
        json.add("amount", amount(deal->value)).addJSON("probability", integer(deal->probability));
        if (deal->type) json.add("type", *deal->type);
    }
    if (const auto& due = card.dueDate()) json.add("due", dayText(*due, at.calendar));
    if (const auto& start = card.stageStartDate(); start && isReachable(*start))
        json.addJSON("daysInStage", integer(std::max(0, at.calendar.daysBetween(*start, at.now))));
    if (const auto& color = card.categoryColor()) json.add("color", hexColor(*color));
    if (const auto& avatar = card.avatarInfo()) json.add("assignee", avatar->name);
    if (const auto& priority = card.priority()) json.addJSON("priority", integer(*priority));
    std::vector<std::string> next;
    for (const NextActivity& activity : card.nextActivities().value_or(std::vector<NextActivity>()))
        next.push_back(nextJSON(activity, at));
    return json.addJSON("next", JSONObject::array(next)).json();
}

std::string cardsJSON(std::span<const BoardCardData> cards, const CalendarMoment& at) {
    std::vector<std::string> elements;
    for (const BoardCardData& card : cards)
        elements.push_back(cardJSON(card, at));
    return JSONObject::array(elements);
}

std::string columnJSON(const BoardColumnData& column, const CalendarMoment& at) {
    const BoardColumnHeaderData& header = column.header;
    JSONObject json;
    json.addJSON("id", integer(column.id))
        .add("title", header.title)
        .addJSON("count", integer(header.count))
        .add("isActive", header.active);
    if (header.total) json.add("total", amount(*header.total));
    const std::span<const BoardCardData> cards(column.cards);
    return json.addJSON("cards", cardsJSON(cards.first(std::min(columnStep, cards.size())), at)).json();
}

// ---------------------------------------------------------------------------------------------------------------
// pickers

std::string optionJSON(std::string_view value, std::string_view text) {
    return JSONObject().add("value", value).add("text", text).json();
}

struct OptionGroup {
    /// Empty for options that stand by themselves.
    std::string label{};
    std::vector<std::string> options{};
};

std::string pickerJSON(std::string_view key, std::string_view label, std::string_view anything,
                       const std::vector<OptionGroup>& groups) {
    std::vector<std::string> elements;
    for (const OptionGroup& group : groups) {
        if (group.options.empty()) continue;
        elements.push_back(
            JSONObject().add("label", group.label).addJSON("options", JSONObject::array(group.options)).json());
    }
    return JSONObject()
        .add("key", key)
        .add("label", label)
        .add("anything", anything)
        .addJSON("groups", JSONObject::array(elements))
        .json();
}

std::string usersPicker(const std::vector<BoardUser>& users) {
    OptionGroup group;
    for (const BoardUser& user : users)
        group.options.push_back(
            optionJSON(integer(user.id.value().value()), fmt::format("{} ({})", user.name, grouped(user.count))));
    return pickerJSON("user", "Assigned to", "Anybody", {group});
}

template <class Record>
std::string recordsPicker(std::string_view key, std::string_view label, std::string_view anything,
                          const std::vector<Record>& records) {
    OptionGroup group;
    for (const Record& record : records) {
        if (record.name) group.options.push_back(optionJSON(integer(record.objectID().value().value()), *record.name));
    }
    return pickerJSON(key, label, anything, {group});
}

OptionGroup rangesCalled(std::string label, std::span<const PipelineBoardDateRange> ranges) {
    OptionGroup group{.label = std::move(label)};
    for (const PipelineBoardDateRange range : ranges)
        group.options.push_back(optionJSON(caseName(range), localizedName(range)));
    return group;
}

std::string rangesPicker(std::string_view key, std::string_view label) {
    constexpr std::array without{PipelineBoardDateRange::none};
    return pickerJSON(key, label, "Any time",
                      {rangesCalled("Now", nowRangesWithYTD), rangesCalled("Coming", futureRanges),
                       rangesCalled("Past", pastRanges), rangesCalled("Without a date", without)});
}

std::string pickersJSON(const QueriedBoard& board, Runtime& runtime) {
    PipelineBoardFilterService& filters = runtime[boardFilters];
    std::vector<std::string> pickers;
    pickers.push_back(usersPicker(valueOf(filters.fetchUsers(board.kind, board.definition.objectID()))));
    pickers.push_back(recordsPicker("category", "Category", "Any category", valueOf(filters.fetchCategories())));
    if (board.kind == BoardKind::opportunities) {
        pickers.push_back(recordsPicker("type", "Type", "Any type", valueOf(filters.fetchOpportunityTypes())));
        pickers.push_back(rangesPicker("closes", "Closes"));
    } else {
        pickers.push_back(rangesPicker("due", "Due"));
    }
    pickers.push_back(rangesPicker("created", "Created"));
    pickers.push_back(recordsPicker("keyword", "Keyword", "Any keyword", valueOf(filters.fetchKeywords())));
    return JSONObject::array(pickers);
}

std::string sortJSON(const QueriedBoard& board) {
    std::vector<std::string> keys;
    const auto add = [&](PipelineBoardSortKey key) {
        keys.push_back(JSONObject()
                           .add("value", caseName(key))
                           .add("text", localizedName(key))
                           .add("usualOrder", caseName(PipelineBoardSortDescriptor::defaultSortOrder(key)))
                           .json());
    };
    if (board.kind == BoardKind::projects) {
        std::ranges::for_each(PipelineBoardSortDescriptor::projectKeys, add);
    } else {
        std::ranges::for_each(PipelineBoardSortDescriptor::opportunityKeys, add);
    }
    std::vector<std::string> orders;
    for (const PipelineBoardSortOrder order : allCases<PipelineBoardSortOrder>)
        orders.push_back(optionJSON(caseName(order), localizedName(order)));
    return JSONObject()
        .addJSON("keys", JSONObject::array(keys))
        .addJSON("orders", JSONObject::array(orders))
        .add("key", caseName(board.sort.key))
        .add("order", caseName(board.sort.order))
        .json();
}

std::string pipelinesJSON(Runtime& runtime) {
    std::vector<std::string> elements;
    for (const BoardKind kind : {BoardKind::opportunities, BoardKind::projects}) {
        for (const PipelineDefinition& definition : valueOf(runtime[services::pipelineBoard].fetchPipelines(kind))) {
            elements.push_back(JSONObject()
                                   .add("kind", caseName(kind))
                                   .addJSON("id", integer(definition.objectID().value().value()))
                                   .add("name", definition.name.value_or(definition.objectID().stringValue()))
                                   .add("isActive", definition.active != 0)
                                   .json());
        }
    }
    return JSONObject::array(elements);
}

std::string filterText(const QueriedBoard& board, Runtime& runtime) {
    PipelineBoardFilterService& filters = runtime[boardFilters];
    return board.config.match(
        [&](const OpportunityBoardConfig& deals) { return valueOf(filters.describeFilter(deals.filter.value())); },
        [&](const ProjectBoardConfig& projects) {
            return valueOf(filters.describeProjectFilter(projects.filter.value()));
        });
}

}  // namespace

std::string boardJSON(const HTTPRequest& request, Runtime& runtime, const CalendarMoment& at) {
    const QueriedBoard board = queriedBoard(request, runtime);
    const BoardData data = valueOf(runtime[services::pipelineBoard].fetchBoard(board.config, at));
    std::vector<std::string> columns;
    for (const BoardColumnData& column : data.columns)
        columns.push_back(columnJSON(column, at));
    JSONObject json;
    json.addJSON("pipelines", pipelinesJSON(runtime))
        .add("kind", caseName(board.kind))
        .addJSON("pipeline", integer(board.definition.objectID().value().value()))
        .addJSON("pickers", pickersJSON(board, runtime))
        .addJSON("sort", sortJSON(board))
        .add("isFiltered", board.isFiltered)
        .add("filterText", filterText(board, runtime))
        .add("sortText", fmt::format("{}, {}", localizedName(board.sort.key), localizedName(board.sort.order)))
        .add("dragType", PipelineBoardCardPasteboardData::writableTypeIdentifiersForItemProvider().front())
        .addJSON("count", integer(data.count));
    if (board.kind == BoardKind::opportunities) json.add("total", amount(data.total));
    return json.addJSON("columns", JSONObject::array(columns)).json();
}

std::string columnJSON(const HTTPRequest& request, Runtime& runtime, const CalendarMoment& at) {
    const QueriedBoard board = queriedBoard(request, runtime);
    const auto stage = numberIn(request, "stage");
    if (!stage) throw WrongUsage("the stage is missing");
    const BoardData data = valueOf(runtime[services::pipelineBoard].fetchBoard(board.config, at));
    const auto column = std::ranges::find(data.columns, *stage, &BoardColumnData::id);
    if (column == data.columns.end()) throw RecordMissing(ObjectID<PipelineStageDefinition>(*stage).stringValue());
    const std::span<const BoardCardData> cards(column->cards);
    const auto first = static_cast<std::size_t>(numberIn(request, "from").value_or(0));
    const auto rest = cards.subspan(std::min(first, cards.size()));
    return JSONObject().addJSON("cards", cardsJSON(rest.first(std::min(columnStep, rest.size())), at)).json();
}

}  // namespace kestrel::host
