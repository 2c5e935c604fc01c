// A replay subject, against the plain way of writing one: a recursive mutex, a deque, and a function a subscriber.

#include <benchmark/benchmark.h>
#include <kestrel/reactive/replay_subject.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "work.h"

namespace {

using namespace kestrel;

constexpr std::size_t bufferSize = 16;

/// Keeps the same promises: demand, sending from inside a delivery, replay, an end.
class PlainReplay {
  public:
    using Receive = std::function<std::int64_t(std::int64_t)>;

    /// The demand is without limit when absent.
    void subscribe(Receive receive, std::optional<std::int64_t> demand) {
        const std::lock_guard lock(mutex_);
        auto subscriber = std::make_shared<Subscriber>(std::move(receive), demand);
        subscribers_.push_back(subscriber);
        for (const std::int64_t value : std::deque(buffer_))
            subscriber->give(value);
    }
    void send(std::int64_t value) {
        const std::lock_guard lock(mutex_);
        if (isEnded_) return;
        buffer_.push_back(value);
        if (buffer_.size() > bufferSize) buffer_.pop_front();
        // A copy: a subscriber may subscribe another one, or leave.
        for (const auto& subscriber : std::vector(subscribers_))
            subscriber->give(value);
    }

  private:
    struct Subscriber {
        Subscriber(Receive calls, std::optional<std::int64_t> asked) : receive(std::move(calls)), demand(asked) {}
        void give(std::int64_t value) {
            if (demand && *demand == 0) return;
            if (demand) --*demand;
            const std::int64_t more = receive(value);
            if (demand) *demand += more;
        }
        Receive receive;
        std::optional<std::int64_t> demand;
    };

    std::recursive_mutex mutex_;
    std::deque<std::int64_t> buffer_;
    std::vector<std::shared_ptr<Subscriber>> subscribers_;
    bool isEnded_ = false;
};

/// Adds up what it receives, and asks for one more each time when it asks for a limited number at all.
class Adder final : public Subscriber<std::int64_t, Never> {
  public:
    Adder(std::int64_t& sum, bool isLimited) : sum_(&sum), isLimited_(isLimited) {}
    void receive(std::shared_ptr<Subscription> subscription) override {
        subscription_ = std::move(subscription);
        subscription_->request(isLimited_ ? Demand(bufferSize) : Demand::unlimited());
    }
    Demand receive(const std::int64_t& value) override {
        *sum_ += value;
        return isLimited_ ? Demand(1) : Demand::none();
    }
    void receive(Completion<Never> /*completion*/) override {}

  private:
    std::int64_t* sum_;
    bool isLimited_;
    std::shared_ptr<Subscription> subscription_;
};

/// A subject with that many subscribers, and what they have added up.
struct Ours {
    explicit Ours(int subscribers, bool isLimited) {
        for (int i = 0; i < subscribers; ++i)
            subject.receive(std::make_shared<Adder>(sum, isLimited));
    }
    void send(std::int64_t value) const { subject.send(value); }
    ReplaySubject<std::int64_t> subject{static_cast<std::int64_t>(bufferSize)};
    std::int64_t sum = 0;
};
struct Plain {
    explicit Plain(int subscribers, bool isLimited) {
        const auto demand = isLimited ? std::optional<std::int64_t>(bufferSize) : std::nullopt;
        for (int i = 0; i < subscribers; ++i) {
            subject.subscribe(
                [this, more = isLimited ? 1 : 0](std::int64_t value) {
                    sum += value;
                    return more;
                },
                demand);
        }
    }
    void send(std::int64_t value) { subject.send(value); }
    PlainReplay subject;
    std::int64_t sum = 0;
};

template <class Subject>
std::int64_t sumOf(int subscribers, bool isLimited) {
    Subject subject(subscribers, isLimited);
    for (std::int64_t value = 1; value <= 1'000; ++value)
        subject.send(value);
    return subject.sum;
}

template <class Subject>
void add(const std::string& name, int subscribers, bool isLimited) {
    benchmark::RegisterBenchmark(name.c_str(), [subscribers, isLimited](benchmark::State& state) {
        Subject subject(subscribers, isLimited);
        std::int64_t value = 0;
        for (auto _ : state)
            subject.send(++value);
        benchmark::DoNotOptimize(subject.sum);
    })->Unit(benchmark::kNanosecond);
}

}  // namespace

void benchmarks::addReplay() {
    // As in every program with a desktop: with a second thread, counting references and locking cost what they do
    // there.
    std::jthread([] {}).join();
    for (const int subscribers : {1, 8}) {
        for (const bool isLimited : {false, true}) {
            if (sumOf<Ours>(subscribers, isLimited) != sumOf<Plain>(subscribers, isLimited) ||
                sumOf<Ours>(subscribers, isLimited) != 500'500 * subscribers) {
                std::fprintf(stderr, "The contenders disagree: replay subject\n");
                std::exit(1);
            }
            const std::string work = "replay to " + std::to_string(subscribers) + (isLimited ? ", one by one" : "");
            add<Ours>(work + "/kestrel", subscribers, isLimited);
            add<Plain>(work + "/mutex, deque, function", subscribers, isLimited);
        }
    }
}
