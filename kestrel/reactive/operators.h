#pragma once

#include <kestrel/reactive/emitter.h>
#include <kestrel/reactive/scheduler.h>
#include <kestrel/reactive/subscriber.h>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>

/// The stages behind the operators of AnyPublisher. Each stands between one upstream and one downstream: a subscriber
/// to the one, the subscription of the other.
namespace kestrel::reactive_detail {

template <class In, class InFailure, class Out, class OutFailure>
class Stage : public Subscriber<In, InFailure>,
              public Subscription,
              public std::enable_shared_from_this<Stage<In, InFailure, Out, OutFailure>> {
  public:
    using Downstream = std::shared_ptr<Subscriber<Out, OutFailure>>;

    explicit Stage(Downstream downstream) : downstream_(std::move(downstream)) {}

    void receive(std::shared_ptr<Subscription> upstream) override {
        Downstream downstream;
        {
            const std::scoped_lock lock(mutex_);
            if (upstream_ == nullptr) downstream = downstream_;
            if (downstream != nullptr) upstream_ = upstream;
        }
        if (downstream == nullptr) return upstream->cancel();
        downstream->receive(this->shared_from_this());
    }
    void receive(Completion<InFailure> completion) override {
        if constexpr (std::is_same_v<InFailure, OutFailure>) end(std::move(completion));
    }
    void request(Demand demand) override {
        if (const auto upstream = this->upstream()) upstream->request(demand);
    }
    void cancel() override {
        std::shared_ptr<Subscription> upstream;
        Downstream downstream;
        {
            const std::scoped_lock lock(mutex_);
            upstream.swap(upstream_);
            downstream.swap(downstream_);
        }
        if (upstream != nullptr) upstream->cancel();
    }
    using Subscriber<In, InFailure>::receive;

  protected:
    [[nodiscard]] Downstream downstream() const {
        const std::scoped_lock lock(mutex_);
        return downstream_;
    }
    [[nodiscard]] std::shared_ptr<Subscription> upstream() const {
        const std::scoped_lock lock(mutex_);
        return upstream_;
    }
    /// Gives a value on; how many more are wanted.
    Demand emit(const Out& value) const {
        const Downstream downstream = this->downstream();
        return downstream != nullptr ? downstream->receive(value) : Demand::none();
    }
    /// Ends the downstream, once. The upstream is kept: what it holds ends when the subscriber cancels or goes away.
    void end(Completion<OutFailure> completion) {
        Downstream downstream;
        {
            const std::scoped_lock lock(mutex_);
            downstream.swap(downstream_);
        }
        if (downstream != nullptr) downstream->receive(std::move(completion));
    }
    [[nodiscard]] std::mutex& mutex() const noexcept { return mutex_; }
    Downstream& downstreamWhileLocked() noexcept { return downstream_; }
    std::shared_ptr<Subscription>& upstreamWhileLocked() noexcept { return upstream_; }

  private:
    mutable std::mutex mutex_;
    Downstream downstream_;
    std::shared_ptr<Subscription> upstream_;
};

template <class In, class Out, class Failure, class Transform>
class Map final : public Stage<In, Failure, Out, Failure> {
  public:
    Map(std::shared_ptr<Subscriber<Out, Failure>> downstream, Transform transform)
        : Stage<In, Failure, Out, Failure>(std::move(downstream)), transform_(std::move(transform)) {}
    using Stage<In, Failure, Out, Failure>::receive;
    Demand receive(const In& value) override { return this->emit(std::invoke(transform_, value)); }

  private:
    Transform transform_;
};

template <class In, class Out, class Failure, class Transform>
class CompactMap final : public Stage<In, Failure, Out, Failure> {
  public:
    CompactMap(std::shared_ptr<Subscriber<Out, Failure>> downstream, Transform transform)
        : Stage<In, Failure, Out, Failure>(std::move(downstream)), transform_(std::move(transform)) {}
    using Stage<In, Failure, Out, Failure>::receive;
    Demand receive(const In& value) override {
        const auto result = std::invoke(transform_, value);
        // What is left out makes room for another one.
        return result ? this->emit(*result) : Demand(1);
    }

