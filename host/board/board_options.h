#pragma once

#include <host/store/directory.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/board_filter.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/boards/sort_descriptor.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/lookups/opportunity_type.h>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a board of opportunities is to show: a filter, an order and a moment, as people name them on a command line and
/// as a file remembers them.
namespace kestrel::host {

/// The lists that filters refer to, each in the order of its keys.
struct BoardLists {
    Directory directory;
    std::vector<Category> categories{};
    std::vector<OpportunityType> types{};
    std::vector<Keyword> keywords{};
    /// Of opportunities.
    std::vector<PipelineDefinition> definitions{};
};

struct BoardView {
    OpportunityBoardFilter filter;
    PipelineBoardSortDescriptor sort;
};

/// The names of the filter keys, and of the date ranges and sort keys that are values, as help texts list them.
[[nodiscard]] std::vector<std::string> filterKeyNames();
[[nodiscard]] std::vector<std::string> rangeNames();
[[nodiscard]] std::vector<std::string> sortKeyNames();

/// The view of a saved configuration, or of none, with what the command line says laid over it: each of `filters`,
/// "KEY=VALUE", replaces that key of the saved filter, "none" drops what is saved; `sort`, "KEY" or "KEY:ORDER",
/// replaces the saved order. WrongUsage for a key or value that there is not, with those that there are; a Failure when
/// the database lacks the pipeline that was saved, or has none to show.
[[nodiscard]] BoardView boardView(const BoardLists& lists, const std::optional<OpportunityBoardConfig>& saved,
                                  std::span<const std::string> filters, const std::optional<std::string>& sort);

/// The view as a configuration. A filter that filters nothing is left out.
[[nodiscard]] BoardConfig configOf(const BoardView& view);

/// The configuration in a file; absent when there is no file. A Failure names the file and what is wrong with it; a
/// board of projects is wrong.
[[nodiscard]] std::optional<OpportunityBoardConfig> readBoardConfig(const std::filesystem::path& file);
/// Saves a configuration, unless the file has it already.
void writeBoardConfig(const std::filesystem::path& file, const BoardConfig& config);

/// The moment that a text means: a date and time with "Z" or an offset, or a date alone, which is the start of that day
/// in the calendar. Years 1 to 4000. WrongUsage for anything else.
[[nodiscard]] Date momentOf(std::string_view text, const Calendar& calendar);

}  // namespace kestrel::host
