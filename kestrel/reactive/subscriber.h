#pragma once

#include <kestrel/reactive/demand.h>
#include <memory>
#include <optional>
#include <utility>

namespace kestrel {

// The protocol between who publishes values and who receives them.
//
// A publisher is given a subscriber. It gives it a subscription, once; then values, never more than the subscriber has
// asked for; and then, at most once and nothing behind it, a completion. The subscriber asks for values through the
// subscription, and for further ones by what it returns for each value. After `cancel` nothing more is sent, but for
// what is being sent at that moment on another thread, and the subscriber is let go.

/// The failure of what cannot fail. There are no values of it.
class Never {
  public:
    Never() = delete;
    friend constexpr bool operator==(const Never&, const Never&) = default;
};

/// How a publisher ends: finished, or failed.
template <class Failure>
class Completion {
  public:
    /// An end without a failure.
    [[nodiscard]] static Completion finished() { return Completion(); }
    /// An end by that failure.
    [[nodiscard]] static Completion failed(Failure failure) {
        Completion completion;
        completion.failure_ = std::move(failure);
        return completion;
    }

    /// Whether it ended without a failure.
    [[nodiscard]] bool isFinished() const noexcept { return !failure_; }
    /// Absent when it finished.
    [[nodiscard]] const std::optional<Failure>& failure() const noexcept { return failure_; }

    friend bool operator==(const Completion&, const Completion&) = default;

  private:
    Completion() = default;

    std::optional<Failure> failure_;
};

/// A subscriber's way back to its publisher.
class Subscription {
  public:
    Subscription() = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    virtual ~Subscription() = default;

    /// Asks for further values.
    virtual void request(Demand demand) = 0;
    /// Asks for an end. Doing it again does nothing.
    virtual void cancel() = 0;
};

/// Who receives values.
template <class Output, class Failure>
class Subscriber {
  public:
    Subscriber() = default;
    Subscriber(const Subscriber&) = delete;
    Subscriber& operator=(const Subscriber&) = delete;
    virtual ~Subscriber() = default;

    /// The subscription, once, before anything else.
    virtual void receive(std::shared_ptr<Subscription> subscription) = 0;
    /// A value; gives back for how many more it is ready, on top of what it asked for before.
    virtual Demand receive(const Output& value) = 0;
    /// The end, at most once and last.
    virtual void receive(Completion<Failure> completion) = 0;
};

}  // namespace kestrel
