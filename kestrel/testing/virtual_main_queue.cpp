#include <kestrel/testing/virtual_main_queue.h>
#include <algorithm>
#include <utility>
#include <vector>

namespace kestrel {

namespace {

constexpr double shortestInterval = 0.0001;

/// A timer. Each tick is due an interval after the one before, which nothing delays here.
struct Repetition : std::enable_shared_from_this<Repetition> {
    Repetition(VirtualMainQueue& on, double seconds, std::function<void(Date)> work)
        : queue(&on), interval(std::max(seconds, shortestInterval)), tick(std::move(work)) {}

    void arm() {
        next = queue->scheduleAfter(interval, [self = weak_from_this()] {
            if (const auto alive = self.lock()) {
                alive->arm();
                alive->tick(alive->queue->now());
            }
        });
    }

    VirtualMainQueue* queue;
    double interval;
    std::function<void(Date)> tick;
    AnyCancellable next{};
};

}  // namespace

AnyCancellable VirtualMainQueue::repeatEvery(double seconds, std::function<void(Date)> tick) {
    auto repetition = std::make_shared<Repetition>(*this, seconds, std::move(tick));
    repetition->arm();
    return AnyCancellable([repetition] { repetition->next.cancel(); });
}

AnyCancellable VirtualMainQueue::scheduleAt(Date wallClock, Work work) {
    const std::uint64_t number = next_++;
    const std::weak_ptr<WaitingWork> waiting = waiting_;
    waiting_->emplace(number,
                      Waiting{wallClock, std::move(work),
                              time_.scheduleAfter(wallClock - now(), [waiting, number] { wake(waiting, number); })});
    return AnyCancellable([waiting, number] {
        // Outside of the map before it is destroyed: the work may own what cancels it.
        if (const auto all = waiting.lock()) (void)all->extract(number);
    });
}

void VirtualMainQueue::wake(const std::weak_ptr<WaitingWork>& waiting, std::uint64_t number) {
    const auto all = waiting.lock();
    if (all == nullptr) return;
    if (auto woken = all->extract(number)) woken.mapped().work();
}

void VirtualMainQueue::setWallClock(Date wallClock) {
    wallClockAhead_ += wallClock - now();
    std::vector<std::uint64_t> numbers;
    for (const auto& [number, work] : *waiting_)
        numbers.push_back(number);
    for (const std::uint64_t number : numbers)
        schedule([waiting = std::weak_ptr(waiting_), number] { wake(waiting, number); });
}

}  // namespace kestrel
