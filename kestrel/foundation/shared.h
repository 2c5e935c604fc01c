#pragma once

#include <memory>
#include <utility>

namespace kestrel {

/// A value that its copies share, for large values that many hold: copying costs the same whatever the size. Nobody can
/// change it, so several threads may read it, and it compares and reads like the plain value. Empty only after it was
/// moved from.
template <class T>
class Shared {
  public:
    /// From the plain value, which it takes over.
    // NOLINTNEXTLINE(google-explicit-constructor): an initialiser gives the plain value.
    Shared(T value) : value_(std::make_shared<const T>(std::move(value))) {}

    /// The value. Not after it was moved from.
    // NOLINTNEXTLINE(google-explicit-constructor): reads as the plain value.
    [[nodiscard]] operator const T&() const noexcept { return *value_; }
    /// The value. Not after it was moved from.
    [[nodiscard]] const T& operator*() const noexcept { return *value_; }
    /// Reaches into the value. Not after it was moved from.
    [[nodiscard]] const T* operator->() const noexcept { return value_.get(); }
    /// Null when it was moved from.
    [[nodiscard]] const T* get() const noexcept { return value_.get(); }

    /// With the plain value; false when it was moved from.
    friend bool operator==(const Shared& a, const T& b) { return a.value_ != nullptr && *a.value_ == b; }
    /// Equal when the values are; at once where copies share one.
    friend bool operator==(const Shared& a, const Shared& b) {
        return a.value_ == b.value_ || (a.value_ != nullptr && b.value_ != nullptr && *a.value_ == *b.value_);
    }

  private:
    std::shared_ptr<const T> value_;
};

}  // namespace kestrel
