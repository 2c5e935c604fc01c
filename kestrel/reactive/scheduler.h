#pragma once

#include <kestrel/foundation/date.h>
#include <kestrel/reactive/cancellable.h>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace kestrel {

/// Where and when work is done. Work that is due at the same time is done in the order in which it was given.
class Scheduler {
  public:
    /// What is to be done, once.
    using Work = std::move_only_function<void()>;

    Scheduler() = default;
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    virtual ~Scheduler() = default;

    /// The time of the scheduler.
    [[nodiscard]] virtual Date now() const = 0;
    /// Does the work as soon as it may.
    virtual void schedule(Work work) = 0;
    /// Does the work so many seconds from now, unless the result is cancelled or destroyed before.
    [[nodiscard]] virtual AnyCancellable scheduleAfter(double seconds, Work work) = 0;
};

/// Does all work at once, on the thread that gives it; what is due later too.
class ImmediateScheduler final : public Scheduler {
  public:
    /// That of the system's clock.
    [[nodiscard]] Date now() const override { return Date::now(); }
    void schedule(Work work) override { work(); }
    /// Does the work at once, whatever the delay; there is nothing left to cancel.
    [[nodiscard]] AnyCancellable scheduleAfter(double /*seconds*/, Work work) override {
        work();
        return {};
    }
};

/// A scheduler whose time stands still until it is told to move, for tests. For use on one thread.
class VirtualTimeScheduler final : public Scheduler {
  public:
    /// With the time standing there.
    explicit VirtualTimeScheduler(Date start = Date(0)) : now_(start) {}

    /// The moment to which the time was moved.
    [[nodiscard]] Date now() const override { return now_; }
    /// Keeps the work until `run` or the next advance.
    void schedule(Work work) override { queue_->emplace(Due{now_, next_++}, std::move(work)); }
    /// Keeps the work until the time has been moved that far.
    [[nodiscard]] AnyCancellable scheduleAfter(double seconds, Work work) override;

    /// Moves the time on and does all work that falls due on the way, each at its time, work that it gives included.
    void advanceBy(double seconds) { advanceTo(now_ + seconds); }
    /// As `advanceBy`, up to that moment; one that has passed moves nothing.
    void advanceTo(Date time);
    /// Does what is due now, work that it gives included.
    void run() { advanceTo(now_); }

  private:
    using Due = std::pair<Date, std::uint64_t>;

    Date now_;
    std::uint64_t next_ = 0;
    /// Shared with what cancels, which may outlive the scheduler.
    std::shared_ptr<std::map<Due, Work>> queue_ = std::make_shared<std::map<Due, Work>>();
};

}  // namespace kestrel
