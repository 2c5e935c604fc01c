#include <gtest/gtest.h>
#include <kestrel/foundation/calendar.h>
#include <kestrel/foundation/date.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

namespace {

using namespace kestrel;

Date at(const char* text) {
    return Date::parseISO8601(text).value();
}
Calendar in(const char* zone, std::chrono::weekday first = std::chrono::Monday) {
    return Calendar::inZone(zone, first).value();
}

TEST(Dates, convertWithoutLoss) {
    EXPECT_EQ(Date().iso8601(), "2001-01-01T00:00:00Z");
    EXPECT_EQ(Date::distantPast().iso8601(), "0001-01-01T00:00:00Z");
    EXPECT_EQ(Date::distantFuture().iso8601(), "4001-01-01T00:00:00Z");
    EXPECT_EQ(at("2017-03-01").sinceReferenceDate(), 510019200);
    EXPECT_EQ(at("2016-02-29T23:59:59.125-00:30").iso8601(), "2016-03-01T00:29:59.125Z");
    std::mt19937_64 engine(5);
    for (int i = 0; i < 20'000; ++i) {
        // Within some 130 years of the reference date a double tells microseconds apart.
        const std::int64_t count = static_cast<std::int64_t>(engine() % 8'000'000'000'000'000U) - 3'000'000'000'000'000;
        const std::chrono::sys_time<std::chrono::microseconds> time{std::chrono::microseconds(count)};
        EXPECT_EQ(Date::from(time).time(), time);
        if (const auto text = Date::from(time).iso8601()) {
            EXPECT_NEAR(Date::parseISO8601(*text)->sinceReferenceDate(), Date::from(time).sinceReferenceDate(), 1e-6)
                << *text;
        }
    }
    EXPECT_FALSE(Date::fromSeconds(std::nan("")));
    EXPECT_DEATH(Date(std::nan("")), "^KestrelService: .*not a number");
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_LT(Date::distantFuture(), Date(infinity));
    EXPECT_EQ(Date(infinity).time(), (std::chrono::sys_time<std::chrono::microseconds>::max()));
    EXPECT_FALSE(Calendar::utc().isSameDay(Date(infinity), Date()));
    EXPECT_NEAR(Date::now().since1970(), static_cast<double>(std::time(nullptr)), 2);
}

TEST(Days, startAtTheirFirstMoment) {
    const Calendar berlin = in("Europe/Berlin");
    EXPECT_EQ(berlin.startOfDay(at("2017-06-30T22:30:00Z")), at("2017-06-30T22:00:00Z"))
        << "the next day has begun in Berlin";
    EXPECT_TRUE(berlin.isSameDay(at("2017-06-30T22:00:00Z"), at("2017-07-01T21:59:59Z")));
    EXPECT_FALSE(berlin.isSameDay(at("2017-06-30T21:59:59Z"), at("2017-06-30T22:00:00Z")));
    EXPECT_TRUE(berlin.isToday(at("2017-06-30T22:00:00Z"), at("2017-07-01T12:00:00Z")));

    // Clocks went forward at midnight: the day of 2018-11-04 began at one o'clock in São Paulo.
    const Calendar saoPaulo = in("America/Sao_Paulo");
    EXPECT_EQ(saoPaulo.startOfDay(at("2018-11-04T12:00:00Z")), at("2018-11-04T03:00:00Z"));
    EXPECT_EQ(saoPaulo.startOfDay(at("2018-11-05T12:00:00Z")) - saoPaulo.startOfDay(at("2018-11-04T12:00:00Z")),
              23 * 3600);
    // Clocks went back over midnight in Havana: the first of the two midnights starts the day.
    const Calendar havana = in("America/Havana");
    EXPECT_EQ(havana.startOfDay(at("2017-11-05T12:00:00Z")), at("2017-11-05T04:00:00Z"));
    EXPECT_EQ(havana.daysBetween(at("2017-11-04T12:00:00Z"), at("2017-11-06T04:59:59Z")), 1);
    EXPECT_EQ(havana.daysBetween(at("2017-11-06T05:00:00Z"), at("2017-11-04T12:00:00Z")), -2);
    EXPECT_FALSE(Calendar::inZone("Atlantis/Capital"));
}

TEST(Days, keepTheirRulesAfterTheTables) {
    // Summer time goes on after 2037, on the last Sundays of March and October.
    const Calendar berlin = in("Europe/Berlin");
    for (const int year : {2037, 2038, 2039, 2040, 2064, 2100, 2399, 9998}) {
        const std::string text = std::to_string(year);
        EXPECT_EQ(berlin.startOfDay(at((text + "-07-01T12:00:00Z").c_str())), at((text + "-06-30T22:00:00Z").c_str()))
            << year;
        EXPECT_EQ(berlin.startOfDay(at((text + "-01-15T12:00:00Z").c_str())), at((text + "-01-14T23:00:00Z").c_str()))
            << year;
    }
    EXPECT_EQ(berlin.startOfDay(at("2038-03-29T12:00:00Z")) - berlin.startOfDay(at("2038-03-28T12:00:00Z")), 23 * 3600);
    EXPECT_EQ(in("America/New_York").startOfDay(at("2050-07-01T12:00:00Z")), at("2050-07-01T04:00:00Z"));
    EXPECT_EQ(in("Asia/Tokyo").startOfYear(at("2044-12-31T16:00:00Z")), at("2044-12-31T15:00:00Z"));
}

TEST(Days, endWhereCalendarsEnd) {
    const Calendar auckland = in("Pacific/Auckland");
    for (const double far : {1e300, 1e18, 1e13, 7e11})
        EXPECT_FALSE(auckland.isSameDay(Date(far), Date(-far))) << far;
    EXPECT_TRUE(auckland.isSameDay(Date(7e11), Date(7e11 + 1)));
    EXPECT_DEATH((void)auckland.startOfMonth(Date(2e12)), "outside the years");
    EXPECT_DEATH((void)auckland.startOfDay(Date(1e300)), "outside the years");
    EXPECT_EQ(Calendar::utc(), in("UTC"));
    EXPECT_NE(Calendar::utc(std::chrono::Sunday), Calendar::utc());
}

TEST(Periods, startOnTheirFirstDay) {
    const Calendar tokyo = in("Asia/Tokyo", std::chrono::Sunday);
    const Date moment = at("2017-08-16T12:00:00Z");
    EXPECT_EQ(tokyo.startOfWeek(moment), at("2017-08-12T15:00:00Z"));
    EXPECT_EQ(in("Asia/Tokyo", std::chrono::Monday).startOfWeek(moment), at("2017-08-13T15:00:00Z"));
    EXPECT_EQ(in("Asia/Tokyo", std::chrono::Thursday).startOfWeek(moment), at("2017-08-09T15:00:00Z"));
    EXPECT_EQ(tokyo.startOfMonth(moment), at("2017-07-31T15:00:00Z"));
    EXPECT_EQ(tokyo.startOfQuarter(moment), at("2017-06-30T15:00:00Z"));
    EXPECT_EQ(tokyo.startOfYear(moment), at("2016-12-31T15:00:00Z"));
    EXPECT_EQ(Calendar::utc().startOfQuarter(at("2017-12-31T23:59:59Z")), at("2017-10-01"));
    EXPECT_EQ(Calendar::utc().startOfWeek(at("2017-01-01T00:00:00Z")), at("2016-12-26"));
}

TEST(TheCurrentCalendar, followsTheEnvironment) {
    const auto currentIn = [](const char* zone) {
        setenv("TZ", zone, 1);
        return std::string(Calendar::current().timeZoneName());
    };
    const char* before = std::getenv("TZ");
    const std::string kept = before != nullptr ? before : "";
    EXPECT_EQ(currentIn("America/New_York"), "America/New_York");
    EXPECT_EQ(currentIn(":Asia/Tokyo"), "Asia/Tokyo");
    EXPECT_EQ(currentIn("No/Such_Zone"), "UTC");
    if (before != nullptr) {
        setenv("TZ", kept.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
    EXPECT_EQ(Calendar::current().firstWeekday(), std::chrono::Monday) << "the C locale says nothing of weeks";
}

}  // namespace
