#include <kestrel/foundation/fatal.h>
#include <kestrel/platform/linux/glib_main_queue.h>
#include <kestrel/platform/linux/glib_support.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <compare>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

namespace kestrel {

namespace {

/// Microseconds on the monotonic clock, from an arbitrary start.
using Microseconds = std::int64_t;

/// A place in the order of what is to be done.
struct Due {
    Microseconds time{};
    /// Counts what was given.
    std::uint64_t number{};

    friend auto operator<=>(const Due&, const Due&) = default;
};

/// Three hundred years, which keeps all sums in range, for delays beyond.
constexpr double longestDelay = 1e10;

Microseconds delayOf(double seconds) {
    if (std::isnan(seconds)) fatal("Work was scheduled after a time that is not a number.");
    return static_cast<Microseconds>(std::ceil(std::clamp(seconds, 0.0, longestDelay) * 1e6));
}

struct Timer {
    Due due{};
    /// What is done once.
    Scheduler::Work work{};
    /// What is done again and again; then `interval` is positive.
    std::function<void(Date)> tick{};
    Microseconds start{};
    double interval{};
    bool isCancelled{};

    /// The first tick behind `time` on the grid that began with the start.
    [[nodiscard]] Microseconds nextTick(Microseconds time) const {
        const double passed = std::floor(static_cast<double>(time - start) / interval);
        auto next = start + static_cast<Microseconds>(std::llround((passed + 1) * interval));
        if (next <= time) next = start + static_cast<Microseconds>(std::llround((passed + 2) * interval));
        return next;
    }
};

struct Given {
    Due due{};
    Scheduler::Work work{};
};

}  // namespace

/// What waits, guarded by a mutex of our own: the thread sanitizer does not see GLib's.
struct GLibMainQueue::Turns : std::enable_shared_from_this<Turns> {
    std::mutex mutex{};
    /// Work for the next turn, in its order.
    std::deque<Given> given{};
    std::map<Due, std::shared_ptr<Timer>> timers{};
    std::uint64_t next = 0;
    /// Null once the queue is gone.
    GSource* source = nullptr;

    // With the mutex held:

    /// Wakes the loop when the first thing to be done has changed.
    void arm() const {
        if (source == nullptr) return;
        const gint64 ready = !given.empty() ? 0 : timers.empty() ? -1 : timers.begin()->first.time;
        g_source_set_ready_time(source, ready);
    }
    void add(std::shared_ptr<Timer> timer, Microseconds time) {
        timer->due = {.time = time, .number = next++};
        const auto due = timer->due;
        timers.emplace(due, std::move(timer));
        if (timers.begin()->first == due) arm();
    }

    // With it released:

    void give(Scheduler::Work work) {
        const std::scoped_lock lock(mutex);
        given.push_back({.due = {.time = g_get_monotonic_time(), .number = next++}, .work = std::move(work)});
        if (given.size() == 1) arm();
    }
    AnyCancellable start(std::shared_ptr<Timer> timer, Microseconds time) {
        {
            const std::scoped_lock lock(mutex);
            add(timer, time);
        }
        return AnyCancellable([turns = shared_from_this(), timer = std::move(timer)] { turns->cancel(*timer); });
    }
    void cancel(Timer& timer) {
        // Destroyed behind the lock: what the work holds may use this queue while it goes away.
        std::shared_ptr<Timer> gone;
        const std::scoped_lock lock(mutex);
        timer.isCancelled = true;
        if (const auto found = timers.find(timer.due); found != timers.end() && found->second.get() == &timer) {
            const bool isFirst = found == timers.begin();
            gone = std::move(found->second);
            timers.erase(found);
            if (isFirst) arm();
        }
    }
    void turn() {
        const auto now = g_get_monotonic_time();
        std::unique_lock lock(mutex);
        const auto end = next;
        const auto isDue = [&](const Due& due) { return due.time <= now && due.number < end; };
        for (;;) {
            const bool hasGiven = !given.empty() && isDue(given.front().due);
            const bool hasTimer = !timers.empty() && isDue(timers.begin()->first);
            if (hasGiven && (!hasTimer || given.front().due < timers.begin()->first)) {
                auto work = std::move(given.front().work);
                given.pop_front();
                lock.unlock();
                work();
                work = nullptr;
                lock.lock();
            } else if (hasTimer) {
                auto timer = std::move(timers.begin()->second);
                timers.erase(timers.begin());
                lock.unlock();
                fire(*timer);
                lock.lock();
                if (timer->interval > 0 && !timer->isCancelled) {
                    auto& again = *timer;
                    add(std::move(timer), again.nextTick(g_get_monotonic_time()));
                }
                lock.unlock();
                timer.reset();
                lock.lock();
            } else {
                break;
            }
        }
        arm();
    }
    static void fire(Timer& timer) {
        if (timer.interval > 0) {
            timer.tick(Date::now());
        } else {
            // Only here: a cancellation on this thread has taken the timer out, and cannot meet the work.
            auto work = std::move(timer.work);
            work();
        }
    }