  private:
    Transform transform_;
};

template <class Value, class Failure, class Predicate>
class Filter final : public Stage<Value, Failure, Value, Failure> {
  public:
    Filter(std::shared_ptr<Subscriber<Value, Failure>> downstream, Predicate isIncluded)
        : Stage<Value, Failure, Value, Failure>(std::move(downstream)), isIncluded_(std::move(isIncluded)) {}
    using Stage<Value, Failure, Value, Failure>::receive;
    Demand receive(const Value& value) override {
        return std::invoke(isIncluded_, value) ? this->emit(value) : Demand(1);
    }

  private:
    Predicate isIncluded_;
};

template <class Value, class Failure>
class First final : public Stage<Value, Failure, Value, Failure> {
  public:
    using Base = Stage<Value, Failure, Value, Failure>;
    explicit First(std::shared_ptr<Subscriber<Value, Failure>> downstream) : Base(std::move(downstream)) {}
    using Base::receive;
    Demand receive(const Value& value) override {
        std::shared_ptr<Subscription> upstream;
        typename Base::Downstream downstream;
        {
            const std::scoped_lock lock(this->mutex());
            if (std::exchange(isDone_, true)) return Demand::none();
            upstream.swap(this->upstreamWhileLocked());
            downstream = this->downstreamWhileLocked();
        }
        if (upstream != nullptr) upstream->cancel();
        if (downstream != nullptr) (void)downstream->receive(value);
        // Unless the subscriber has cancelled on the value.
        this->end(Completion<Failure>::finished());
        return Demand::none();
    }
    void request(Demand demand) override {
        if (demand.isNone()) return;
        {
            const std::scoped_lock lock(this->mutex());
            if (std::exchange(hasAsked_, true)) return;
        }
        Base::request(1);
    }

  private:
    bool hasAsked_ = false;
    bool isDone_ = false;
};

template <class Value, class Failure, class Next>
class Append final : public Stage<Value, Failure, Value, Failure> {
  public:
    using Base = Stage<Value, Failure, Value, Failure>;
    Append(std::shared_ptr<Subscriber<Value, Failure>> downstream, Next next)
        : Base(std::move(downstream)), next_(std::move(next)) {}

    void receive(std::shared_ptr<Subscription> upstream) override {
        Demand outstanding = Demand::none();
        bool isWanted = false;
        {
            const std::scoped_lock lock(this->mutex());
            if (isOnNext_ && this->downstreamWhileLocked() != nullptr) {
                this->upstreamWhileLocked() = upstream;
                outstanding = outstanding_;
                isWanted = true;
            }
        }
        // The first one goes on to the subscriber; the next one takes over what was asked of it.
        if (!isOnNext_) return Base::receive(std::move(upstream));
        if (!isWanted) return upstream->cancel();
        if (!outstanding.isNone()) upstream->request(outstanding);
    }
    Demand receive(const Value& value) override {
        const bool wasOnNext = isOnNext_;
        {
            const std::scoped_lock lock(this->mutex());
            (void)outstanding_.take();
        }
        const Demand more = this->emit(value);
        std::shared_ptr<Subscription> next;
        {
            const std::scoped_lock lock(this->mutex());
            // Nobody has asked the next one for that when it came during the delivery.
            if (!wasOnNext && isOnNext_) next = this->upstreamWhileLocked();
            outstanding_ += more;
            if (next == nullptr) return more;
        }
        if (!more.isNone()) next->request(more);
        return Demand::none();
    }
    void receive(Completion<Failure> completion) override {
        if (isOnNext_ || !completion.isFinished()) return this->end(std::move(completion));
        {
            const std::scoped_lock lock(this->mutex());
            if (this->downstreamWhileLocked() == nullptr) return;
            isOnNext_ = true;
            this->upstreamWhileLocked().reset();
        }
        next_.subscribe(std::static_pointer_cast<Append>(this->shared_from_this()));
    }
    void request(Demand demand) override {
        std::shared_ptr<Subscription> upstream;
        {
            const std::scoped_lock lock(this->mutex());
            outstanding_ += demand;
            upstream = this->upstreamWhileLocked();
        }
        if (upstream != nullptr) upstream->request(demand);
    }

