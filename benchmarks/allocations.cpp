// Counts allocations: a plain counter of the thread, so that it hardly takes time from anybody.

#include "allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t count = 0;

}  // namespace

std::size_t benchmarks::allocations() noexcept {
    return count;
}

void* operator new(std::size_t size) {
    ++count;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