    struct Source {
        GSource base;
        std::shared_ptr<Turns>* turns;
    };
    static gboolean dispatch(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) noexcept {
        // The queue may go away in the middle of its turn.
        const auto turns = *reinterpret_cast<Source*>(source)->turns;
        turns->turn();
        return G_SOURCE_CONTINUE;
    }
    static void finalize(GSource* source) noexcept { delete reinterpret_cast<Source*>(source)->turns; }
};

GLibMainQueue::GLibMainQueue(GMainContext* context)
    : context_(g_main_context_ref(context != nullptr ? context : g_main_context_default())),
      turns_(std::make_shared<Turns>()) {
    static GSourceFuncs functions{.prepare = nullptr,
                                  .check = nullptr,
                                  .dispatch = Turns::dispatch,
                                  .finalize = Turns::finalize,
                                  .closure_callback = nullptr,
                                  .closure_marshal = nullptr};
    GSource* const source = g_source_new(&functions, sizeof(Turns::Source));
    reinterpret_cast<Turns::Source*>(source)->turns = new std::shared_ptr<Turns>(turns_);
    g_source_set_static_name(source, "KestrelService main queue");
    g_source_set_can_recurse(source, TRUE);
    turns_->source = source;
    g_source_attach(source, context_);
}

GLibMainQueue::~GLibMainQueue() {
    GSource* source = nullptr;
    decltype(turns_->given) given;
    decltype(turns_->timers) timers;
    {
        const std::scoped_lock lock(turns_->mutex);
        source = std::exchange(turns_->source, nullptr);
        given.swap(turns_->given);
        timers.swap(turns_->timers);
    }
    g_source_destroy(source);
    g_source_unref(source);
    g_main_context_unref(context_);
}

void GLibMainQueue::schedule(Work work) {
    turns_->give(std::move(work));
}

AnyCancellable GLibMainQueue::scheduleAfter(double seconds, Work work) {
    auto timer = std::make_shared<Timer>();
    timer->work = std::move(work);
    return turns_->start(std::move(timer), g_get_monotonic_time() + delayOf(seconds));
}

AnyCancellable GLibMainQueue::repeatEvery(double seconds, std::function<void(Date)> tick) {
    constexpr double shortest = 1e-4;
    if (std::isnan(seconds)) fatal("A timer was given an interval that is not a number.");
    auto timer = std::make_shared<Timer>();
    timer->tick = std::move(tick);
    timer->interval = std::clamp(seconds, shortest, longestDelay) * 1e6;
    timer->start = g_get_monotonic_time();
    const auto first = timer->nextTick(timer->start);
    return turns_->start(std::move(timer), first);
}

AnyCancellable GLibMainQueue::scheduleAt(Date wallClock, Work work) {
    return scheduleAt(wallClock, std::move(work), ::read);
}

AnyCancellable GLibMainQueue::scheduleAt(Date wallClock, Work work, ReadAlarm readAlarm) {
    // Whole seconds apart from the fraction, and rounded up: the work finds the clock at the moment or behind it. The
    // end is what the kernel's clock can count to; a time of zero would stop the alarm.
    constexpr double lastSecond = 9e9;
    const double sinceReference = wallClock.sinceReferenceDate();
    const double second =
        std::clamp(std::floor(sinceReference), -Date::referenceSince1970, lastSecond - Date::referenceSince1970);
    const double nanoseconds = std::clamp(std::ceil((sinceReference - second) * 1e9), 1.0, 999'999'999.0);
    itimerspec alarm{};
    alarm.it_value.tv_sec = static_cast<time_t>(second + Date::referenceSince1970);
    alarm.it_value.tv_nsec = static_cast<decltype(alarm.it_value.tv_nsec)>(nanoseconds);

    platform::FileDescriptor clock(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!clock || timerfd_settime(clock.number(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &alarm, nullptr) != 0) {
        // No descriptor is left. Work may come too early, so it comes every now and then instead of never.
        constexpr double everyNowAndThen = 10;
        return scheduleAfter(std::min(wallClock - now(), everyNowAndThen), std::move(work));
    }
    const int descriptor = clock.number();
    return platform::watchDescriptor(
        context_, descriptor, G_IO_IN,
        [readAlarm, clock = std::move(clock), once = std::move(work)](GIOCondition) mutable {
            std::uint64_t expirations = 0;
            const auto size = readAlarm(clock.number(), &expirations, sizeof expirations);
            if (size < 0 && errno != ECANCELED) return;
            // Nothing more is to be read: the descriptor is quiet from here on, unless the clock is set again.
            if (auto due = std::exchange(once, nullptr)) due();
        });
}

}  // namespace kestrel
