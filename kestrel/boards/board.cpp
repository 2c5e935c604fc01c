#include <kestrel/boards/board.h>
#include <kestrel/coding/wire_form.h>

#include <algorithm>
#include <bit>
#include <boost/unordered/unordered_flat_map.hpp>
#include <compare>
#include <numeric>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kestrel {

KESTREL_FIELDS(BoardColumnHeaderData, id, title, count, total, active);
KESTREL_FIELDS(BoardColumnData, id, header, cards);
KESTREL_FIELDS(BoardData, columns, count, total);

namespace {

using Key = PipelineBoardSortKey;
using SortOrder = PipelineBoardSortOrder;

unsigned char folded(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

std::strong_ordering compareNames(std::string_view a, std::string_view b) noexcept {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (const auto order = folded(a[i]) <=> folded(b[i]); order != 0) return order;
    }
    return a.size() <=> b.size();
}

/// What a card is sorted by: a number or a name, gathered once so that comparing reads nothing else.
struct SortValue {
    bool isPresent = false;
    double number = 0;
    std::int64_t integer = 0;
    std::string_view name{};
    /// An opportunity before a project of the same identifier; boards do not mix them.
    bool isProject = false;
    ObjectIDStorage id = ObjectIDStorage::persistent(0);
};

SortValue sortValue(const BoardCandidate& candidate, Key key) {
    const BoardCardData& card = candidate.card;
    const OpportunityBoardCardData* opportunity = card.opportunityCard();
    SortValue value;
    value.isProject = opportunity == nullptr;
    value.id = opportunity != nullptr ? opportunity->id.storage() : card.projectCard()->id.storage();
    const auto set = [&](double number) {
        value.isPresent = true;
        value.number = number;
    };
    const auto setInteger = [&](std::int64_t integer) {
        value.isPresent = true;
        value.integer = integer;
    };
    const auto setDate = [&](const std::optional<Date>& date) {
        if (date) set(date->sinceReferenceDate());
    };
    switch (key) {
        case Key::forecasted:
        case Key::due: setDate(card.dueDate()); break;
        case Key::created: setDate(candidate.createDate); break;
        case Key::name:
            value.isPresent = true;
            value.name = card.title();
            break;
        case Key::priority:
            if (card.priority()) setInteger(*card.priority());
            break;
        case Key::totalValue:
            if (opportunity != nullptr) set(opportunity->value);
            break;
        case Key::probability:
            if (opportunity != nullptr) setInteger(opportunity->probability);
            break;
        case Key::nextActivity:
            if (card.nextActivities() && !card.nextActivities()->empty()) setDate(card.nextActivityDate());
            break;
        case Key::daysInStage:
            // The longer ago it entered, the more days it has been there.
            if (card.stageStartDate()) set(-card.stageStartDate()->sinceReferenceDate());
            break;
    }
    // A value that is no number has no place among numbers.
    if (value.number != value.number) value.isPresent = false;
    return value;
}

bool standsBefore(const SortValue& a, const SortValue& b, SortOrder order) noexcept {
    if (a.isPresent != b.isPresent) return a.isPresent;
    if (a.isPresent) {
        if (a.number != b.number) return (a.number < b.number) == (order == SortOrder::forward);
        if (a.integer != b.integer) return (a.integer < b.integer) == (order == SortOrder::forward);
        if (const auto names = compareNames(a.name, b.name); names != 0)
            return (names < 0) == (order == SortOrder::forward);
    }
    if (a.isProject != b.isProject) return b.isProject;
    return a.id < b.id;
}

/// How many characters all names begin with alike. Cards that are absent have no name, and do not count.
std::size_t sharedLength(std::span<const std::size_t> places, const std::vector<SortValue>& values) {
    std::optional<std::string_view> shared;
    for (const std::size_t place : places) {
        const SortValue& value = values[place];
        if (!value.isPresent) continue;
        if (!shared) shared = value.name;
        const auto [behind, other] = std::ranges::mismatch(*shared, value.name, {}, folded, folded);
        shared = shared->substr(0, static_cast<std::size_t>(behind - shared->begin()));
    }
    return shared.value_or("").size();
}

/// A card's place with the front of what it is sorted by as a word: where the words of two cards differ, they stand in
/// the order of the words. So most comparisons need not look at the cards' values, which lie all over the memory.
struct SortPlace {
    std::uint64_t word;
    std::size_t place;
};

class SortPlaces {
  public:
    SortPlaces(std::span<const std::size_t> places, const std::vector<SortValue>& values,
               PipelineBoardSortDescriptor descriptor)
        : descriptor_(descriptor), sharedLength_(descriptor.key == Key::name ? sharedLength(places, values) : 0) {
        places_.reserve(places.size());
        for (const std::size_t place : places)
            places_.push_back({.word = wordOf(values[place]), .place = place});
        std::ranges::sort(places_, [&](const SortPlace& a, const SortPlace& b) {
            if (a.word != b.word) return a.word < b.word;
            return standsBefore(values[a.place], values[b.place], descriptor_.order);
        });
    }
    [[nodiscard]] std::span<const SortPlace> places() const noexcept { return places_; }

