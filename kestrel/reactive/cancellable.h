#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace kestrel {

/// Something under way that ends when this is destroyed, or earlier by `cancel`. One that was moved from, or made
/// without anything, does nothing.
class AnyCancellable {
  public:
    AnyCancellable() = default;
    /// Calls `cancel` once.
    explicit AnyCancellable(std::move_only_function<void()> cancel) : cancel_(std::move(cancel)) {}
    AnyCancellable(AnyCancellable&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    AnyCancellable& operator=(AnyCancellable&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    AnyCancellable(const AnyCancellable&) = delete;
    AnyCancellable& operator=(const AnyCancellable&) = delete;
    ~AnyCancellable() { cancel(); }

    void cancel() {
        if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
    }
    /// Whether there is still something to cancel.
    [[nodiscard]] explicit operator bool() const noexcept { return static_cast<bool>(cancel_); }

  private:
    std::move_only_function<void()> cancel_;
};

}  // namespace kestrel
