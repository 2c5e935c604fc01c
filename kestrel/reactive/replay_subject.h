#pragma once

#include <kestrel/foundation/fatal.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/reactive/recursive_lock.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace kestrel {

/// A publisher that sends what it is told to send, and replays the last values, and the end if there was one, to those
/// who subscribe later.
///
/// May be used from any thread: one lock, taken once a send, orders what is sent. It is recursive, so a subscriber may
/// send into the subject from inside a delivery: that value then reaches everybody before the delivery goes on, and no
/// value is lost or comes twice. A value that comes while a subscriber asks for none is lost to that subscriber; so is
/// what a new subscriber does not ask for at the moment of the replay. Keep deliveries short: others wait for the lock.
template <class Output, class Failure = Never>
class ReplaySubject {
  public:
    /// How many values are replayed at most. A negative size is a mistake in the program: fatal().
    explicit ReplaySubject(std::int64_t bufferSize) : state_(new State(bufferSize), LetGo()) {}

    /// What is sent after the end reaches only those who subscribe later, in the replay, in front of the end.
    void send(const Output& value) const { state_->send(value); }
    /// Ends all subscribers. Only the first completion counts.
    void send(Completion<Failure> completion) const { state_->end(std::move(completion)); }
    /// Ends all subscribers without a failure.
    void finish() const { send(Completion<Failure>::finished()); }
    /// For use as the subscriber of another publisher: asks it for everything.
    void send(const std::shared_ptr<Subscription>& subscription) const { subscription->request(Demand::unlimited()); }

