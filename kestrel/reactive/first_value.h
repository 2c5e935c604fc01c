#pragma once

#include <kestrel/foundation/fatal.h>
#include <kestrel/reactive/publisher.h>
#include <atomic>
#include <coroutine>
#include <expected>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace kestrel {

/// Why there is no first value: the publisher failed, or it finished without one.
template <class Failure>
struct NoFirstValue {
    /// Absent when it finished.
    std::optional<Failure> failure{};

    friend bool operator==(const NoFirstValue&, const NoFirstValue&) = default;
};

namespace reactive_detail {

/// What a first value is awaited as: of a publisher that only ends, that it did.
template <class Output, class Failure>
struct Awaited {
    using Result = std::expected<Output, NoFirstValue<Failure>>;
};
template <class Failure>
struct Awaited<Never, Failure> {
    using Result = std::expected<void, Failure>;
};

/// What a waiting coroutine shares with the subscription that wakes it.
template <class Output, class Failure>
class FirstValue {
  public:
    using Result = typename Awaited<Output, Failure>::Result;

    void settle(Result result) {
        if (result_) return;
        result_.emplace(std::move(result));
        if (stage_.exchange(Stage::settled) == Stage::suspended) waiting_.resume();
    }
    void end(const std::optional<Failure>& failure) {
        if constexpr (std::is_same_v<Output, Never>) {
            settle(failure ? Result(std::unexpect, *failure) : Result());
        } else {
            settle(Result(std::unexpect, NoFirstValue<Failure>{failure}));
        }
    }
    /// Whether the coroutine has to wait.
    bool suspend(std::coroutine_handle<> waiting) {
        waiting_ = waiting;
        return stage_.exchange(Stage::suspended) == Stage::subscribing;
    }
    [[nodiscard]] Result take() { return *std::move(result_); }

  private:
    enum class Stage { subscribing, suspended, settled };

    std::atomic<Stage> stage_ = Stage::subscribing;
    std::coroutine_handle<> waiting_;
    std::optional<Result> result_;
};

template <class Output, class Failure>
class FirstValueAwaiter {
  public:
    explicit FirstValueAwaiter(AnyPublisher<Output, Failure> publisher) : publisher_(std::move(publisher)) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    bool await_suspend(std::coroutine_handle<> waiting) {
        // The subscription may settle on another thread, or wake the coroutine and so end this object, as soon as it is
        // there: nothing here is touched after `suspend`.
        const auto value = value_;
        subscription_ = publisher_.first().sink(
            [value](const Output& output) {
                if constexpr (!std::is_same_v<Output, Never>) value->settle(output);
            },
            [value](const Completion<Failure>& completion) { value->end(completion.failure()); });
        return value->suspend(waiting);
    }
    [[nodiscard]] typename FirstValue<Output, Failure>::Result await_resume() {
        subscription_.cancel();
        return value_->take();
    }

  private:
    AnyPublisher<Output, Failure> publisher_;
    std::shared_ptr<FirstValue<Output, Failure>> value_ = std::make_shared<FirstValue<Output, Failure>>();
    AnyCancellable subscription_;
};

}  // namespace reactive_detail

/// `co_await publisher` subscribes and waits for the first value, or why there is none. Of a publisher that only ends
/// it gives a `std::expected<void, Failure>`. The coroutine goes on where the value comes; destroying it while it waits
/// cancels. One that waits for a subject that goes away without an end waits for ever: finish subjects.
template <class Output, class Failure>
[[nodiscard]] auto operator co_await(AnyPublisher<Output, Failure> publisher) {
    return reactive_detail::FirstValueAwaiter<Output, Failure>(std::move(publisher));
}

/// The result of a coroutine that starts at once, runs by itself and gives nothing back:
///
///     DetachedCoroutine showAddress(…) {
///         const auto placemark = co_await geocoder.geocode(address);
///         if (placemark) show(*placemark);
///     }
///
/// An exception that leaves it stops the program.
struct DetachedCoroutine {
    /// What the compiler asks of the type: start at once, and let go at the end.
    struct promise_type {
        /// Gives back the empty result.
        DetachedCoroutine get_return_object() const noexcept { return {}; }
        /// Starts at once.
        std::suspend_never initial_suspend() const noexcept { return {}; }
        /// Lets the coroutine go at its end.
        std::suspend_never final_suspend() const noexcept { return {}; }
        /// Has nothing to keep.
        void return_void() const noexcept {}
        /// Stops the program through fatal().
        void unhandled_exception() const noexcept { fatal("An exception left a detached coroutine."); }
    };
};

}  // namespace kestrel
