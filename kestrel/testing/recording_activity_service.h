#pragma once

#include <kestrel/services/activity_service.h>
#include <kestrel/testing/stub.h>

namespace kestrel {

/// An ActivityService that answers as a test prepares it, and keeps what it is asked.
class RecordingActivityService final : public ActivityService {
  public:
    struct Stubs {
        Stub<AnyPublisher<ActivitySummary, ReadError>(const ActivitySourceID&, const CalendarMoment&, std::size_t)>
            fetchActivity;
        Stub<AnyPublisher<ActivitySummary, ReadError>(const ActivitySourceID&, std::size_t)> observeActivity;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<ActivitySummary, ReadError> fetchActivity(const ActivitySourceID& source,
                                                                         const CalendarMoment& at,
                                                                         std::size_t limit) override {
        return on.fetchActivity(source, at, limit);
    }
    [[nodiscard]] AnyPublisher<ActivitySummary, ReadError> observeActivity(const ActivitySourceID& source,
                                                                           std::size_t limit) override {
        return on.observeActivity(source, limit);
    }
};

}  // namespace kestrel