    /// Subscribes: to what is replayed, and then to what is sent.
    void receive(std::shared_ptr<Subscriber<Output, Failure>> subscriber) const {
        state_->subscribe(std::move(subscriber));
    }
    /// As `receive`.
    void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) const { receive(std::move(subscriber)); }
    /// Serves what is sent to this subject, which it keeps.
    [[nodiscard]] AnyPublisher<Output, Failure> eraseToAnyPublisher() const {
        return AnyPublisher<Output, Failure>(
            [subject = *this](std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
                subject.receive(std::move(subscriber));
            });
    }

    /// How many are subscribed: neither cancelled nor ended.
    [[nodiscard]] std::size_t subscriptionCount() const {
        const std::scoped_lock lock(*state_->lock);
        return static_cast<std::size_t>(
            std::ranges::count_if(state_->subscriptions, [](const auto& each) { return each->isLive(); }));
    }

  private:
    class ReplaySubjectSubscription;
    class Delivery;

    struct State {
        explicit State(std::int64_t size) : bufferSize(static_cast<std::size_t>(size)) {
            if (size < 0) fatal("The buffer of a replay subject has a negative size.");
        }
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        ~State() = default;

        void send(const Output& value) {
            const Delivery delivery(*this);
            if (bufferSize > 0) {
                if (buffer.size() < bufferSize) {
                    buffer.push_back(value);
                } else {
                    buffer[oldest] = value;
                    if (++oldest == bufferSize) oldest = 0;
                }
            }
            deliver([&](ReplaySubjectSubscription& each) { each.receive(value); });
        }
        void end(Completion<Failure> with) {
            const Delivery delivery(*this);
            if (completion) return;
            completion = std::move(with);
            try {
                deliver([&](ReplaySubjectSubscription& each) { each.receive(*completion); });
            } catch (...) {
                // The others are still to be told, by whoever tries again.
                completion.reset();
                throw;
            }
        }
        void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
            const Delivery delivery(*this);
            const auto subscription =
                std::make_shared<ReplaySubjectSubscription>(std::move(subscriber), *this, values());
            subscriptions.push_back(subscription);
            try {
                subscription->start();
                subscription->replay(completion);
            } catch (...) {
                // It has not had what came before, so it is to have nothing.
                subscription->cancel();
                throw;
            }
        }
        /// What is replayed, the oldest first.
        [[nodiscard]] std::vector<Output> values() const {
            std::vector<Output> ordered = buffer;
            std::ranges::rotate(ordered, ordered.begin() + static_cast<std::ptrdiff_t>(oldest));
            return ordered;
        }
        /// Calls `give` for those who are subscribed now; who comes meanwhile is served by the replay. During a
        /// delivery.
        template <class Give>
        void deliver(Give give) {
            const std::size_t count = subscriptions.size();
            for (std::size_t i = 0; i < count; ++i) {
                // Stays where it is until the delivery is over, whoever cancels and however the list grows.
                ReplaySubjectSubscription& each = *subscriptions[i];
                if (each.isLive()) give(each);
            }
        }
        /// Takes those out who have cancelled, for the caller to let go. The empty subscriptions leave together, when
        /// they are half of all, so that cancelling takes constant time on average. When no delivery is under way
        /// further up.
        [[nodiscard]] std::shared_ptr<ReplaySubjectSubscription> compact() {
            if (dead > 0 && dead * 2 >= subscriptions.size()) {
                dead = 0;
                std::erase_if(subscriptions, [](const auto& each) { return !each->isLive(); });
            }
            return std::exchange(released, nullptr);
        }
        /// The end of a state that nobody can send to any more. Its subscribers are let go outside of the lock.
        static void destroy(State* state) {
            const auto lock = state->lock;
            std::unique_lock locked(*lock);
            const auto left = std::move(state->subscriptions);
            for (const auto& each : left)
                each->abandon();
            locked.unlock();
            for (const auto& each : left)
                each->forget();
            delete state;
        }

        /// Lasts as long as the subject and all its subscriptions.
        const std::shared_ptr<RecursiveLock> lock = std::make_shared<RecursiveLock>();
        std::size_t bufferSize;
        /// The last values: a ring, once it is full.
        std::vector<Output> buffer;
        /// Where the oldest one stands.
        std::size_t oldest = 0;
        std::vector<std::shared_ptr<ReplaySubjectSubscription>> subscriptions;
        std::optional<Completion<Failure>> completion;
        /// Those who have left, by cancelling or by the end, during a delivery perhaps, which may be one to themselves:
        /// they last until it is over. A chain, so that leaving needs no memory.
        std::shared_ptr<ReplaySubjectSubscription> released;
        /// How many deliveries are under way, each inside the other.
        int deliveries = 0;
        /// How many of the subscriptions have cancelled or ended.
        std::size_t dead = 0;
        /// Whether the last handle of the subject has gone, inside a delivery.
        bool isOrphaned = false;
        /// Whether the end of the outermost delivery has more to do than to end: somebody has left, or everybody.
        bool isUntidy = false;
    };

    /// Ends the state with its last handle. A delivery from inside of which that one goes has the state to its end, so
    /// that sending need not keep it.
    struct LetGo {
        void operator()(State* state) const {
            {
                const std::scoped_lock locked(*state->lock);
                if (state->deliveries > 0) {
                    state->isOrphaned = true;
                    state->isUntidy = true;
                    return;
                }
            }
            State::destroy(state);
        }
    };

    /// A delivery under way, and the lock; over at the end of its scope, also when a subscriber throws.
    class Delivery {
      public:
        explicit Delivery(State& state) : Delivery(state, std::unique_lock(*state.lock)) {}
        Delivery(State& state, std::unique_lock<RecursiveLock> locked) : state_(&state), locked_(std::move(locked)) {
            ++state.deliveries;
        }
        ~Delivery() {
            if (state_->deliveries == 1 && state_->isUntidy) [[unlikely]]
                tidyUp();
            else
                --state_->deliveries;
        }
        Delivery(const Delivery&) = delete;
        Delivery& operator=(const Delivery&) = delete;

      private:
        /// Ends the delivery and lets go, outside of the lock, of those who have left, and of the state with them.
        [[gnu::noinline]] void tidyUp() {
            auto gone = state_->compact();
            state_->isUntidy = false;
            state_->deliveries = 0;
            const bool isLast = state_->isOrphaned;
            locked_.unlock();
            if (isLast) State::destroy(state_);
            // Who is let go may do anything; nothing here is touched any more.
            while (gone != nullptr)
                gone = gone->leave();
        }

        State* state_;
        std::unique_lock<RecursiveLock> locked_;
    };

    /// Everything under the subject's lock.
    class ReplaySubjectSubscription final : public Subscription,
                                            public std::enable_shared_from_this<ReplaySubjectSubscription> {
      public:
        /// With what is to be replayed.
        ReplaySubjectSubscription(std::shared_ptr<Subscriber<Output, Failure>> downstream, State& state,
                                  std::vector<Output> values)
            : downstream_(std::move(downstream)), state_(&state), lock_(state.lock), replayed_(std::move(values)) {}

        [[nodiscard]] bool isLive() const noexcept { return downstream_ != nullptr; }
        // These four deliver, and so are called during a delivery only.
        void start() { downstream_->receive(this->shared_from_this()); }
        void receive(const Output& value) {
            // Sent while the subscriber was given this: it comes behind what is replayed.
            if (!isReplayed_) {
                replayed_.push_back(value);
                return;
            }
            if (downstream_ == nullptr || !demand_.take()) return;
            if (const Demand more = downstream_->receive(value); !more.isNone()) demand_ += more;
        }
        void receive(const Completion<Failure>& completion) {
            // Before the replay the end is the replay's to give.
            if (!isReplayed_ || downstream_ == nullptr) return;
            // Copied first: when that fails, nobody has left.
            Completion<Failure> copy = completion;
            leaveLater();
            leaving_->receive(std::move(copy));
        }
        /// Gives what was there before, and the end if there was one.
        void replay(const std::optional<Completion<Failure>>& completion) {
            isReplayed_ = true;
            // A subscriber may send meanwhile: that comes at once, before the rest.
            for (const Output& value : std::exchange(replayed_, {}))
                receive(value);
            if (completion) receive(*completion);
        }
        /// The subject has gone: nobody delivers or cancels any more, so that forgetting needs no lock.
        void abandon() { state_ = nullptr; }
        void forget() { downstream_.reset(); }
        void request(Demand demand) override {
            const std::scoped_lock lock(*lock_);
            demand_ += demand;
        }
        void cancel() override {
            // Leaving the list may let this go.
            const auto self = this->shared_from_this();
            std::unique_lock locked(*lock_);
            // Who has left the list already is not told when the subject goes.
            if (state_ == nullptr || downstream_ == nullptr) return;
            const Delivery delivery(*state_, std::move(locked));
            leaveLater();
        }
        /// Lets go of a subscriber that has left; who has left before it. Needs no lock: nobody else is here.
        [[nodiscard]] std::shared_ptr<ReplaySubjectSubscription> leave() {
            auto next = std::exchange(nextReleased_, nullptr);
            leaving_.reset();
            return next;
        }

      private:
        /// Has had the end, or has cancelled. The subscriber may be under way in a delivery, so it is let go behind
        /// that.
        void leaveLater() {
            ++state_->dead;
            state_->isUntidy = true;
            leaving_ = std::exchange(downstream_, nullptr);
            nextReleased_ = std::exchange(state_->released, this->shared_from_this());
        }

        std::shared_ptr<Subscriber<Output, Failure>> downstream_;
        /// Once it has left, until no delivery is under way.
        std::shared_ptr<Subscriber<Output, Failure>> leaving_;
        std::shared_ptr<ReplaySubjectSubscription> nextReleased_;
        /// Absent when the subject has gone.
        State* state_;
        std::shared_ptr<RecursiveLock> lock_;
        Demand demand_ = Demand::none();
        std::vector<Output> replayed_;
        bool isReplayed_ = false;
    };

    std::shared_ptr<State> state_;
};

}  // namespace kestrel
