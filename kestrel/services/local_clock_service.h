#pragma once

#include <kestrel/foundation/required.h>
#include <kestrel/platform/main_queue.h>
#include <kestrel/services/system_clock_service.h>
#include <memory>
#include <utility>

namespace kestrel {

/// The clock of the system, or of whatever queue it is given: a test gives one whose time stands still.
class LocalClockService final : public SystemClockService {
  public:
    /// On that queue. Null is a mistake in the program: fatal().
    explicit LocalClockService(std::shared_ptr<MainQueue> mainQueue)
        : scheduler_(required(std::move(mainQueue), "The main queue of a clock")) {}

    [[nodiscard]] std::shared_ptr<Scheduler> scheduler() const override { return scheduler_; }
    [[nodiscard]] Date now() const override { return scheduler_->now(); }
    [[nodiscard]] AnyPublisher<Date> timer(double interval) override;
    /// Each boundary is waited for on its own: the next one is the first that is strictly later than the moment at
    /// which the last one was sent. When the wall clock is set, what is waited for is found anew; boundaries that it
    /// leaps over count as one.
    [[nodiscard]] AnyPublisher<Date> boundaries(ClockInterval interval, std::optional<Calendar> calendar) override;

  private:
    std::shared_ptr<MainQueue> scheduler_;
};

}  // namespace kestrel
