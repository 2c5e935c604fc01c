#pragma once

#include <algorithm>
#include <cstdint>

namespace kestrel {

/// How far something long has come, at one moment: a copy of the state of whatever counts the work.
struct ProgressSnapshot {
    /// How much is done, in units of whoever counts: bytes, records.
    std::int64_t completedUnitCount{};
    /// Zero or less when the amount of work is not known.
    std::int64_t totalUnitCount{};
    /// From 0 to 1.
    double fractionCompleted{};

    /// With the fraction that follows from the two counts: 0 when the total is not known, and at most 1 when more was
    /// done than expected.
    [[nodiscard]] static constexpr ProgressSnapshot of(std::int64_t completed, std::int64_t total) noexcept {
        const double fraction =
            total > 0 ? std::clamp(static_cast<double>(completed) / static_cast<double>(total), 0.0, 1.0) : 0.0;
        return {.completedUnitCount = completed, .totalUnitCount = total, .fractionCompleted = fraction};
    }

    friend bool operator==(const ProgressSnapshot&, const ProgressSnapshot&) = default;
};

}  // namespace kestrel
