#include <kestrel/foundation/fatal.h>
#include <kestrel/foundation/required.h>
#include <kestrel/services/live_reachability_service.h>
#include <limits>
#include <utility>

namespace kestrel {

namespace {

ReachabilityStatus statusOf(const ReachabilityProtocol& source) {
    switch (source.currentReachabilityStatus()) {
        case 1: return ReachabilityStatus::reachableViaWiFi;
        case 2: return ReachabilityStatus::reachableViaWWAN;
        default: return ReachabilityStatus::notReachable;
    }
}

}  // namespace

struct LiveReachabilityService::State {
    std::shared_ptr<ReachabilityProtocol> reachability;
    std::int64_t observerCount = 0;
    bool observing = false;

    void attach() {
        if (observerCount == 0) observing = reachability->startNotifier();
        if (observerCount == std::numeric_limits<std::int64_t>::max()) fatal("Too many observe the network.");
        ++observerCount;
    }
    void release() {
        if (observerCount == 0) fatal("An observation of the network ended twice.");
        if (--observerCount > 0) return;
        reachability->stopNotifier();
        observing = false;
    }
};

LiveReachabilityService::LiveReachabilityService(std::shared_ptr<ReachabilityProtocol> source)
    : state_(std::make_shared<State>(required(std::move(source), "The source of reachability"))) {}

ReachabilityStatus LiveReachabilityService::currentStatus() const {
    return statusOf(*state_->reachability);
}

AnyPublisher<ReachabilityStatus, ReachabilityError> LiveReachabilityService::observeNetworkStatus() {
    return createUnbuffered<ReachabilityStatus, ReachabilityError>(
        [state = state_](const Emitter<ReachabilityStatus, ReachabilityError>& emitter) {
            state->attach();
            if (!state->observing) {
                emitter.fail(ReachabilityError::failedToStartNotifier);
                return AnyCancellable([state] { state->release(); });
            }
            auto changes = NotificationCenter::standard()
                               .notifications(kReachabilityChangedNotification, state->reachability.get())
                               .compactMap([](const Notification& notification) {
                                   const auto* source = dynamic_cast<const ReachabilityProtocol*>(notification.object);
                                   return source != nullptr ? std::optional(statusOf(*source)) : std::nullopt;
                               })
                               .sink([emitter](ReachabilityStatus status) { emitter.send(status); });
            return AnyCancellable([state, changes = std::move(changes)]() mutable {
                changes.cancel();
                state->release();
            });
        });
}

std::int64_t LiveReachabilityService::observerCount() const noexcept {
    return state_->observerCount;
}

bool LiveReachabilityService::observing() const noexcept {
    return state_->observing;
}

}  // namespace kestrel
