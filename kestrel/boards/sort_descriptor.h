#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/enumeration.h>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

/// What cards are ordered by.
enum class PipelineBoardSortKey : std::uint8_t {
    forecasted,    ///< the forecast close
    due,           ///< the due date
    created,       ///< when the record was created
    name,          ///< the title, without regard to the case of ASCII letters
    priority,      ///< the priority
    totalValue,    ///< the total value
    probability,   ///< the probability of success
    nextActivity,  ///< the date of the first next activity
    daysInStage,   ///< how long it has been in its stage
};
/// Which end comes first.
enum class PipelineBoardSortOrder : std::uint8_t {
    forward,  ///< the smallest or earliest one
    reverse   ///< the greatest or latest one
};
template <>
inline constexpr auto enumerationForm<PipelineBoardSortKey> = EnumerationForm::caseText;
template <>
inline constexpr auto enumerationForm<PipelineBoardSortOrder> = EnumerationForm::caseText;

/// In which order a board's cards stand in their columns. In keyed form "key" and "order", each the case's name.
struct PipelineBoardSortDescriptor {
    using Coded = void;
    /// What `key` tells.
    using Key = PipelineBoardSortKey;
    /// What `order` tells.
    using SortOrder = PipelineBoardSortOrder;

    /// By what.
    Key key{};
    /// Which end comes first.
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
    /// What pickers offer on a board of projects.
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

/// The key's name in the user's language.
[[nodiscard]] std::string localizedName(PipelineBoardSortKey key);
/// The order's name in the user's language.
[[nodiscard]] std::string localizedName(PipelineBoardSortOrder order);

}  // namespace kestrel
