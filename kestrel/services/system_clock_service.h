#pragma once

#include <kestrel/foundation/calendar.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/reactive/scheduler.h>
#include <kestrel/runtime/service_protocol.h>
#include <cstdint>
#include <memory>
#include <optional>

namespace kestrel {

/// Where the clock stands when something happens.
enum class ClockInterval : std::uint8_t {
    topOfTheMinute,  ///< each time that a minute starts
    topOfTheHour     ///< each time that an hour starts
};

/// The time, and what happens at certain times. Values are delivered on the main thread.
class SystemClockService : public ServiceProtocol {
  public:
    /// The main queue.
    [[nodiscard]] virtual std::shared_ptr<Scheduler> scheduler() const = 0;
    /// The current moment.
    [[nodiscard]] virtual Date now() const = 0;
    /// The current date each time that so many seconds have passed since somebody subscribed, without drift.
    [[nodiscard]] virtual AnyPublisher<Date> timer(double interval) = 0;
    /// The current date at each start of a minute or an hour in the calendar; in the user's when absent.
    [[nodiscard]] virtual AnyPublisher<Date> boundaries(ClockInterval interval, std::optional<Calendar> calendar) = 0;

    /// `boundaries` in the user's calendar.
    [[nodiscard]] AnyPublisher<Date> every(ClockInterval interval) { return boundaries(interval, std::nullopt); }
    /// The current date once, when so many seconds have passed since somebody subscribed.
    [[nodiscard]] AnyPublisher<Date> after(double interval) { return timer(interval).first(); }
};

template <>
class Forwarding<SystemClockService> : public SystemClockService {
  public:
    [[nodiscard]] virtual std::shared_ptr<SystemClockService> target() const = 0;

    [[nodiscard]] std::shared_ptr<Scheduler> scheduler() const override { return target()->scheduler(); }
    [[nodiscard]] Date now() const override { return target()->now(); }
    [[nodiscard]] AnyPublisher<Date> timer(double interval) override { return target()->timer(interval); }
    [[nodiscard]] AnyPublisher<Date> boundaries(ClockInterval interval, std::optional<Calendar> calendar) override {
        return target()->boundaries(interval, calendar);
    }
};

namespace services {
inline constexpr ServiceKey<SystemClockService> systemClock;
}

}  // namespace kestrel
