#include "simulator/Link.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace std::chrono_literals;

namespace {

constexpr Link::Clock::time_point kNow{1h};

}  // namespace

TEST(Link, CostsNothingUntilItIsAskedTo)
{
    Link link;
    EXPECT_EQ(link.carry(1000000, kNow), 0us);
}

TEST(Link, AddsItsLatencyToEveryAnswer)
{
    Link link;
    link.set({5ms, 0});
    EXPECT_EQ(link.carry(1000000, kNow), 5ms);
    EXPECT_EQ(link.carry(0, kNow), 5ms);
}

TEST(Link, LetsAnswersWaitForThoseBeforeThem)
{
    Link link;
    link.set({5ms, 1000});
    EXPECT_EQ(link.carry(100, kNow), 105ms);
    EXPECT_EQ(link.carry(100, kNow), 205ms);
    EXPECT_EQ(link.carry(100, kNow + 150ms), 155ms);
    EXPECT_EQ(link.carry(100, kNow + 10s), 105ms);
}

TEST(Link, IsFreeAgainWhenItIsSetAnew)
{
    Link link;
    link.set({0ms, 1});
    link.carry(3600, kNow);
    link.set({0ms, 1000});
    EXPECT_EQ(link.carry(100, kNow), 100ms);
    EXPECT_EQ(link.speed().bytesPerSecond, 1000u);
}
