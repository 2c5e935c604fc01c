#pragma once

#include <kestrel/platform/main_queue.h>
#include <kestrel/reactive/scheduler.h>
#include <functional>
#include <map>
#include <memory>

namespace kestrel {

/// A main queue whose time stands still until it is told to move, for tests. Work that is given runs in `run` and in
/// `advance…`, each at its time, work that it gives included. For use on one thread.
class VirtualMainQueue final : public MainQueue {
  public:
    /// With the wall clock showing that.
    explicit VirtualMainQueue(Date start = Date(0)) : time_(start) {}

    /// What the wall clock shows.
    [[nodiscard]] Date now() const override { return time_.now() + wallClockAhead_; }
    /// Keeps the work until `run` or the next advance.
    void schedule(Work work) override { time_.schedule(std::move(work)); }
    /// Keeps the work until the time has been moved that far.
    [[nodiscard]] AnyCancellable scheduleAfter(double seconds, Work work) override {
        return time_.scheduleAfter(seconds, std::move(work));
    }
    [[nodiscard]] AnyCancellable repeatEvery(double seconds, std::function<void(Date)> tick) override;
    [[nodiscard]] AnyCancellable scheduleAt(Date wallClock, Work work) override;

    /// Moves the time on, and the wall clock with it.
    void advanceBy(double seconds) { time_.advanceBy(seconds); }
    /// Until the wall clock shows that.
    void advanceTo(Date wallClock) { time_.advanceBy(wallClock - now()); }
    /// Does what is due now, work that it gives included.
    void run() { time_.run(); }
    /// Sets the wall clock, as a user or a time server does: no time passes, and what waits for the wall clock is
    /// woken.
    void setWallClock(Date wallClock);

  private:
    struct Waiting {
        Date moment;
        Work work;
        AnyCancellable due;
    };
    using WaitingWork = std::map<std::uint64_t, Waiting>;

    static void wake(const std::weak_ptr<WaitingWork>& waiting, std::uint64_t number);

    VirtualTimeScheduler time_;
    double wallClockAhead_ = 0;
    std::uint64_t next_ = 0;
    /// What waits for the wall clock. Shared with what cancels, which may outlive the queue.
    std::shared_ptr<WaitingWork> waiting_ = std::make_shared<WaitingWork>();
};

}  // namespace kestrel
