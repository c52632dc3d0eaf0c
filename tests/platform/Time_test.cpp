#include "raylume/platform/Time.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/platform/ScopedEnvironment.h"

namespace {

constexpr std::int64_t kLastSecond = 32535215999;

TEST(UtcTime, begins_with_the_year_1970_and_ends_with_the_year_3000)
{
    const auto first = platform::utcTime(0);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->year, 1970);
    EXPECT_EQ(first->dayOfYear, 1);
    EXPECT_EQ(first->hour, 0);
    EXPECT_EQ(first->minute, 0);
    const auto last = platform::utcTime(kLastSecond);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->year, 3000);
    EXPECT_EQ(last->dayOfYear, 365);
    EXPECT_EQ(last->hour, 23);
    EXPECT_EQ(last->minute, 59);
}

TEST(CalendarTimes, outside_that_span_are_refused)
{
    const std::int64_t outside[] = {-1, kLastSecond + 1, std::numeric_limits<std::int64_t>::min(),
                                    std::numeric_limits<std::int64_t>::max()};
    for (const std::int64_t time : outside) {
        EXPECT_FALSE(platform::utcTime(time)) << time;
        EXPECT_FALSE(platform::localTime(time)) << time;
    }
}

TEST(LocalTime, follows_the_zone_that_the_environment_names_now)
{
    {
        const ScopedVariable zone("TZ", "XXX3");
        EXPECT_EQ(platform::localTime(0)->year, 1969);
        EXPECT_EQ(platform::localTime(0)->hour, 21);
    }
    const ScopedVariable zone("TZ", "XXX-2:30");
    EXPECT_EQ(platform::localTime(0)->hour, 2);
    EXPECT_EQ(platform::localTime(0)->minute, 30);
    EXPECT_EQ(platform::utcTime(0)->hour, 0);
}

TEST(LocalTime, keeps_summer_time)
{
    const ScopedVariable zone("TZ", "XXX-1YYY,M3.5.0,M10.5.0/3");
    EXPECT_EQ(platform::localTime(1751371200)->hour, 14);  // 2025-07-01T12:00:00Z
    EXPECT_EQ(platform::localTime(1735732800)->hour, 13);  // 2025-01-01T12:00:00Z
}

}  // namespace
