#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(PoolResource, TellsWhatAPoolHasAndWhatIsLeft)
{
    ServerOptions options = testOptions();
    options.pools = {{"0", "fast", 1}, {"4", "slow", 2}};
    ArrayFixture array(options);
    array.client.make("/lun", {{"NAME", "l"}, {"PARENTID", "4"}, {"CAPACITY", 2097152}});
    const Reply pool = array.client.get("/storagepool/4");
    EXPECT_EQ(pool.text("NAME"), "slow");
    EXPECT_EQ(pool.text("TOTALCAPACITY"), "4194304");
    EXPECT_EQ(pool.text("FREECAPACITY"), "2097152");
    EXPECT_EQ(array.client.get("/storagepool").data.size(), 2u);
    EXPECT_EQ(array.client.get("/storagepool/1").code, kUnknownPool);
}
