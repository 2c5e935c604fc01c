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
    explicit ReplaySubject(std::int64_t bufferSize) : state_(std::make_shared<State>(bufferSize)) {}

    /// Nothing after the end.
    void send(const Output& value) const { state_->send(value); }
    /// Ends all subscribers. Only the first completion counts.
    void send(Completion<Failure> completion) const { state_->end(std::move(completion)); }
    void finish() const { send(Completion<Failure>::finished()); }
    /// For use as the subscriber of another publisher: asks it for everything.
    void send(const std::shared_ptr<Subscription>& subscription) const { subscription->request(Demand::unlimited()); }

    void receive(std::shared_ptr<Subscriber<Output, Failure>> subscriber) const {
        State::subscribe(state_, std::move(subscriber));
    }
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
        const std::scoped_lock lock(state_->lock);
        return static_cast<std::size_t>(
            std::ranges::count_if(state_->subscriptions, [](const auto& each) { return each->isLive(); }));
    }

  private:
    class ReplaySubscription;

    struct State {
        explicit State(std::int64_t size) : bufferSize(static_cast<std::size_t>(size)) {
            if (size < 0) fatal("The buffer of a replay subject has a negative size.");
        }
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        /// Nobody can send any more: the subscribers are let go.
        ~State() {
            for (const auto& each : subscriptions)
                each->abandon();
        }

        void send(const Output& value) {
            const std::scoped_lock locked(lock);
            if (completion) return;
            const std::uint64_t number = sent++;
            if (bufferSize > 0) {
                if (buffer.size() < bufferSize) {
                    buffer.push_back(value);
                } else {
                    buffer[oldest] = value;
                    if (++oldest == bufferSize) oldest = 0;
                }
            }
            deliver([&](ReplaySubscription& each) { each.receive(value, number); });
        }
        void end(Completion<Failure> with) {
            const std::scoped_lock locked(lock);
            if (completion) return;
            completion = std::move(with);
            deliver([&](ReplaySubscription& each) { each.end(*completion); });
        }
        static void subscribe(const std::shared_ptr<State>& state,
                              std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
            const std::scoped_lock locked(state->lock);
            const auto subscription = std::make_shared<ReplaySubscription>(std::move(subscriber), state);
            state->subscriptions.push_back(subscription);
            ++state->deliveries;
            subscription->start();
            subscription->replay(*state);
            state->finishDelivery();
        }
        /// Calls `give` for those who are subscribed now; who comes meanwhile is served by the replay.
        template <class Give>
        void deliver(Give give) {
            ++deliveries;
            const std::size_t count = subscriptions.size();
            for (std::size_t i = 0; i < count; ++i) {
                // Stays where it is until the delivery is over, whoever cancels and however the list grows.
                ReplaySubscription& each = *subscriptions[i];
                if (each.isLive()) give(each);
            }
            finishDelivery();
        }
        void finishDelivery() {
            --deliveries;
            compact();
        }
        /// Lets those go who have cancelled or ended, unless somebody further up is delivering to them.
        void compact() {
            if (!hasDead || deliveries > 0) return;
            hasDead = false;
            // Taken out before they are destroyed: what they own may use the subject.
            const auto gone = std::exchange(released, {});
            std::erase_if(subscriptions, [](const auto& each) { return !each->isLive(); });
        }

        RecursiveLock lock;
        std::size_t bufferSize;
        /// The last values: a ring, once it is full.
        std::vector<Output> buffer;
        /// Where the oldest one stands.
        std::size_t oldest = 0;
        /// How many values were sent: the number of the next one.
        std::uint64_t sent = 0;
        std::vector<std::shared_ptr<ReplaySubscription>> subscriptions;
        std::optional<Completion<Failure>> completion;
        /// Those who have cancelled during a delivery, which may be one to themselves: they last until it is over.
        std::vector<std::shared_ptr<Subscriber<Output, Failure>>> released;
        /// How many deliveries are under way, each inside the other.
        int deliveries = 0;
        bool hasDead = false;
    };

    /// Everything under the subject's lock.
    class ReplaySubscription final : public Subscription, public std::enable_shared_from_this<ReplaySubscription> {
      public:
        ReplaySubscription(std::shared_ptr<Subscriber<Output, Failure>> downstream, const std::shared_ptr<State>& state)
            : downstream_(std::move(downstream)), state_(state) {}

        [[nodiscard]] bool isLive() const noexcept { return downstream_ != nullptr; }
        // These three deliver, and so are called during a delivery only.
        void start() { downstream_->receive(this->shared_from_this()); }
        void receive(const Output& value, std::uint64_t number) {
            // Those before are given by the replay.
            if (number >= liveFrom_) give(value);
        }
        void replay(State& state) {
            liveFrom_ = state.sent;
            // A copy: a subscriber may send meanwhile and push values out of the buffer. They are replayed all the
            // same.
            std::vector<Output> values = state.buffer;
            std::ranges::rotate(values, values.begin() + static_cast<std::ptrdiff_t>(state.oldest));
            for (const Output& value : values)
                give(value);
            if (state.completion) this->end(*state.completion);
        }
        void end(const Completion<Failure>& completion) {
            // Before the replay the end is the replay's to give.
            if (liveFrom_ == notReplayed) return;
            if (const auto downstream = release()) downstream->receive(completion);
        }
        void abandon() { downstream_.reset(); }
        void request(Demand demand) override {
            const auto state = state_.lock();
            if (state == nullptr) return;
            const std::scoped_lock lock(state->lock);
            demand_ += demand;
        }
        void cancel() override {
            const auto state = state_.lock();
            if (state == nullptr) return;
            std::shared_ptr<Subscriber<Output, Failure>> downstream;
            {
                const std::scoped_lock lock(state->lock);
                downstream = release();
                if (downstream != nullptr && state->deliveries > 0) state->released.push_back(downstream);
                state->compact();
            }
        }

      private:
        static constexpr std::uint64_t notReplayed = ~std::uint64_t{0};

        void give(const Output& value) {
            if (downstream_ == nullptr || !demand_.take()) return;
            if (const Demand more = downstream_->receive(value); !more.isNone()) demand_ += more;
        }
        [[nodiscard]] std::shared_ptr<Subscriber<Output, Failure>> release() {
            auto downstream = std::exchange(downstream_, nullptr);
            if (const auto state = state_.lock(); state != nullptr && downstream != nullptr) state->hasDead = true;
            return downstream;
        }

        std::shared_ptr<Subscriber<Output, Failure>> downstream_;
        std::weak_ptr<State> state_;
        Demand demand_ = Demand::none();
        /// The number of the first value that is given as it is sent.
        std::uint64_t liveFrom_ = notReplayed;
    };

    std::shared_ptr<State> state_;
};

}  // namespace kestrel
