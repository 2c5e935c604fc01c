#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace kestrel {

/// Something under way that ends when this is destroyed, or earlier by `cancel`. One that was moved from, or made
/// without anything, does nothing.
class AnyCancellable {
  public:
    /// Nothing to cancel.
    AnyCancellable() = default;
    /// Calls `cancel` once.
    explicit AnyCancellable(std::move_only_function<void()> cancel) : cancel_(std::move(cancel)) {}
    /// Takes over what is under way; the other one has nothing to cancel then.
    AnyCancellable(AnyCancellable&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    /// Cancels what it had, and takes over what the other one has.
    AnyCancellable& operator=(AnyCancellable&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    AnyCancellable(const AnyCancellable&) = delete;
    AnyCancellable& operator=(const AnyCancellable&) = delete;
    /// Cancels.
    ~AnyCancellable() { cancel(); }

    /// Ends what is under way. Doing it again does nothing.
    void cancel() {
        if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
    }
    /// Whether there is still something to cancel.
    [[nodiscard]] explicit operator bool() const noexcept { return static_cast<bool>(cancel_); }

  private:
    std::move_only_function<void()> cancel_;
};

}  // namespace kestrel
