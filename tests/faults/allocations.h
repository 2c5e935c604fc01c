#pragma once

#include <cstddef>

/// The memory of this program: its operator new counts, and fails when it is told to.
namespace kestrel::faults {

/// How many allocations are alive, and how many bytes they take.
[[nodiscard]] std::size_t liveAllocations() noexcept;
[[nodiscard]] std::size_t liveBytes() noexcept;

/// The most bytes that were alive at once since it was made.
class Peak {
  public:
    Peak() noexcept;
    /// Beyond what was alive when it was made.
    [[nodiscard]] std::size_t bytes() const noexcept;

  private:
    std::size_t start_;
};

/// While it lives, one allocation of its thread fails: the first one is 1; for 0 none does.
class FailingAllocation {
  public:
    explicit FailingAllocation(std::size_t which) noexcept;
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    [[nodiscard]] bool hasFailed() const noexcept { return hasFailed_; }

  private:
    friend bool mustFail() noexcept;

    std::size_t left_;
    bool hasFailed_ = false;
};

/// Whether the allocation that is asked for has to fail.
[[nodiscard]] bool mustFail() noexcept;

}  // namespace kestrel::faults
