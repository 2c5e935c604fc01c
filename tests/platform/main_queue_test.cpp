#include "support.h"

#include <kestrel/platform/linux/glib_main_queue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <memory>
#include <thread>

namespace kestrel {
namespace {

using Clock = std::chrono::steady_clock;
using Numbers = std::vector<int>;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void block(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

/// A loop of the test's own, turn by turn.
class AMainQueue : public ::testing::Test {
  protected:
    ~AMainQueue() override { g_main_context_unref(context); }

    void turn() { g_main_context_iteration(context, TRUE); }
    void turnIfReady() { g_main_context_iteration(context, FALSE); }
    template <class IsDone>
    void turnUntil(IsDone isDone) {
        while (!isDone())
            turn();
    }

    GMainContext* context = g_main_context_new();
    std::optional<GLibMainQueue> queue{std::in_place, context};
    Numbers done{};

    Scheduler::Work adding(int number) {
        return [this, number] { done.push_back(number); };
    }
};

TEST_F(AMainQueue, doesWorkLaterInTheOrderInWhichItWasGivenAndIsDue) {
    const auto late = queue->scheduleAfter(0.02, adding(5));
    const auto early = queue->scheduleAfter(0.01, adding(4));
    const auto now = queue->scheduleAfter(0, adding(1));
    const auto past = queue->scheduleAfter(-5, adding(2));
    const auto endless = queue->scheduleAfter(1e300, adding(6));
    block(0.002);
    queue->schedule(adding(3));
    EXPECT_EQ(done, Numbers());
    block(0.05);
    turn();
    EXPECT_EQ(done, (Numbers{1, 2, 3, 4, 5})) << "the loop was late, and the order is that of the times";
}

TEST_F(AMainQueue, takesWorkFromManyThreads) {
    constexpr int threadCount = 8;
    constexpr int each = 5'000;
    std::vector<Numbers> received(threadCount);
    int count = 0;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([&, thread] {
                for (int i = 0; i < each; ++i) {
                    queue->schedule([&, thread, i] {
                        received[static_cast<std::size_t>(thread)].push_back(i);
                        ++count;
                    });
                }
            });
        }
        // Sleeps in the loop until somebody wakes it.
        turnUntil([&] { return count == threadCount * each; });
    }
    for (const auto& numbers : received)
        EXPECT_TRUE(std::ranges::is_sorted(numbers));
}

TEST_F(AMainQueue, leavesTurnsToOthersWhileWorkGivesMoreWork) {
    std::function<void()> again = [&] {
        done.push_back(0);
        queue->schedule(again);
    };
    queue->schedule(again);
    int others = 0;
    GSource* const idle = g_idle_source_new();
    g_source_set_priority(idle, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        idle,
        [](gpointer user) -> gboolean {
            ++*static_cast<int*>(user);
            return G_SOURCE_CONTINUE;
        },
        &others, nullptr);
    g_source_attach(idle, context);
    const auto timer = queue->scheduleAfter(0.005, adding(1));
    turnUntil([&] { return std::ranges::count(done, 1) == 1; });
    g_source_destroy(idle);
    g_source_unref(idle);
    const auto turns = static_cast<int>(done.size());
    EXPECT_GE(others, turns / 2) << "one turn of the queue, one of the others";
}

TEST_F(AMainQueue, goesOnInsideOfWorkThatRunsTheLoop) {
    queue->schedule([&] {
        done.push_back(1);
        queue->schedule(adding(4));
        turnUntil([&] { return std::ranges::count(done, 4) == 1; });
        done.push_back(5);
    });
    queue->schedule(adding(2));
    queue->schedule(adding(3));
    turn();
    EXPECT_EQ(done, (Numbers{1, 2, 3, 4, 5}));
}

TEST_F(AMainQueue, doesNothingThatWasCancelled) {
    auto held = std::make_shared<int>();
    std::weak_ptr<int> watched = held;
    auto cancelled = queue->scheduleAfter(0, [held = std::move(held)] {});
    cancelled.cancel();
    EXPECT_TRUE(watched.expired());
    AnyCancellable second;
    const auto first = queue->scheduleAfter(0, [&] {
        done.push_back(1);
        second.cancel();
    });
    second = queue->scheduleAfter(0, adding(2));
    const auto third = queue->scheduleAfter(0, adding(3));
    block(0.001);
    turn();
    turnIfReady();
    EXPECT_EQ(done, (Numbers{1, 3}));

    queue->schedule([held = std::make_shared<int>(), this] { done.push_back(9); });
    auto left = queue->scheduleAfter(0, adding(9));
    queue.reset();
    turnIfReady();
    left.cancel();
    EXPECT_EQ(done, (Numbers{1, 3})) << "nothing is done once the queue is gone";
}

TEST_F(AMainQueue, letsWorkCancelAndDestroyItself) {
    auto held = std::make_shared<int>(7);
    std::weak_ptr<int> watched = held;
    std::optional<AnyCancellable> timer;
    timer = queue->repeatEvery(0.001, [&, held = std::move(held)](Date) {
        done.push_back(*held);
        if (done.size() < 3) return;
        timer.reset();
        EXPECT_FALSE(watched.expired()) << "what is running is not destroyed";
        done.push_back(*held);
    });
    turnUntil([&] { return !timer; });
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(done, (Numbers{7, 7, 7, 7}));

    std::optional<AnyCancellable> once;
    once = queue->scheduleAfter(0, [&] { once.reset(); });
    turnUntil([&] { return !once; });
    once = queue->scheduleAt(Date::now() - 1, [&] { once.reset(); });
    turnUntil([&] { return !once; });
}

TEST_F(AMainQueue, ticksWithoutDriftAndLeavesOutWhatItMissed) {
    constexpr double interval = 0.04;
    constexpr int blocking = 10;
    const auto start = Clock::now();
    std::vector<double> ticks;
    const auto timer = queue->repeatEvery(interval, [&](Date date) {
        EXPECT_LE(std::abs(Date::now() - date), 60) << "the date is that of the tick";
        ticks.push_back(secondsSince(start));
        // What a tick takes does not move the next ones.
        block(ticks.size() == blocking ? 3.25 * interval : interval / 3);
    });
    turnUntil([&] { return ticks.size() == 20; });
    std::vector<double> delays;
    double lastSlot = 0;
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        const double slot = std::floor(ticks[i] / interval);
        EXPECT_GT(slot, lastSlot) << "never too early, and no two ticks for one moment";
        if (i == blocking) {
            EXPECT_GE(slot - lastSlot, 4) << "the moments that passed meanwhile are left out";
        }
        lastSlot = slot;
        delays.push_back(ticks[i] - slot * interval);
    }
    std::ranges::sort(delays);
    EXPECT_LT(delays[delays.size() / 2], interval / 4) << "most ticks are near their moments, and not anywhere between";
}

