#pragma once

#include <kestrel/reactive/scheduler.h>
#include <future>
#include <type_traits>
#include <utility>

namespace kestrel::host {

/// Has a scheduler do some work, waits for it, and gives back what it gives, or throws what it throws. From another
/// thread than the scheduler's, which goes on doing its work until this has come back.
template <class Work>
std::invoke_result_t<Work&> doneOn(Scheduler& scheduler, Work work) {
    std::packaged_task<std::invoke_result_t<Work&>()> task([&work] { return work(); });
    auto result = task.get_future();
    scheduler.schedule([task = std::move(task)]() mutable { task(); });
    return result.get();
}

}  // namespace kestrel::host
