#include "simulator/Amounts.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

TEST(Amounts, ReadsTimesInEveryUnit)
{
    const std::pair<const char*, long long> kTimes[] = {{"7us", 7}, {"5ms", 5000}, {"2s", 2000000}, {"60min", 3600000000}};
    for (const auto& [text, micros] : kTimes) {
        ASSERT_TRUE(readDuration(text)) << text;
        EXPECT_EQ(readDuration(text)->count(), micros) << text;
    }
    EXPECT_EQ(durationText(Microseconds(5000)), "5ms");
    EXPECT_EQ(durationText(Microseconds(1500000)), "1500ms");
    EXPECT_EQ(durationText(Microseconds(120000000)), "2min");
    EXPECT_EQ(durationText(Microseconds(0)), "0s");
}

TEST(Amounts, ReadsRatesInEveryUnit)
{
    const std::pair<const char*, std::uint64_t> kRates[] = {
        {"9B/s", 9}, {"64kB/s", 64000}, {"1MB/s", 1000000}, {"2GB/s", 2000000000}, {"unlimited", 0}};
    for (const auto& [text, bytes] : kRates) {
        ASSERT_TRUE(readRate(text)) << text;
        EXPECT_EQ(*readRate(text), bytes) << text;
        EXPECT_EQ(rateText(bytes), text);
    }
}

TEST(Amounts, RefusesEverythingElse)
{
    for (const char* text : {"", "5", "ms", "-5ms", "5 ms", "1.5s", "5MS", "61min", "99999999999999999999s", "5ms "}) {
        EXPECT_FALSE(readDuration(text)) << text;
    }
    for (const char* text : {"", "1", "MB/s", "1MB", "0MB/s", "-1B/s", "1mb/s", "1001GB/s", "99999999999999999999B/s"}) {
        EXPECT_FALSE(readRate(text)) << text;
    }
}
