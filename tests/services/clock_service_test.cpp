#include <gtest/gtest.h>
#include <kestrel/services/local_clock_service.h>
#include <kestrel/testing/virtual_main_queue.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace kestrel;

Date at(const std::string& text) {
    return Date::parseISO8601(text).value();
}
std::vector<std::string> texts(const std::vector<Date>& dates) {
    std::vector<std::string> result;
    for (const Date date : dates)
        result.push_back(date.description());
    return result;
}
using Texts = std::vector<std::string>;

class ClockService : public testing::Test {
  protected:
    std::shared_ptr<VirtualMainQueue> queue = std::make_shared<VirtualMainQueue>(at("2026-03-29T00:59:30Z"));
    LocalClockService clock{queue};
    std::vector<Date> dates;

    auto gather() {
        return [this](Date date) { dates.push_back(date); };
    }
};

TEST_F(ClockService, ticksAtItsIntervalWhileSomebodyListens) {
    const auto timer = clock.timer(20);
    queue->advanceBy(100);
    auto listening = timer.sink(gather());
    EXPECT_TRUE(dates.empty());
    queue->advanceBy(50);
    EXPECT_EQ(texts(dates), (Texts{"2026-03-29T01:01:30Z", "2026-03-29T01:01:50Z"}));
    listening.cancel();
    queue->advanceBy(50);
    EXPECT_EQ(dates.size(), 2U);

    bool isFinished = false;
    const auto once = clock.after(5).sink(gather(), [&](const auto&) { isFinished = true; });
    queue->advanceBy(50);
    EXPECT_EQ(dates.size(), 3U);
    EXPECT_TRUE(isFinished);
}

TEST_F(ClockService, sendsTheDateAtEachStartOfAMinuteOrAnHourOfTheCalendar) {
    const auto utc = clock.boundaries(ClockInterval::topOfTheMinute, Calendar::utc()).sink(gather());
    queue->advanceBy(95);
    EXPECT_EQ(texts(dates), (Texts{"2026-03-29T01:00:00Z", "2026-03-29T01:01:00Z"}));
    // On the boundary itself the next one counts.
    queue->advanceTo(at("2026-03-29T01:02:00Z"));
    EXPECT_EQ(dates.size(), 3U);

    dates.clear();
    const auto kolkata =
        clock.boundaries(ClockInterval::topOfTheHour, Calendar::inZone("Asia/Kolkata")).sink([this](Date date) {
            if (date >= at("2026-03-29T01:10:00Z")) dates.push_back(date);
        });
    queue->advanceBy(2 * 3'600);
    std::erase_if(dates, [](Date date) { return Calendar::utc().nextStartOf(ClockUnit::hour, date - 1) == date; });
    std::erase_if(dates, [](Date date) { return static_cast<long>(date.since1970()) % 1'800 != 0; });
    EXPECT_EQ(texts(dates),
              (Texts{"2026-03-29T01:30:00Z", "2026-03-29T01:30:00Z", "2026-03-29T02:30:00Z", "2026-03-29T02:30:00Z"}))
        << "once from the minutes, once from the hours";
}

TEST_F(ClockService, findsTheBoundaryAnewWhenTheClockIsSet) {
    const auto listening = clock.boundaries(ClockInterval::topOfTheHour, Calendar::utc()).sink(gather());
    queue->advanceBy(10);
    queue->setWallClock(at("2026-03-28T20:59:50Z"));
    queue->run();
    EXPECT_TRUE(dates.empty()) << "set back: nothing was reached";
    queue->advanceBy(10);
    EXPECT_EQ(texts(dates), Texts{"2026-03-28T21:00:00Z"});

    queue->setWallClock(at("2026-03-28T23:30:00Z"));
    queue->run();
    EXPECT_EQ(texts(dates), (Texts{"2026-03-28T21:00:00Z", "2026-03-28T23:30:00Z"}))
        << "leapt over two: they count as one, now";
    queue->advanceBy(1'800);
    EXPECT_EQ(dates.size(), 3U);
    EXPECT_EQ(dates.back().description(), "2026-03-29T00:00:00Z");
}

TEST_F(ClockService, endsWithItsListenerEvenInsideADelivery) {
    AnyCancellable listening;
    int count = 0;
    listening = clock.boundaries(ClockInterval::topOfTheMinute, Calendar::utc()).sink([&](Date) {
        ++count;
        listening.cancel();
    });
    queue->advanceBy(600);
    EXPECT_EQ(count, 1);

    count = 0;
    listening = clock.timer(1).sink([&](Date) {
        ++count;
        listening = AnyCancellable();
    });
    queue->advanceBy(10);
    EXPECT_EQ(count, 1);
}

TEST(Calendar, startsHoursWhereTheClocksOfTheZoneDo) {
    const auto next = [](const char* zone, ClockUnit unit, const char* date) {
        return Calendar::inZone(zone)->nextStartOf(unit, at(date)).description();
    };
    using enum ClockUnit;
    EXPECT_EQ(Calendar::utc().nextStartOf(minute, Date(-0.5)).description(), "2001-01-01T00:00:00Z");
    EXPECT_EQ(next("Asia/Kathmandu", hour, "2026-01-01T00:00:00Z"), "2026-01-01T00:15:00Z");
    // Put forward from two to three, and back from three to two: an hour starts at the change either way.
    EXPECT_EQ(next("Europe/Berlin", hour, "2026-03-29T00:30:00Z"), "2026-03-29T01:00:00Z");
    EXPECT_EQ(next("Europe/Berlin", hour, "2026-10-25T00:30:00Z"), "2026-10-25T01:00:00Z");
    // By half an hour: from 2:00 to 2:30 no hour starts until 3:00; from 2:00 back to 1:30 the next one is 2:00.
    EXPECT_EQ(next("Australia/Lord_Howe", hour, "2026-10-03T15:10:00Z"), "2026-10-03T16:00:00Z");
    EXPECT_EQ(next("Australia/Lord_Howe", hour, "2026-04-04T14:10:00Z"), "2026-04-04T15:30:00Z");
    // Of local mean time, whose minutes do not start with those of UTC.
    EXPECT_EQ(next("Europe/Berlin", minute, "1890-01-01T00:00:00Z"), "1890-01-01T00:00:32Z");
    // Beyond the tables of the zones.
    EXPECT_EQ(next("Asia/Kolkata", hour, "2090-01-01T00:00:00Z"), "2090-01-01T00:30:00Z");
    for (double seconds : {-63'113'904'000.0, 1e15, -1e15})
        EXPECT_GT(Calendar::inZone("Europe/Berlin")->nextStartOf(hour, Date(seconds)), Date(seconds));
}

}  // namespace
