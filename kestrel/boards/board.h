#pragma once

#include <kestrel/boards/board_card.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/boards/sort_descriptor.h>
#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kestrel {

/// What stands above a column.
struct BoardColumnHeaderData {
    using Coded = void;

    /// The primary key of the stage's definition.
    std::int64_t id{};
    /// The name of the stage; empty when it has none.
    std::string title{};
    /// The number of cards.
    std::int64_t count{};
    /// The sum of the cards' values; absent on a board of projects.
    std::optional<double> total{};
    /// Whether the stage is still in the template.
    bool active{};

    friend bool operator==(const BoardColumnHeaderData&, const BoardColumnHeaderData&) = default;
};
extern template struct Codec<BoardColumnHeaderData>;

/// A column: a stage and the cards in it.
struct BoardColumnData {
    using Coded = void;

    /// The primary key of the stage's definition.
    std::int64_t id{};
    /// What stands above it.
    BoardColumnHeaderData header{};
    /// Sorted, the first one on top.
    std::vector<BoardCardData> cards{};

    friend bool operator==(const BoardColumnData&, const BoardColumnData&) = default;
};
extern template struct Codec<BoardColumnData>;

/// A board as it is drawn.
struct BoardData {
    using Coded = void;

    /// From left to right.
    std::vector<BoardColumnData> columns{};
    /// The cards on the board.
    std::int64_t count{};
    /// The sum over the board.
    double total{};

    friend bool operator==(const BoardData&, const BoardData&) = default;
};
extern template struct Codec<BoardData>;

/// What a board shows.
enum class BoardKind : std::uint8_t {
    opportunities,  ///< sales deals
    projects        ///< projects
};

/// A card that is to go on a board, with what ordering asks beyond what the card shows.
struct BoardCandidate {
    /// What is drawn.
    BoardCardData card;
    /// When the record was created.
    std::optional<Date> createDate{};
};

/// Orders cards by a sort descriptor. A total order: cards that are alike by the key stand in the order of their
/// identifiers, ascending, in either sort order. A card that lacks what the key asks for comes last in either order.
/// Names compare without regard to the case of ASCII letters. Comparing allocates nothing.
class BoardCardOrder {
  public:
    /// By that key, in that order.
    explicit BoardCardOrder(PipelineBoardSortDescriptor descriptor) noexcept : descriptor_(descriptor) {}
    /// Whether `a` stands before `b`.
    [[nodiscard]] bool operator()(const BoardCandidate& a, const BoardCandidate& b) const noexcept;

  private:
    PipelineBoardSortDescriptor descriptor_;
};

/// The board of those cards: a column for each stage, in stage order (by `order`, then by identifier), its cards
/// sorted. Stages that are deleted show, as inactive columns behind the others, only while cards are in them; so do
/// stages that cards name and `stages` lacks, without a title. Cards in no stage are on no board and not counted.
/// Linear in the cards but for the sort.
[[nodiscard]] BoardData assembleBoard(BoardKind kind, std::span<const PipelineStageDefinition> stages,
                                      std::vector<BoardCandidate> candidates, PipelineBoardSortDescriptor descriptor);

}  // namespace kestrel
