#pragma once

#include <gtest/gtest.h>

#include <cstddef>

#include "allocations.h"

namespace kestrel::faults {

/// Calls `attempt(k)` for k = 1, 2, … until it says that nothing has failed; `attempt` lets the k-th of something fail,
/// checks what came of it, and tells whether there was a k-th one. Nothing is left behind by any of them. Gives how
/// many there were.
template <class Attempt>
std::size_t failEach(Attempt attempt) {
    // What is made once and kept is made now.
    (void)attempt(std::size_t{0});
    for (std::size_t which = 1;; ++which) {
        const std::size_t before = liveAllocations();
        const bool hasFailed = attempt(which);
        EXPECT_EQ(liveAllocations(), before) << "with failure " << which;
        if (!hasFailed || testing::Test::HasFailure()) return which - 1;
    }
}

}  // namespace kestrel::faults
