#pragma once

#include <kestrel/foundation/fatal.h>
#include <cstdint>
#include <limits>
#include <optional>

namespace kestrel {

/// How many more values a subscriber is ready for: a number, or any number. What adds up beyond 64 bits is any number.
class Demand {
  public:
    /// A negative number is a mistake in the program: fatal().
    // NOLINTNEXTLINE(google-explicit-constructor): a number is a demand.
    constexpr Demand(std::int64_t count) : count_(count) {
        if (count < 0) fatal("A subscriber asked for a negative number of values.");
    }
    /// Zero.
    [[nodiscard]] static constexpr Demand none() noexcept { return Demand(); }
    /// Any number.
    [[nodiscard]] static constexpr Demand unlimited() noexcept {
        Demand demand;
        demand.count_ = any;
        return demand;
    }

    /// Whether it is zero.
    [[nodiscard]] constexpr bool isNone() const noexcept { return count_ == 0; }
    /// Whether it is any number.
    [[nodiscard]] constexpr bool isUnlimited() const noexcept { return count_ == any; }
    /// The number; absent when it is any number.
    [[nodiscard]] constexpr std::optional<std::int64_t> count() const noexcept {
        if (isUnlimited()) return std::nullopt;
        return count_;
    }

    /// Adds so many.
    constexpr Demand& operator+=(Demand more) noexcept {
        if (isUnlimited() || more.isUnlimited() || __builtin_add_overflow(count_, more.count_, &count_)) count_ = any;
        return *this;
    }
    /// The sum; any number when one of them is.
    friend constexpr Demand operator+(Demand a, Demand b) noexcept { return a += b; }
    /// Uses one up, if there is one; whether there was.
    constexpr bool take() noexcept {
        if (count_ == 0) return false;
        if (count_ != any) --count_;
        return true;
    }

    friend constexpr bool operator==(Demand, Demand) = default;

  private:
    static constexpr std::int64_t any = std::numeric_limits<std::int64_t>::max();

    constexpr Demand() noexcept = default;

    std::int64_t count_ = 0;
};

}  // namespace kestrel
