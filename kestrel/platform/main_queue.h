#pragma once

#include <kestrel/foundation/date.h>
#include <kestrel/reactive/cancellable.h>
#include <kestrel/reactive/scheduler.h>
#include <functional>

namespace kestrel {

/// The scheduler of the main thread: work runs there, in turn with the user interface's. Work may be given from any
/// thread; timers are started and cancelled on the main thread.
class MainQueue : public Scheduler {
  public:
    /// Calls `tick` with the current date each time that so many seconds have passed, counted from now, without drift:
    /// a late tick does not delay the next ones, and ticks that were missed altogether are left out. Time passes evenly
    /// here, whatever the wall clock is set to. Ends when the result is cancelled or destroyed. An interval that is not
    /// positive is taken as the shortest one that does not starve the loop, a tenth of a millisecond.
    [[nodiscard]] virtual AnyCancellable repeatEvery(double seconds, std::function<void(Date)> tick) = 0;
    /// Does the work once when the wall clock reaches a moment, or at once when it is past. When the clock is set
    /// meanwhile, the work is done then, too early or too late: whoever waits for a moment asks the clock again.
    [[nodiscard]] virtual AnyCancellable scheduleAt(Date wallClock, Work work) = 0;
};

}  // namespace kestrel
