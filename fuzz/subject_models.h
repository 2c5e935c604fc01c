#pragma once

#include <kestrel/reactive/subscriber.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

/// Subjects as one would write them for one thread, without a care for time or memory: what the real ones are compared
/// with. They follow the comments of <kestrel/reactive/replay_subject.h> and <kestrel/reactive/pass_through_subject.h>.
namespace kestrel::fuzzing {

template <class Output, class Failure>
struct ModelSubscription;

/// What both models keep of their subscribers.
template <class Output, class Failure>
struct ModelState {
    std::vector<std::shared_ptr<ModelSubscription<Output, Failure>>> list;
    std::optional<Completion<Failure>> completion;
    /// The last values, the oldest first.
    std::deque<Output> values;
    int deliveries = 0;
    bool isDropped = false;

    [[nodiscard]] std::size_t liveCount() const {
        return static_cast<std::size_t>(
            std::ranges::count_if(list, [](const auto& each) { return each->downstream != nullptr; }));
    }
    void abandonAll() {
        for (const auto& each : std::exchange(list, {}))
            each->downstream = nullptr;
    }
};

template <class Output, class Failure>
struct ModelSubscription final : public Subscription {
    std::shared_ptr<Subscriber<Output, Failure>> downstream;
    Demand demand = Demand::none();
    /// Of a replay subject: what is to be replayed, until it is.
    std::optional<std::vector<Output>> replay;

    void request(Demand more) override { demand += more; }
    void cancel() override { downstream = nullptr; }
    void give(const Output& value) {
        if (replay) {
            replay->push_back(value);
            return;
        }
        if (downstream == nullptr || !demand.take()) return;
        const auto receiver = downstream;
        demand += receiver->receive(value);
    }
    void end(const Completion<Failure>& completion) {
        if (replay || downstream == nullptr) return;
        std::exchange(downstream, nullptr)->receive(completion);
    }
};

template <class Output, class Failure>
class PassThroughModel {
  public:
    using State = ModelState<Output, Failure>;

    PassThroughModel() = default;
    PassThroughModel(const PassThroughModel&) = delete;
    PassThroughModel& operator=(const PassThroughModel&) = delete;
    /// Nobody can send any more.
    ~PassThroughModel() { state_->abandonAll(); }

    void send(const Output& value) {
        const auto listening = state_->list;
        for (const auto& each : listening)
            each->give(value);
    }
    void send(Completion<Failure> completion) {
        if (state_->completion) return;
        state_->completion = completion;
        for (const auto& each : std::exchange(state_->list, {}))
            each->end(completion);
    }
    void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
        const auto subscription = std::make_shared<ModelSubscription<Output, Failure>>();
        subscription->downstream = subscriber;
        const auto completion = state_->completion;
        if (!completion) state_->list.push_back(subscription);
        subscriber->receive(subscription);
        if (completion) subscription->end(*completion);
    }
    [[nodiscard]] std::size_t subscriberCount() const { return state_->liveCount(); }

  private:
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

template <class Output, class Failure>
class ReplayModel {
  public:
    using State = ModelState<Output, Failure>;

    explicit ReplayModel(std::int64_t bufferSize) : bufferSize_(static_cast<std::size_t>(bufferSize)) {}
    ReplayModel(const ReplayModel&) = delete;
    ReplayModel& operator=(const ReplayModel&) = delete;
    ~ReplayModel() {
        state_->isDropped = true;
        if (state_->deliveries == 0) state_->abandonAll();
    }

    void send(const Output& value) {
        const Delivery delivery(state_);
        state_->values.push_back(value);
        if (state_->values.size() > bufferSize_) state_->values.pop_front();
        forEach([&](auto& each) { each.give(value); });
    }
    void send(const Completion<Failure>& completion) {
        const Delivery delivery(state_);
        if (state_->completion) return;
        state_->completion = completion;
        forEach([&](auto& each) { each.end(completion); });
    }
    void subscribe(std::shared_ptr<Subscriber<Output, Failure>> subscriber) {
        const Delivery delivery(state_);
        const auto& state = delivery.state;
        const auto subscription = std::make_shared<ModelSubscription<Output, Failure>>();
        subscription->downstream = subscriber;
        subscription->replay.emplace(state->values.begin(), state->values.end());
        state->list.push_back(subscription);
        subscriber->receive(subscription);
        // What the subscriber was sent while it was given the subscription comes behind the older values.
        const std::vector<Output> replayed = *std::exchange(subscription->replay, std::nullopt);
        for (const Output& value : replayed)
            subscription->give(value);
        if (state->completion) subscription->end(*state->completion);
    }
    [[nodiscard]] std::size_t subscriptionCount() const { return state_->liveCount(); }

  private:
    /// Keeps the state while it delivers, also when the subject goes meanwhile.
    struct Delivery {
        explicit Delivery(std::shared_ptr<State> of) : state(std::move(of)) { ++state->deliveries; }
        Delivery(const Delivery&) = delete;
        Delivery& operator=(const Delivery&) = delete;
        ~Delivery() {
            if (--state->deliveries == 0 && state->isDropped) state->abandonAll();
        }
        std::shared_ptr<State> state;
    };

    template <class Give>
    void forEach(Give give) {
        // Those of this moment: who comes meanwhile is served by the replay.
        const auto listening = state_->list;
        for (const auto& each : listening)
            give(*each);
    }

    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::size_t bufferSize_;
};

}  // namespace kestrel::fuzzing
