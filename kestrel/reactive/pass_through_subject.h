#pragma once

#include <kestrel/reactive/publisher.h>
#include <kestrel/reactive/recursive_lock.h>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace kestrel {

/// A publisher that sends what it is told to send to those who are subscribed at that moment. A value that comes while
/// a subscriber asks for none is lost to that subscriber.
///
/// May be used from any thread. A subscriber is called by one thread at a time: who sends meanwhile waits, so keep
/// deliveries short. From inside a delivery it may send, subscribe and cancel. Values that are sent at the same time
/// come in either order. Cancelling takes constant time, on average.
template <class Output, class Failure = Never>
class PassThroughSubject {
  public:
    /// Sends a value to all who are subscribed at that moment and have asked for one.
    void send(const Output& value) const {
        for (const auto& conduit : state_->conduits())
            conduit->send(value);
    }
    /// Ends all subscribers, and those who come later at once. Only the first completion counts.
    // NOLINTNEXTLINE(performance-unnecessary-value-param): the caller's may go in a delivery.
    void send(Completion<Failure> completion) const {
        // Kept, for the subject may go meanwhile.
        const auto state = state_;
        Conduits ending = state->end(completion);
        try {
            for (const auto& conduit : ending)
                conduit->end(completion);
        } catch (...) {
            state->resume(std::move(ending));
            throw;
        }
    }
    /// Ends all subscribers without a failure.
    void finish() const { send(Completion<Failure>::finished()); }

    /// Subscribes to what is sent from now on; after the end, to the end.
    void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) const {
        std::make_shared<Conduit>(std::move(subscriber), state_)->start(*state_);
    }
    /// Serves what is sent to this subject, which it keeps.
    [[nodiscard]] AnyPublisher<Output, Failure> eraseToAnyPublisher() const {
        return AnyPublisher<Output, Failure>(
            [subject = *this](std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
                subject.subscribe(std::move(subscriber));
            });
    }
    /// How many are subscribed.
    [[nodiscard]] std::size_t subscriberCount() const { return state_->liveCount(); }

  private:
    class Conduit;
    using Conduits = std::vector<std::shared_ptr<Conduit>>;

    struct State {
        State() = default;
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        /// Nobody can send any more: the subscribers are let go.
        ~State() {
            for (const auto& conduit : list)
                conduit->abandon();
        }
        [[nodiscard]] Conduits conduits() const {
            const std::scoped_lock lock(mutex);
            return list;
        }
        [[nodiscard]] std::size_t liveCount() const {
            const std::scoped_lock lock(mutex);
            return list.size() - gone;
        }
        [[nodiscard]] std::optional<Completion<Failure>> add(const std::shared_ptr<Conduit>& conduit) {
            const std::scoped_lock lock(mutex);
            if (!completion) {
                list.push_back(conduit);
                conduit->isListed_ = true;
            }
            return completion;
        }
        /// One has been let go. It leaves the list with others, when they are half of it; then they own nothing any
        /// more, so that they may be destroyed here. Needs no memory.
        void noteGone(Conduit& conduit) {
            const std::scoped_lock lock(mutex);
            // Another thread may have taken it out with its own.
            if (completion || !conduit.isListed_ || ++gone * 2 < list.size()) return;
            sweep(list);
            gone = 0;
        }
        [[nodiscard]] Conduits end(const Completion<Failure>& with) {
            const std::scoped_lock lock(mutex);
            if (completion) return {};
            completion = with;
            gone = 0;
            return std::exchange(list, {});
        }
        /// Takes an end back that not everybody could be told.
        void resume(Conduits untold) {
            const std::scoped_lock lock(mutex);
            sweep(untold);
            completion.reset();
            list = std::move(untold);
        }
        /// Takes those out who have been let go. With the lock held.
        static void sweep(Conduits& conduits) {
            std::erase_if(conduits, [](const auto& each) {
                if (each->isLive()) return false;
                each->isListed_ = false;
                return true;
            });
        }

        mutable std::mutex mutex;
        Conduits list;
        /// How many of the list have been let go.
        std::size_t gone = 0;
        std::optional<Completion<Failure>> completion;
    };

    class Conduit final : public Subscription, public std::enable_shared_from_this<Conduit> {
      public:
        Conduit(std::shared_ptr<Subscriber<Output, Failure>> downstream, const std::shared_ptr<State>& state)
            : downstream_(std::move(downstream)), state_(state) {}

        /// Enters the list and gives the subscriber its subscription; who sends meanwhile waits.
        void start(State& state) {
            const std::scoped_lock delivering(delivery_);
            const auto self = this->shared_from_this();
            const auto completion = state.add(self);
            current()->receive(self);
            if (completion) end(*completion);
        }
        void request(Demand demand) override {
            const std::scoped_lock lock(mutex_);
            demand_ += demand;
        }
        void cancel() override {
            if (release() == nullptr) return;
            if (const auto state = state_.lock()) state->noteGone(*this);
        }
        void send(const Output& value) {
            const std::scoped_lock delivering(delivery_);
            std::shared_ptr<Subscriber<Output, Failure>> downstream;
            {
                const std::scoped_lock lock(mutex_);
                if (downstream_ == nullptr || !demand_.take()) return;
                downstream = downstream_;
            }
            const Demand more = downstream->receive(value);
            if (!more.isNone()) request(more);
        }
        void end(Completion<Failure> completion) {
            const std::scoped_lock delivering(delivery_);
            if (const auto downstream = release()) downstream->receive(std::move(completion));
        }
        void abandon() { (void)release(); }
        [[nodiscard]] bool isLive() const {
            const std::scoped_lock lock(mutex_);
            return downstream_ != nullptr;
        }

      private:
        friend struct State;

        [[nodiscard]] std::shared_ptr<Subscriber<Output, Failure>> current() const {
            const std::scoped_lock lock(mutex_);
            return downstream_;
        }
        [[nodiscard]] std::shared_ptr<Subscriber<Output, Failure>> release() {
            const std::scoped_lock lock(mutex_);
            return std::exchange(downstream_, nullptr);
        }

        /// Held while the subscriber is called.
        RecursiveLock delivery_;
        mutable std::mutex mutex_;
        std::shared_ptr<Subscriber<Output, Failure>> downstream_;
        std::weak_ptr<State> state_;
        Demand demand_ = Demand::none();
        /// Whether it stands in the list; the state's to guard.
        bool isListed_ = false;
    };

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace kestrel
