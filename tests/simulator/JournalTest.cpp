#include "simulator/Journal.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

namespace {

JournalEntry entry(std::uint64_t number, const std::string& body = "")
{
    JournalEntry made;
    made.number = number;
    made.body = body;
    return made;
}

std::vector<std::uint64_t> numbers(const std::vector<JournalEntry>& entries)
{
    std::vector<std::uint64_t> found;
    for (const JournalEntry& each : entries) {
        found.push_back(each.number);
    }
    return found;
}

}  // namespace

TEST(Journal, KeepsRequestsInTheOrderInWhichTheyArrived)
{
    Journal journal(100);
    EXPECT_EQ(journal.arrive(), 1u);
    EXPECT_EQ(journal.arrive(), 2u);
    EXPECT_EQ(journal.arrive(), 3u);
    for (const std::uint64_t number : {2U, 3U, 1U}) {
        journal.add(entry(number));
    }
    EXPECT_EQ(numbers(journal.entries()), (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(numbers(journal.entries(1)), (std::vector<std::uint64_t>{2, 3}));
    EXPECT_TRUE(journal.entries(3).empty());
}

TEST(Journal, KeepsTheLatestAndCountsAll)
{
    Journal journal(20);
    for (int index = 0; index < 25; ++index) {
        journal.add(entry(journal.arrive()));
    }
    EXPECT_EQ(journal.entries().size(), 20u);
    EXPECT_EQ(journal.entries().front().number, 6u);
    EXPECT_EQ(journal.count(), 25u);
    journal.clear();
    EXPECT_EQ(journal.count(), 0u);
    EXPECT_TRUE(journal.entries().empty());
    EXPECT_EQ(journal.arrive(), 1u);
}

TEST(Journal, BoundsItsBytesHoweverLongBodiesAre)
{
    Journal journal(1000000);
    const std::string body(1000000, 'x');
    for (int index = 0; index < 100; ++index) {
        journal.add(entry(journal.arrive(), body));
    }
    EXPECT_GT(journal.entries(90).size(), 9u);
    EXPECT_LT(journal.entries().size(), 68u);
}

TEST(Journal, RemembersNothingWhereItIsAskedTo)
{
    Journal journal(0);
    journal.add(entry(journal.arrive()));
    EXPECT_TRUE(journal.entries().empty());
    EXPECT_EQ(journal.count(), 1u);
}
