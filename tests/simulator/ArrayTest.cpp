#include "simulator/Array.h"

#include "ArrayClient.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(Array, IsFurnishedOnce)
{
    Array array(testOptions());
    furnish(array);
    const std::int64_t ports = array.database.number("SELECT count(*) FROM port");
    EXPECT_GT(ports, 0);
    furnish(array);
    EXPECT_EQ(array.database.number("SELECT count(*) FROM port"), ports);
    EXPECT_EQ(array.database.number("SELECT count(*) FROM pool"), 1);
}

TEST(Array, IsGivenTheInitiatorsOfItsOptionsEachTime)
{
    ServerOptions options = testOptions();
    options.iscsiInitiators = {"iqn.lab:a", "iqn.lab:a"};
    Array array(options);
    furnish(array);
    array.options.iscsiInitiators.push_back("iqn.lab:b");
    furnish(array);
    EXPECT_EQ(array.database.number("SELECT count(*) FROM iscsi_initiator"), 2);
}

TEST(Array, NamesVolumesOneAfterTheOther)
{
    Array array(testOptions());
    const std::string first = newWwn(array);
    const std::string second = newWwn(array);
    EXPECT_EQ(first.substr(0, 16), wwnPrefix("210000000001"));
    EXPECT_EQ(first.substr(16), "0000000000000001");
    EXPECT_EQ(second.substr(16), "0000000000000002");
    EXPECT_EQ(wwnPrefix("210000000001").size(), 16u);
    EXPECT_NE(wwnPrefix("a"), wwnPrefix("b"));
}
