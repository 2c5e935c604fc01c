#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/enumeration.h>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

enum class PipelineBoardSortKey : std::uint8_t {
    forecasted,
    due,
    created,
    name,
    priority,
    totalValue,
    probability,
    nextActivity,
    daysInStage,
};
enum class PipelineBoardSortOrder : std::uint8_t { forward, reverse };
template <>
inline constexpr auto enumerationForm<PipelineBoardSortKey> = EnumerationForm::caseText;
template <>
inline constexpr auto enumerationForm<PipelineBoardSortOrder> = EnumerationForm::caseText;

/// In which order a board's cards stand in their columns. In keyed form "key" and "order", each the case's name.
struct PipelineBoardSortDescriptor {
    using Coded = void;
    using Key = PipelineBoardSortKey;
    using SortOrder = PipelineBoardSortOrder;

    Key key{};
    SortOrder order{};

    /// Without an order, in the key's default one.
    // NOLINTNEXTLINE(google-explicit-constructor): a key is a descriptor.
    constexpr PipelineBoardSortDescriptor(Key sortKey = Key::forecasted,
                                          std::optional<SortOrder> sortOrder = std::nullopt)
        : key(sortKey), order(sortOrder.value_or(defaultSortOrder(sortKey))) {}

    /// The earliest forecast close first.
    [[nodiscard]] static constexpr PipelineBoardSortDescriptor opportunityDefault() {
        return {Key::forecasted, SortOrder::forward};
    }
    /// The earliest due date first.
    [[nodiscard]] static constexpr PipelineBoardSortDescriptor projectDefault() {
        return {Key::due, SortOrder::forward};
    }

    /// What pickers offer. Any key can be used on either board.
    static constexpr std::array opportunityKeys{Key::forecasted, Key::created,     Key::name,         Key::priority,
                                                Key::totalValue, Key::probability, Key::nextActivity, Key::daysInStage};
    static constexpr std::array projectKeys{Key::due,      Key::created,      Key::name,
                                            Key::priority, Key::nextActivity, Key::daysInStage};

    /// Descending for creation, priority, value, probability and days in stage; ascending for the rest.
    [[nodiscard]] static constexpr SortOrder defaultSortOrder(Key key) noexcept {
        switch (key) {
            case Key::created:
            case Key::priority:
            case Key::totalValue:
            case Key::probability:
            case Key::daysInStage: return SortOrder::reverse;
            default: return SortOrder::forward;
        }
    }

    friend bool operator==(const PipelineBoardSortDescriptor&, const PipelineBoardSortDescriptor&) = default;
};
extern template struct Codec<PipelineBoardSortDescriptor>;

// Names in the user's language.
[[nodiscard]] std::string localizedName(PipelineBoardSortKey key);
[[nodiscard]] std::string localizedName(PipelineBoardSortOrder order);

}  // namespace kestrel
