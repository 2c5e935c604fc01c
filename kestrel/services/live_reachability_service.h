#pragma once

#include <kestrel/platform/reachability.h>
#include <kestrel/services/reachability_service.h>
#include <cstdint>
#include <memory>

namespace kestrel {

/// Reachability by a source, which watches the network while somebody observes.
///
/// The source is started for the first observation and stopped when the last one has gone. When it cannot be started,
/// that observation fails, and so do further ones while any is held: only when all are gone is it tried again.
class LiveReachabilityService final : public ReachabilityService {
  public:
    /// Null is a mistake in the program: fatal().
    explicit LiveReachabilityService(std::shared_ptr<ReachabilityProtocol> source);

    [[nodiscard]] ReachabilityStatus currentStatus() const override;
    [[nodiscard]] AnyPublisher<ReachabilityStatus, ReachabilityError> observeNetworkStatus() override;

    /// How many observations are held, failed ones included.
    [[nodiscard]] std::int64_t observerCount() const noexcept;
    /// Whether the network is watched.
    [[nodiscard]] bool observing() const noexcept;

  private:
    struct State;
    /// Shared with the observations, which may outlive the service.
    std::shared_ptr<State> state_;
};

}  // namespace kestrel
