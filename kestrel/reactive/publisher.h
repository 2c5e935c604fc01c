#pragma once

#include <kestrel/foundation/fatal.h>
#include <kestrel/reactive/cancellable.h>
#include <kestrel/reactive/operators.h>
#include <kestrel/reactive/scheduler.h>
#include <kestrel/reactive/subscriber.h>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace kestrel {

/// A source of values over time. Each subscriber is served for itself unless the publisher says otherwise.
template <class Output, class Failure = Never>
class Publisher {
  public:
    Publisher() = default;
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;
    virtual ~Publisher() = default;

    /// Gives the subscriber a subscription, then the values that it asks for through it, then an end.
    virtual void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) const = 0;
};

/// Any publisher of an output and a failure, as a value that is cheap to copy, with the operators that make other
/// publishers of it. Nothing happens before somebody subscribes:
///
///     AnyCancellable watching = contacts.observe().map(&Contact::name).removeDuplicates().sink(show);
///
/// What an operator is given has to be safe to call on the thread on which the values come.
template <class Output, class Failure = Never>
class AnyPublisher {
  public:
    /// Who subscribes.
    using Downstream = std::shared_ptr<Subscriber<Output, Failure>>;

    /// `subscribe` is shared by the copies. One that is empty is a mistake in the program: fatal().
    explicit AnyPublisher(std::function<void(Downstream)> subscribe)
        : subscribe_(std::make_shared<const std::function<void(Downstream)>>(std::move(subscribe))) {
        if (!*subscribe_) fatal("A publisher was made of nothing.");
    }
    /// Hands subscribers on to the publisher, which it keeps.
    explicit AnyPublisher(std::shared_ptr<const Publisher<Output, Failure>> publisher)
        : AnyPublisher(std::function<void(Downstream)>([publisher = std::move(publisher)](Downstream subscriber) {
              publisher->subscribe(std::move(subscriber));
          })) {}

    /// Gives the subscriber a subscription, then the values that it asks for through it, then an end.
    void subscribe(Downstream subscriber) const { (*subscribe_)(std::move(subscriber)); }
    /// Itself, as every publisher and subject can be written.
    [[nodiscard]] AnyPublisher eraseToAnyPublisher() const { return *this; }

    /// Subscribes without limit until the result is destroyed or cancelled.
    template <std::invocable<const Output&> OnValue, std::invocable<const Completion<Failure>&> OnCompletion>
    [[nodiscard]] AnyCancellable sink(OnValue onValue, OnCompletion onCompletion) const {
        auto sink =
            std::make_shared<reactive_detail::Sink<Output, Failure>>(std::move(onValue), std::move(onCompletion));
        subscribe(sink);
        return AnyCancellable([sink = std::move(sink)] { sink->cancel(); });
    }
    /// Subscribes for the values alone; an end, failed or not, is not told.
    template <class OnValue>
        requires(!std::same_as<Output, Never>) && std::invocable<OnValue, const Output&>
    [[nodiscard]] AnyCancellable sink(OnValue onValue) const {
        return sink(std::move(onValue), [](const Completion<Failure>&) {});
    }

    /// For publishers that only end.
    template <class OnCompletion>
        requires std::same_as<Output, Never> && std::invocable<OnCompletion, const Completion<Failure>&>
    [[nodiscard]] AnyCancellable sink(OnCompletion onCompletion) const {
        return sink([](const Never&) {}, std::move(onCompletion));
    }

    /// Each value as `transform` makes it.
    template <class Transform>
    [[nodiscard]] auto map(Transform transform) const {
        using Result = std::remove_cvref_t<std::invoke_result_t<Transform&, const Output&>>;
        return stage<Result, Failure, reactive_detail::Map<Output, Result, Failure, Transform>>(std::move(transform));
    }
    /// What `transform` makes of the values, which is an optional, as far as it is present.
    template <class Transform>
    [[nodiscard]] auto compactMap(Transform transform) const {
        using Result = typename std::remove_cvref_t<std::invoke_result_t<Transform&, const Output&>>::value_type;
        return stage<Result, Failure, reactive_detail::CompactMap<Output, Result, Failure, Transform>>(
            std::move(transform));
    }
    /// The values for which `isIncluded` is true.
    template <std::predicate<const Output&> Predicate>
    [[nodiscard]] AnyPublisher filter(Predicate isIncluded) const {
        return stage<Output, Failure, reactive_detail::Filter<Output, Failure, Predicate>>(std::move(isIncluded));
    }
    /// The values that differ from the one before.
    [[nodiscard]] AnyPublisher removeDuplicates() const
        requires std::equality_comparable<Output>
    {
        return removeDuplicates(std::equal_to<Output>());
    }
    /// The values that `areEqual` does not take for the one before.
    template <std::predicate<const Output&, const Output&> AreEqual>
    [[nodiscard]] AnyPublisher removeDuplicates(AreEqual areEqual) const {
        // Made anew for each subscriber, as it remembers.
        return deferredFilter([areEqual] {
            return [areEqual, last = std::optional<Output>()](const Output& value) mutable {
                if (last && areEqual(*last, value)) return false;
                last = value;
                return true;
            };
        });
    }
    /// All but the first ones.
    [[nodiscard]] AnyPublisher dropFirst(std::size_t count = 1) const {
        return deferredFilter([count] {
            return [left = count](const Output&) mutable {
                if (left == 0) return true;
                --left;
                return false;
            };
        });
    }
    /// The first value, and an end.
    [[nodiscard]] AnyPublisher first() const {
        return stage<Output, Failure, reactive_detail::First<Output, Failure>>();
    }
    /// The values of `next` when this one has finished.
    [[nodiscard]] AnyPublisher append(AnyPublisher next) const {
        return stage<Output, Failure, reactive_detail::Append<Output, Failure, AnyPublisher>>(std::move(next));
    }
    /// The failure as `transform` makes it.
    template <std::invocable<const Failure&> Transform>
    [[nodiscard]] auto mapError(Transform transform) const {
        using Result = std::remove_cvref_t<std::invoke_result_t<Transform&, const Failure&>>;
        return stage<Output, Result, reactive_detail::MapError<Output, Failure, Result, Transform>>(
            std::move(transform));
    }
    /// Values and end are delivered on the scheduler, in their order.
    [[nodiscard]] AnyPublisher receiveOn(std::shared_ptr<Scheduler> scheduler) const {
        return stage<Output, Failure, reactive_detail::ReceiveOn<Output, Failure>>(std::move(scheduler));
    }

