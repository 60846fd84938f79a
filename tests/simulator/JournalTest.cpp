#include "simulator/Journal.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

TEST(Journal, NumbersRequestsInTheirOrder)
{
    Journal journal;
    journal.add({0, "GET", "/lun/1", "GET /lun/{id}", 0});
    journal.add({0, "POST", "/lun", "POST /lun", 7});
    const auto entries = journal.entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].number, 1u);
    EXPECT_EQ(entries[1].number, 2u);
    EXPECT_EQ(entries[1].path, "/lun");
}

TEST(Journal, KeepsTheLatestAndCountsAll)
{
    Journal journal;
    for (int index = 0; index < 20005; ++index) {
        journal.add({});
    }
    EXPECT_EQ(journal.entries().size(), 20000u);
    EXPECT_EQ(journal.entries().front().number, 6u);
    EXPECT_EQ(journal.count(), 20005u);
    journal.clear();
    EXPECT_EQ(journal.count(), 0u);
}
