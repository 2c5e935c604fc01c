#pragma once

#include <kestrel/reactive/publisher.h>
#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace kestrel {

/// A publisher that sends what it is told to send to those who are subscribed at that moment. A value that comes while
/// a subscriber asks for none is lost to that subscriber. May be used from any thread; values that are sent at the same
/// time come in either order.
template <class Output, class Failure = Never>
class PassThroughSubject {
  public:
    void send(const Output& value) const {
        for (const auto& conduit : state_->conduits())
            conduit->send(value);
    }
    /// Ends all subscribers, and those who come later at once. Only the first completion counts.
    void send(Completion<Failure> completion) const {
        for (const auto& conduit : state_->end(completion))
            conduit->end(completion);
    }
    void finish() const { send(Completion<Failure>::finished()); }

    void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) const {
        const auto conduit = std::make_shared<Conduit>(std::move(subscriber), state_);
        const auto completion = state_->add(conduit);
        conduit->start();
        if (completion) conduit->end(*completion);
    }
    /// Serves what is sent to this subject, which it keeps.
    [[nodiscard]] AnyPublisher<Output, Failure> eraseToAnyPublisher() const {
        return AnyPublisher<Output, Failure>(
            [subject = *this](std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
                subject.subscribe(std::move(subscriber));
            });
    }
    /// How many are subscribed.
    [[nodiscard]] std::size_t subscriberCount() const { return state_->conduits().size(); }

  private:
    class Conduit;

    struct State {
        State() = default;
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        /// Nobody can send any more: the subscribers are let go.
        ~State() {
            for (const auto& conduit : list)
                conduit->abandon();
        }
        [[nodiscard]] std::vector<std::shared_ptr<Conduit>> conduits() const {
            const std::scoped_lock lock(mutex);
            return list;
        }
        [[nodiscard]] std::optional<Completion<Failure>> add(const std::shared_ptr<Conduit>& conduit) {
            const std::scoped_lock lock(mutex);
            if (!completion) list.push_back(conduit);
            return completion;
        }
        void remove(const Conduit* conduit) {
            const std::scoped_lock lock(mutex);
            std::erase_if(list, [conduit](const auto& each) { return each.get() == conduit; });
        }
        [[nodiscard]] std::vector<std::shared_ptr<Conduit>> end(const Completion<Failure>& with) {
            const std::scoped_lock lock(mutex);
            if (completion) return {};
            completion = with;
            return std::exchange(list, {});
        }

        mutable std::mutex mutex;
        std::vector<std::shared_ptr<Conduit>> list;
        std::optional<Completion<Failure>> completion;
    };

    class Conduit final : public Subscription, public std::enable_shared_from_this<Conduit> {
      public:
        Conduit(std::shared_ptr<Subscriber<Output, Failure>> downstream, const std::shared_ptr<State>& state)
            : downstream_(std::move(downstream)), state_(state) {}

        void start() {
            if (const auto downstream = current()) downstream->receive(this->shared_from_this());
        }
        void request(Demand demand) override {
            const std::scoped_lock lock(mutex_);
            demand_ += demand;
        }
        void cancel() override {
            (void)release();
            if (const auto state = state_.lock()) state->remove(this);
        }
        void send(const Output& value) {
            std::shared_ptr<Subscriber<Output, Failure>> downstream;
            {
                const std::scoped_lock lock(mutex_);
                if (downstream_ == nullptr || !demand_.take()) return;
                downstream = downstream_;
            }
            const Demand more = downstream->receive(value);
            if (!more.isNone()) request(more);
        }
        void abandon() { (void)release(); }
        void end(Completion<Failure> completion) {
            if (const auto downstream = release()) downstream->receive(std::move(completion));
        }

      private:
        [[nodiscard]] std::shared_ptr<Subscriber<Output, Failure>> current() const {
            const std::scoped_lock lock(mutex_);
            return downstream_;
        }
        [[nodiscard]] std::shared_ptr<Subscriber<Output, Failure>> release() {
            const std::scoped_lock lock(mutex_);
            return std::exchange(downstream_, nullptr);
        }

        mutable std::mutex mutex_;
        std::shared_ptr<Subscriber<Output, Failure>> downstream_;
        std::weak_ptr<State> state_;
        Demand demand_ = Demand::none();
    };

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace kestrel