  private:
    Next next_;
    /// Asked for and not yet delivered.
    Demand outstanding_ = Demand::none();
    std::atomic<bool> isOnNext_ = false;
};

template <class Value, class Failure, class OutFailure, class Transform>
class MapError final : public Stage<Value, Failure, Value, OutFailure> {
  public:
    MapError(std::shared_ptr<Subscriber<Value, OutFailure>> downstream, Transform transform)
        : Stage<Value, Failure, Value, OutFailure>(std::move(downstream)), transform_(std::move(transform)) {}
    using Stage<Value, Failure, Value, OutFailure>::receive;
    Demand receive(const Value& value) override { return this->emit(value); }
    void receive(Completion<Failure> completion) override {
        this->end(completion.isFinished()
                      ? Completion<OutFailure>::finished()
                      : Completion<OutFailure>::failed(std::invoke(transform_, *completion.failure())));
    }

  private:
    Transform transform_;
};

template <class Value, class Failure>
class ReceiveOn final : public Stage<Value, Failure, Value, Failure> {
  public:
    ReceiveOn(std::shared_ptr<Subscriber<Value, Failure>> downstream, std::shared_ptr<Scheduler> scheduler)
        : Stage<Value, Failure, Value, Failure>(std::move(downstream)), scheduler_(std::move(scheduler)) {}
    using Stage<Value, Failure, Value, Failure>::receive;
    Demand receive(const Value& value) override {
        scheduler_->schedule([self = self(), value] {
            const Demand more = self->emit(value);
            if (more.isNone()) return;
            if (const auto upstream = self->upstream()) upstream->request(more);
        });
        return Demand::none();
    }
    void receive(Completion<Failure> completion) override {
        scheduler_->schedule(
            [self = self(), completion = std::move(completion)]() mutable { self->end(std::move(completion)); });
    }

  private:
    std::shared_ptr<ReceiveOn> self() { return std::static_pointer_cast<ReceiveOn>(this->shared_from_this()); }

    std::shared_ptr<Scheduler> scheduler_;
};

/// Asks for everything and calls functions. Stays until it is cancelled, so that what the publisher holds for it does.
template <class Output, class Failure>
class Sink final : public Subscriber<Output, Failure> {
  public:
    template <class OnValue, class OnCompletion>
    Sink(OnValue onValue, OnCompletion onCompletion)
        : handlers_(std::make_shared<Handlers>(std::move(onValue), std::move(onCompletion))) {}

    void receive(std::shared_ptr<Subscription> subscription) override {
        bool isWanted = false;
        {
            const std::scoped_lock lock(mutex_);
            isWanted = handlers_ != nullptr && subscription_ == nullptr;
            if (isWanted) subscription_ = subscription;
        }
        if (isWanted) {
            subscription->request(Demand::unlimited());
        } else {
            subscription->cancel();
        }
    }
    Demand receive(const Output& value) override {
        if (const auto handlers = current()) handlers->onValue(value);
        return Demand::none();
    }
    void receive(Completion<Failure> completion) override {
        std::shared_ptr<Handlers> handlers;
        {
            const std::scoped_lock lock(mutex_);
            handlers.swap(handlers_);
        }
        if (handlers != nullptr) handlers->onCompletion(completion);
    }
    void cancel() {
        std::shared_ptr<Handlers> handlers;
        std::shared_ptr<Subscription> subscription;
        {
            const std::scoped_lock lock(mutex_);
            handlers.swap(handlers_);
            subscription.swap(subscription_);
        }
        if (subscription != nullptr) subscription->cancel();
    }

  private:
    /// Shared, so that a function that cancels is not destroyed while it runs.
    struct Handlers {
        template <class OnValue, class OnCompletion>
        Handlers(OnValue value, OnCompletion completion)
            : onValue(std::move(value)), onCompletion(std::move(completion)) {}
        std::move_only_function<void(const Output&)> onValue;
        std::move_only_function<void(const Completion<Failure>&)> onCompletion;
    };
    [[nodiscard]] std::shared_ptr<Handlers> current() const {
        const std::scoped_lock lock(mutex_);
        return handlers_;
    }

    mutable std::mutex mutex_;
    std::shared_ptr<Handlers> handlers_;
    std::shared_ptr<Subscription> subscription_;
};

}  // namespace kestrel::reactive_detail
