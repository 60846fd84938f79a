#include "handlers/EthPortHandlerImpl.h"

#include "PortTests.h"

namespace brevan::test {
namespace {

const PortKind<CEthPortHandlerImpl, ETHPortMO, ETHPortQuery> kKind = {
    "getETHPort",
    "getETHPortBatch",
    "/ETH_PORT",
    "ethPortID is empty! ",
    R"({"ID":"7","NAME":"p","LOCATION":"CTE0","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0","MACADDRESS":"aa:bb",
        "INIORTGT":"3","MTU":"1500","ISCSITCPPORT":"3260","ISCSINAME":"iqn.a","ERRORPACKETS":"4","LOSTPACKETS":"5",
        "OVERFLOWEDPACKETS":"6","STARTTIME":"7","SPEED":"10000","IPV4MASK":"255.0.0.0","IPV4ADDRESS":"10.0.0.1",
        "IPV6MASK":"64","IPV6ADDRESS":"fe80::1"})",
    &CEthPortHandlerImpl::getETHPort,
    &CEthPortHandlerImpl::getETHPortBatch};

BREVAN_INSTANTIATE_PORT(kKind);

class EthPortHandler : public SdkTest {};

TEST_F(EthPortHandler, ReadsEveryFieldOfAPort)
{
    const ETHPortMO port = kKind.portOf(manager);
    EXPECT_EQ(port.ID, "7");
    EXPECT_EQ(port.NAME, "p");
    EXPECT_EQ(port.LOCATION, "CTE0");
    EXPECT_EQ(port.HEALTHSTATUS, 1U);
    EXPECT_EQ(port.RUNNINGSTATUS, 10U);
    EXPECT_EQ(port.LOGICTYPE, 0U);
    EXPECT_EQ(port.MACADDRESS, "aa:bb");
    EXPECT_EQ(port.INIORTGT, 3U);
    EXPECT_EQ(port.MTU, 1500U);
    EXPECT_EQ(port.ISCSITCPPORT, "3260");
    EXPECT_EQ(port.ISCSINAME, "iqn.a");
    EXPECT_EQ(port.ERRORPACKETS, 4U);
    EXPECT_EQ(port.LOSTPACKETS, 5U);
    EXPECT_EQ(port.OVERFLOWEDPACKETS, 6U);
    EXPECT_EQ(port.STARTTIME, 7U);
    EXPECT_EQ(port.SPEED, 10000U);
    EXPECT_EQ(port.IPV4MASK, "255.0.0.0");
    EXPECT_EQ(port.IPV4ADDRESS, "10.0.0.1");
    EXPECT_EQ(port.IPV6MASK, "64");
    EXPECT_EQ(port.IPV6ADDRESS, "fe80::1");
}

}  // namespace
}  // namespace brevan::test
