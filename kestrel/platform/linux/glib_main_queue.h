#pragma once

#include <glib.h>
#include <kestrel/platform/main_queue.h>
#include <sys/types.h>
#include <memory>

namespace kestrel {

/// The main queue on a main context of GLib's, at its default priority. It only attaches a source and never runs the
/// context: that is up to the host, GTK or Qt.
///
/// A turn does the work that was given before it began, and the timers that were due then, in the order in which they
/// were due; what that work gives in turn waits for the next one, so that the loop's other sources come in between.
/// Where work runs the loop itself, such as for a modal dialog, the rest goes on in there, in its order.
///
/// Timers may also be started and cancelled on another thread; only then may work that is being done at that moment end
/// after its cancellation. Work that throws ends the program.
class GLibMainQueue final : public MainQueue {
  public:
    /// On the default main context unless another one is given.
    explicit GLibMainQueue(GMainContext* context = nullptr);
    /// Drops what has not been done.
    ~GLibMainQueue() override;

    [[nodiscard]] Date now() const override { return Date::now(); }
    void schedule(Work work) override;
    [[nodiscard]] AnyCancellable scheduleAfter(double seconds, Work work) override;
    [[nodiscard]] AnyCancellable repeatEvery(double seconds, std::function<void(Date)> tick) override;
    [[nodiscard]] AnyCancellable scheduleAt(Date wallClock, Work work) override;

    /// Reads a timer of the wall clock as read(2) does: eight bytes when it has run out, the error ECANCELED when the
    /// clock was set. A test gives one that says so without setting the machine's clock.
    using ReadAlarm = ssize_t (*)(int descriptor, void* buffer, size_t size);
    [[nodiscard]] AnyCancellable scheduleAt(Date wallClock, Work work, ReadAlarm readAlarm);

  private:
    struct Turns;

    GMainContext* context_;
    std::shared_ptr<Turns> turns_;
};

}  // namespace kestrel
