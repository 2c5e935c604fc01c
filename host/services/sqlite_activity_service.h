#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/activity_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// What a database has of the activity around records, as the signed-in user may see it. `observeActivity` looks at it
/// in the calendar of the user's time zone.
class SQLiteActivityService final : public ActivityService {
  public:
    explicit SQLiteActivityService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<ActivitySummary, ReadError> fetchActivity(const ActivitySourceID& source,
                                                                         const CalendarMoment& at,
                                                                         std::size_t limit) override;
    [[nodiscard]] AnyPublisher<ActivitySummary, ReadError> observeActivity(const ActivitySourceID& source,
                                                                           std::size_t limit) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