  private:
    /// A publisher that puts a stage between its subscribers and this one.
    template <class Out, class OutFailure, class Stage, class... Arguments>
    [[nodiscard]] AnyPublisher<Out, OutFailure> stage(Arguments... arguments) const {
        return AnyPublisher<Out, OutFailure>([upstream = *this, ... arguments = std::move(arguments)](
                                                 std::shared_ptr<Subscriber<Out, OutFailure>> subscriber) {
            upstream.subscribe(std::make_shared<Stage>(std::move(subscriber), arguments...));
        });
    }
    template <class MakePredicate>
    [[nodiscard]] AnyPublisher deferredFilter(MakePredicate make) const {
        using Predicate = std::invoke_result_t<MakePredicate&>;
        return AnyPublisher([upstream = *this, make = std::move(make)](Downstream subscriber) {
            upstream.subscribe(
                std::make_shared<reactive_detail::Filter<Output, Failure, Predicate>>(std::move(subscriber), make()));
        });
    }

    std::shared_ptr<const std::function<void(Downstream)>> subscribe_;
};

/// One value, and an end.
template <class Output, class Failure = Never>
[[nodiscard]] AnyPublisher<Output, Failure> just(Output value) {
    return AnyPublisher<Output, Failure>(
        [value = std::move(value)](const std::shared_ptr<Subscriber<Output, Failure>>& subscriber) {
            reactive_detail::startEmission<Output, Failure>(subscriber, [&](auto& emitter) {
                emitter.send(value);
                emitter.finish();
                return AnyCancellable();
            });
        });
}

/// An end at once.
template <class Output, class Failure = Never>
[[nodiscard]] AnyPublisher<Output, Failure> empty() {
    return AnyPublisher<Output, Failure>([](const std::shared_ptr<Subscriber<Output, Failure>>& subscriber) {
        reactive_detail::startEmission<Output, Failure>(subscriber, [](auto& emitter) {
            emitter.finish();
            return AnyCancellable();
        });
    });
}

/// A failure at once.
template <class Output, class Failure>
[[nodiscard]] AnyPublisher<Output, Failure> fail(Failure failure) {
    return AnyPublisher<Output, Failure>(
        [failure = std::move(failure)](const std::shared_ptr<Subscriber<Output, Failure>>& subscriber) {
            reactive_detail::startEmission<Output, Failure>(subscriber, [&](auto& emitter) {
                emitter.fail(failure);
                return AnyCancellable();
            });
        });
}

/// The publisher that `make` makes for each subscriber.
template <class Make>
[[nodiscard]] auto deferred(Make make) {
    using Made = std::invoke_result_t<Make&>;
    return Made([make = std::move(make)](typename Made::Downstream subscriber) mutable {
        make().subscribe(std::move(subscriber));
    });
}

/// A publisher from what is no publisher. For each subscriber `start` is called with an `Emitter`, through which it
/// sends values and an end, from any thread and whenever it likes; what it gives back is cancelled when the subscriber
/// cancels or lets its subscription go. Values wait until the subscriber asks for them.
template <class Output, class Failure = Never, class Start>
[[nodiscard]] AnyPublisher<Output, Failure> create(Start start) {
    return AnyPublisher<Output, Failure>(
        [start = std::move(start)](const std::shared_ptr<Subscriber<Output, Failure>>& subscriber) mutable {
            reactive_detail::startEmission<Output, Failure>(subscriber, start);
        });
}

/// As `create`, for what is of its moment, such as ticks and states: values that the subscriber does not ask for are
/// lost.
template <class Output, class Failure = Never, class Start>
[[nodiscard]] AnyPublisher<Output, Failure> createUnbuffered(Start start) {
    return AnyPublisher<Output, Failure>(
        [start = std::move(start)](const std::shared_ptr<Subscriber<Output, Failure>>& subscriber) mutable {
            reactive_detail::startEmission<Output, Failure>(subscriber, start, false);
        });
}

}  // namespace kestrel
