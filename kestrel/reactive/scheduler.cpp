#include <kestrel/reactive/scheduler.h>
#include <algorithm>

namespace kestrel {

AnyCancellable VirtualTimeScheduler::scheduleAfter(double seconds, Work work) {
    const Due due{now_ + std::max(seconds, 0.0), next_++};
    queue_->emplace(due, std::move(work));
    return AnyCancellable([due, queue = std::weak_ptr(queue_)] {
        // Outside of the map before it is destroyed: the work may own what cancels it.
        if (const auto waiting = queue.lock()) (void)waiting->extract(due);
    });
}

void VirtualTimeScheduler::advanceTo(Date time) {
    while (!queue_->empty() && queue_->begin()->first.first <= time) {
        auto due = queue_->extract(queue_->begin());
        now_ = std::max(now_, due.key().first);
        due.mapped()();
    }
    now_ = std::max(now_, time);
}

}  // namespace kestrel
