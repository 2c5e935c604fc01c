#pragma once

#include <kestrel/activity/activity_summary.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <cstddef>
#include <memory>

namespace kestrel {

/// What happened around records.
class ActivityService : public ServiceProtocol {
  public:
    /// As it is in that moment, with at most so many recent items of a kind, 0 for all.
    [[nodiscard]] virtual AnyPublisher<ActivitySummary, ReadError> fetchActivity(const ActivitySourceID& source,
                                                                                 const CalendarMoment& at,
                                                                                 std::size_t limit) = 0;
    /// As it is now, and after every change.
    [[nodiscard]] virtual AnyPublisher<ActivitySummary, ReadError> observeActivity(const ActivitySourceID& source,
                                                                                   std::size_t limit) = 0;
};

template <>
class Forwarding<ActivityService> : public ActivityService {
  public:
    [[nodiscard]] virtual std::shared_ptr<ActivityService> target() const = 0;

    [[nodiscard]] AnyPublisher<ActivitySummary, ReadError> fetchActivity(const ActivitySourceID& source,
                                                                         const CalendarMoment& at,
                                                                         std::size_t limit) override {
        return target()->fetchActivity(source, at, limit);
    }
    [[nodiscard]] AnyPublisher<ActivitySummary, ReadError> observeActivity(const ActivitySourceID& source,
                                                                           std::size_t limit) override {
        return target()->observeActivity(source, limit);
    }
};

namespace services {
inline constexpr ServiceKey<ActivityService> activity;
}

}  // namespace kestrel
