#pragma once

#include <kestrel/foundation/enumeration.h>
#include <cstdint>

namespace kestrel {

/// Which occurrences an edit of a repeating task or appointment applies to.
enum class OccurrenceEditScope : std::uint8_t {
    single,     ///< only this occurrence
    allFuture,  ///< this and all later occurrences
};
template <>
inline constexpr auto enumerationForm<OccurrenceEditScope> = EnumerationForm::keyed;

}  // namespace kestrel
