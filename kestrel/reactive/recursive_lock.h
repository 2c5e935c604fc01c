#pragma once

#include <atomic>
#include <cstdint>

namespace kestrel {

/// A mutex that its owner may lock again. One atomic exchange to lock and one to unlock while nobody else wants it, all
/// inline and in one word: the standard recursive mutex takes twice as long.
class RecursiveLock {
  public:
    /// Not locked.
    RecursiveLock() = default;
    RecursiveLock(const RecursiveLock&) = delete;
    RecursiveLock& operator=(const RecursiveLock&) = delete;
    ~RecursiveLock() = default;

    /// Waits until no other thread has it. Owned by the calling thread, once more each time.
    void lock() {
        std::uintptr_t owner = nobody;
        if (owner_.compare_exchange_strong(owner, self(), std::memory_order_acquire, std::memory_order_relaxed))
            [[likely]]
            return;
        if ((owner & ~isAwaited) == self())
            ++relocked_;
        else
            waitAndLock();
    }
    /// By the owner: gives it up when it was unlocked as often as it was locked.
    void unlock() {
        if (relocked_ > 0) [[unlikely]] {
            --relocked_;
            return;
        }
        // Whoever locks from here on may destroy this; waking needs the address only. Ordered before the look for
        // waiters that waking takes.
        if ((owner_.exchange(nobody, std::memory_order_seq_cst) & isAwaited) != 0) [[unlikely]]
            owner_.notify_one();
    }

  private:
    static constexpr std::uintptr_t nobody = 0;
    /// Set beside the owner when others may wait. Owners are addresses of something larger than a byte.
    static constexpr std::uintptr_t isAwaited = 1;

    /// What no other living thread has, whichever library of the program asks.
    static std::uintptr_t self() noexcept { return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer()); }

    [[gnu::noinline]] void waitAndLock() {
        std::uintptr_t owner = owner_.load(std::memory_order_relaxed);
        while (true) {
            if (owner == nobody) {
                // Others may wait as well.
                if (owner_.compare_exchange_weak(owner, self() | isAwaited, std::memory_order_seq_cst)) return;
            } else if ((owner & isAwaited) != 0 ||
                       owner_.compare_exchange_weak(owner, owner | isAwaited, std::memory_order_seq_cst)) {
                owner_.wait(owner | isAwaited, std::memory_order_relaxed);
                owner = owner_.load(std::memory_order_relaxed);
            }
        }
    }

    std::atomic<std::uintptr_t> owner_ = nobody;
    /// How many more times the owner has locked than unlocked, beyond the first.
    unsigned relocked_ = 0;
};

}  // namespace kestrel
