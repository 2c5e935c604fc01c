#pragma once

#include <cstddef>

namespace benchmarks {

/// How often this thread has allocated memory by `new` so far.
[[nodiscard]] std::size_t allocations() noexcept;

}  // namespace benchmarks