TEST_F(AMainQueue, takesNoIntervalForTheShortestOne) {
    int others = 0;
    const auto timer = queue->repeatEvery(0, [&](Date) { done.push_back(1); });
    const auto other = queue->repeatEvery(-1, [&](Date) { ++others; });
    turnUntil([&] { return done.size() >= 10 && others >= 10; });
}

TEST_F(AMainQueue, waitsForTheWallClock) {
    const auto start = Date::now();
    const auto moment = start + 0.05;
    std::optional<Date> reached;
    const auto never = queue->scheduleAt(Date::distantFuture(), adding(9));
    const auto neither = queue->scheduleAt(Date(1e300), adding(9));
    const auto past = queue->scheduleAt(start - 1, adding(1));
    const auto longAgo = queue->scheduleAt(Date(-1e300), adding(1));
    const auto future = queue->scheduleAt(moment, [&] { reached = Date::now(); });
    auto cancelled = queue->scheduleAt(start, adding(9));
    cancelled.cancel();
    EXPECT_EQ(done, Numbers());
    turnUntil([&] { return reached.has_value(); });
    EXPECT_EQ(done, (Numbers{1, 1}));
    EXPECT_GE(*reached, moment) << "or else somebody has set this machine's clock";
}

TEST_F(AMainQueue, doesWhatWaitsForTheWallClockWhenTheClockIsSet) {
    static int reads = 0;
    reads = 0;
    const auto isSet = [](int descriptor, void* buffer, size_t size) -> ssize_t {
        (void)read(descriptor, buffer, size);
        errno = ++reads == 1 ? EAGAIN : ECANCELED;
        return -1;
    };
    const auto first = queue->scheduleAt(Date::now(), adding(1), isSet);
    turnUntil([] { return reads == 1; });
    EXPECT_EQ(done, Numbers()) << "there was nothing to read";
    const auto second = queue->scheduleAt(Date::now(), adding(2), isSet);
    turnUntil([&] { return reads == 2; });
    EXPECT_EQ(done, Numbers{2});
}

// Sets the clock of the whole machine, to what it shows: not unless somebody asks for it.
TEST_F(AMainQueue, noticesThatTheClockIsSet) {
    if (std::getenv("KESTREL_TEST_MAY_SET_CLOCK") == nullptr) {
        GTEST_SKIP() << "sets the machine's clock; runs with KESTREL_TEST_MAY_SET_CLOCK=1 and the right to set it";
    }
    const auto waiting = queue->scheduleAt(Date::now() + 3600, adding(1));
    turnIfReady();
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    ASSERT_EQ(clock_settime(CLOCK_REALTIME, &now), 0);
    turn();
    EXPECT_EQ(done, Numbers{1});
}

TEST(TheMainQueue, isOneOfTheProcessAndRunsUntilItIsQuit) {
    EXPECT_EQ(platform::mainQueue(), platform::mainQueue());
    platform::quitMainLoop();
    std::thread::id where;
    std::jthread quitting([&] {
        platform::mainQueue()->schedule([&] { where = std::this_thread::get_id(); });
        platform::mainQueue()->schedule([] {
            // One within the other.
            platform::mainQueue()->schedule(platform::quitMainLoop);
            platform::runMainLoop();
            platform::quitMainLoop();
        });
    });
    platform::runMainLoop();
    EXPECT_EQ(where, std::this_thread::get_id());
}

}  // namespace
}  // namespace kestrel
