#include <brevan/PortRecords.h>

#include <gtest/gtest.h>

namespace brevan::test {
namespace {

template <class Query>
class PortQuery : public testing::Test {
};

using Queries = testing::Types<FCPortQuery, FCoEPortQuery, ETHPortQuery>;
TYPED_TEST_SUITE(PortQuery, Queries);

TYPED_TEST(PortQuery, AsksForEverythingWhenFresh)
{
    const TypeParam query;
    EXPECT_EQ(query.condition.ID, "");
    EXPECT_EQ(query.condition.NAME, "");
    EXPECT_EQ(query.condition.LOCATION, "");
    EXPECT_EQ(query.condition.HEALTHSTATUS, 0U);
    EXPECT_EQ(query.condition.RUNNINGSTATUS, 0U);
    EXPECT_EQ(query.condition.LOGICTYPE, 100U);
    EXPECT_EQ(query.rangeStart, 0U);
    EXPECT_EQ(query.rangeCount, 0U);
}

TYPED_TEST(PortQuery, CopiesItsCondition)
{
    auto condition = TypeParam().condition;
    condition.NAME = "p1";
    condition.LOGICTYPE = 0;
    const TypeParam query(condition, 18446744073709551615U, 3);
    condition.NAME = "p2";
    const TypeParam copy = query;
    EXPECT_EQ(copy.condition.NAME, "p1");
    EXPECT_EQ(copy.condition.LOGICTYPE, 0U);
    EXPECT_EQ(copy.rangeStart, 18446744073709551615U);
    EXPECT_EQ(copy.rangeCount, 3U);
}

TEST(FCPortRecord, HasNoConfiguredSpeedWhenFresh)
{
    const FCPortMO port;
    EXPECT_EQ(port.CONFSPEED, 18446744073709551615U);
    EXPECT_EQ(port.RUNSPEED, 0);
    EXPECT_EQ(port.INIORTGT + port.FCRUNMODE, 0U);
    EXPECT_EQ(port.LOSTSIGNALS + port.BADCHARNUMBER + port.LOSTSYNC + port.LINKFAIL, 0U);
    EXPECT_EQ(port.STARTTIME + port.FLOGINDELAYTIMES + port.MAXSUPPORTSPEED, 0U);
    EXPECT_EQ(port.WWN, "");
}

TEST(FCoEPortRecord, CountsFromZeroWhenFresh)
{
    const FCoEPortMO port;
    EXPECT_EQ(port.RUNSPEED, 0);
    EXPECT_EQ(port.ERRORPACKETS + port.LOSTPACKETS + port.OVERFLOWEDPACKETS + port.STARTTIME, 0U);
    EXPECT_EQ(port.WWN + port.VLANID, "");
}

TEST(ETHPortRecord, CountsFromZeroWhenFresh)
{
    const ETHPortMO port;
    EXPECT_EQ(port.MTU + port.ERRORPACKETS + port.LOSTPACKETS + port.OVERFLOWEDPACKETS + port.STARTTIME + port.SPEED, 0U);
    EXPECT_EQ(port.MACADDRESS + port.ISCSITCPPORT + port.ISCSINAME, "");
    EXPECT_EQ(port.IPV4MASK + port.IPV4ADDRESS + port.IPV6MASK + port.IPV6ADDRESS, "");
}

}  // namespace
}  // namespace brevan::test