  private:
    [[nodiscard]] std::uint64_t wordOf(const SortValue& value) const noexcept {
        // Behind all others, whose words have one bit less.
        if (!value.isPresent) return ~std::uint64_t{0};
        const std::uint64_t word = wordOfPresent(value);
        return (descriptor_.order == SortOrder::forward ? word : ~word) >> 1U;
    }
    [[nodiscard]] std::uint64_t wordOfPresent(const SortValue& value) const noexcept {
        constexpr std::uint64_t sign = std::uint64_t{1} << 63U;
        switch (descriptor_.key) {
            case Key::name: {
                std::uint64_t word = 0;
                for (std::size_t i = 0; i < sizeof word; ++i) {
                    const std::size_t at = sharedLength_ + i;
                    word = word << 8U | (at < value.name.size() ? folded(value.name[at]) : 0U);
                }
                return word;
            }
            case Key::priority:
            case Key::probability: return static_cast<std::uint64_t>(value.integer) ^ sign;
            default: {
                // The two zeros are one number.
                const auto bits = std::bit_cast<std::uint64_t>(value.number + 0.0);
                return (bits & sign) != 0 ? ~bits : bits | sign;
            }
        }
    }

    PipelineBoardSortDescriptor descriptor_;
    std::size_t sharedLength_;
    std::vector<SortPlace> places_{};
};

struct Column {
    ObjectID<PipelineStageDefinition> stage;
    BoardColumnData data{};
    std::vector<std::size_t> candidates{};
};

/// The columns of a board, found by stage.
class Columns {
  public:
    explicit Columns(std::span<const PipelineStageDefinition> stages) {
        std::vector<const PipelineStageDefinition*> ordered;
        for (const auto& stage : stages)
            ordered.push_back(&stage);
        std::ranges::sort(ordered, [](const auto* a, const auto* b) {
            const bool aDeleted = a->deletionDate.has_value();
            const bool bDeleted = b->deletionDate.has_value();
            if (aDeleted != bDeleted) return bDeleted;
            return a->order != b->order ? a->order < b->order : a->objectID() < b->objectID();
        });
        for (const auto* stage : ordered)
            add(stage->objectID(), stage->name.value_or(""), !stage->deletionDate);
        known_ = columns_.size();
    }
    Column& of(const ObjectID<PipelineStageDefinition>& stage) {
        const auto found = places_.find(stage);
        return columns_[found != places_.end() ? found->second : add(stage, "", false)];
    }
    std::vector<Column> take() {
        // Stages that only cards name stand in the order of their identifiers, whichever card came first.
        std::sort(columns_.begin() + static_cast<std::ptrdiff_t>(known_), columns_.end(),
                  [](const Column& a, const Column& b) { return a.stage < b.stage; });
        return std::move(columns_);
    }

  private:
    std::size_t add(const ObjectID<PipelineStageDefinition>& stage, std::string title, bool active) {
        const auto [place, isNew] = places_.try_emplace(stage, columns_.size());
        if (!isNew) return place->second;
        Column column{.stage = stage};
        column.data.id = stage.value().value_or(0);
        column.data.header = {.id = column.data.id, .title = std::move(title), .active = active};
        columns_.push_back(std::move(column));
        return columns_.size() - 1;
    }

    std::vector<Column> columns_;
    std::size_t known_ = 0;
    boost::unordered_flat_map<ObjectID<PipelineStageDefinition>, std::size_t,
                              std::hash<ObjectID<PipelineStageDefinition>>>
        places_;
};

}  // namespace

bool BoardCardOrder::operator()(const BoardCandidate& a, const BoardCandidate& b) const noexcept {
    return standsBefore(sortValue(a, descriptor_.key), sortValue(b, descriptor_.key), descriptor_.order);
}

BoardData assembleBoard(BoardKind kind, std::span<const PipelineStageDefinition> stages,
                        std::vector<BoardCandidate> candidates, PipelineBoardSortDescriptor descriptor) {
    Columns columns(stages);
    std::vector<SortValue> values;
    values.reserve(candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        values.push_back(sortValue(candidates[i], descriptor.key));
        if (const auto& stage = candidates[i].card.stageID()) columns.of(*stage).candidates.push_back(i);
    }
    BoardData board;
    for (Column& column : columns.take()) {
        if (!column.data.header.active && column.candidates.empty()) continue;
        // Sorting places instead of cards moves each card once.
        const SortPlaces sorted(column.candidates, values, descriptor);
        BoardColumnHeaderData& header = column.data.header;
        if (kind == BoardKind::opportunities) header.total = 0;
        column.data.cards.reserve(column.candidates.size());
        for (const SortPlace& each : sorted.places()) {
            BoardCardData& card = column.data.cards.emplace_back(std::move(candidates[each.place].card));
            if (const auto* opportunity = card.opportunityCard(); opportunity != nullptr && header.total) {
                *header.total += opportunity->value;
            }
        }
        header.count = static_cast<std::int64_t>(column.data.cards.size());
        board.count += header.count;
        board.total += header.total.value_or(0);
        board.columns.push_back(std::move(column.data));
    }
    return board;
}

}  // namespace kestrel
