#include <kestrel/services/local_clock_service.h>

namespace kestrel {

namespace {

/// Waits for one boundary after the other.
class BoundaryTimer : public std::enable_shared_from_this<BoundaryTimer> {
  public:
    BoundaryTimer(std::shared_ptr<MainQueue> queue, ClockInterval interval, const Calendar& calendar,
                  Emitter<Date, Never> emitter)
        : queue_(std::move(queue)),
          unit_(interval == ClockInterval::topOfTheHour ? ClockUnit::hour : ClockUnit::minute),
          calendar_(calendar),
          emitter_(std::move(emitter)) {}

    void start() { wait(queue_->now()); }
    void stop() { waiting_.cancel(); }

  private:
    void wait(Date after) {
        const Date boundary = calendar_.nextStartOf(unit_, after);
        waiting_ = queue_->scheduleAt(boundary, [self = weak_from_this(), boundary] {
            if (const auto timer = self.lock()) timer->reach(boundary);
        });
    }
    void reach(Date boundary) {
        const Date now = queue_->now();
        // Otherwise the clock was set, and this is not the moment.
        const bool isReached = boundary <= now;
        // Armed before anybody can cancel it from inside the delivery.
        wait(now);
        if (isReached) emitter_.send(now);
    }

    std::shared_ptr<MainQueue> queue_;
    ClockUnit unit_;
    Calendar calendar_;
    Emitter<Date, Never> emitter_;
    AnyCancellable waiting_;
};

}  // namespace

AnyPublisher<Date> LocalClockService::timer(double interval) {
    return createUnbuffered<Date>([queue = scheduler_, interval](Emitter<Date, Never>& emitter) {
        return queue->repeatEvery(interval, [emitter](Date now) { emitter.send(now); });
    });
}

AnyPublisher<Date> LocalClockService::boundaries(ClockInterval interval, std::optional<Calendar> calendar) {
    return createUnbuffered<Date>([queue = scheduler_, interval, calendar](Emitter<Date, Never>& emitter) {
        auto timer =
            std::make_shared<BoundaryTimer>(queue, interval, calendar ? *calendar : Calendar::current(), emitter);
        timer->start();
        return AnyCancellable([timer] { timer->stop(); });
    });
}

}  // namespace kestrel
