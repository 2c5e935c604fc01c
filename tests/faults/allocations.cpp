#include "allocations.h"

#include <malloc.h>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace kestrel::faults {

namespace {

std::atomic<std::size_t> allocations;
std::atomic<std::size_t> bytes;
std::atomic<std::size_t> mostBytes;
thread_local constinit FailingAllocation* failing = nullptr;

void* counted(void* memory) noexcept {
    if (memory == nullptr) return nullptr;
    allocations.fetch_add(1, std::memory_order_relaxed);
    const std::size_t size = malloc_usable_size(memory);
    const std::size_t now = bytes.fetch_add(size, std::memory_order_relaxed) + size;
    std::size_t most = mostBytes.load(std::memory_order_relaxed);
    while (most < now && !mostBytes.compare_exchange_weak(most, now, std::memory_order_relaxed)) {
    }
    return memory;
}

void* allocate(std::size_t size) noexcept {
    return mustFail() ? nullptr : counted(std::malloc(std::max<std::size_t>(size, 1)));
}
void* allocate(std::size_t size, std::align_val_t alignment) noexcept {
    if (mustFail()) return nullptr;
    const auto boundary = static_cast<std::size_t>(alignment);
    return counted(std::aligned_alloc(boundary, (std::max<std::size_t>(size, 1) + boundary - 1) / boundary * boundary));
}
void* orThrow(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void release(void* memory) noexcept {
    if (memory == nullptr) return;
    allocations.fetch_sub(1, std::memory_order_relaxed);
    bytes.fetch_sub(malloc_usable_size(memory), std::memory_order_relaxed);
    std::free(memory);
}

}  // namespace

std::size_t liveAllocations() noexcept {
    return allocations.load(std::memory_order_relaxed);
}
std::size_t liveBytes() noexcept {
    return bytes.load(std::memory_order_relaxed);
}

Peak::Peak() noexcept : start_(liveBytes()) {
    mostBytes.store(start_, std::memory_order_relaxed);
}
std::size_t Peak::bytes() const noexcept {
    return mostBytes.load(std::memory_order_relaxed) - start_;
}

FailingAllocation::FailingAllocation(std::size_t which) noexcept : left_(which) {
    failing = this;
}
FailingAllocation::~FailingAllocation() {
    failing = nullptr;
}

bool mustFail() noexcept {
    if (failing == nullptr || failing->left_ == 0 || --failing->left_ != 0) return false;
    failing->hasFailed_ = true;
    return true;
}

}  // namespace kestrel::faults

// Every form, so that none of them reaches the standard library's: what one has allocated another one may free. Under
// AddressSanitizer the memory is still its own, for it stands behind malloc.

using kestrel::faults::allocate;
using kestrel::faults::orThrow;
using kestrel::faults::release;

void* operator new(std::size_t size) {
    return orThrow(allocate(size));
}
void* operator new[](std::size_t size) {
    return orThrow(allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return orThrow(allocate(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return orThrow(allocate(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size, alignment);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    release(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
    release(memory);
}
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
    release(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    release(memory);
}
void operator delete(void* memory, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept {
    release(memory);
}
