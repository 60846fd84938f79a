#include "handlers/FCoEPortHandlerImpl.h"

#include "PortTests.h"

namespace brevan::test {
namespace {

const PortKind<CFCoEPortHandlerImpl, FCoEPortMO, FCoEPortQuery> kKind = {
    "getFCoEPort",
    "getFCoEPortBatch",
    "/FCoE_PORT",
    "fcoePortID is empty! ",
    R"({"ID":"7","NAME":"p","LOCATION":"CTE0","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0","RUNSPEED":"-1",
        "WWN":"20ab","INIORTGT":"3","ERRORPACKETS":"4","LOSTPACKETS":"5","OVERFLOWEDPACKETS":"6","STARTTIME":"7",
        "VLANID":"12,13"})",
    &CFCoEPortHandlerImpl::getFCoEPort,
    &CFCoEPortHandlerImpl::getFCoEPortBatch};

BREVAN_INSTANTIATE_PORT(kKind);

class FCoEPortHandler : public SdkTest {};

TEST_F(FCoEPortHandler, ReadsEveryFieldOfAPort)
{
    const FCoEPortMO port = kKind.portOf(manager);
    EXPECT_EQ(port.ID, "7");
    EXPECT_EQ(port.NAME, "p");
    EXPECT_EQ(port.LOCATION, "CTE0");
    EXPECT_EQ(port.HEALTHSTATUS, 1U);
    EXPECT_EQ(port.RUNNINGSTATUS, 10U);
    EXPECT_EQ(port.LOGICTYPE, 0U);
    EXPECT_EQ(port.RUNSPEED, -1);
    EXPECT_EQ(port.WWN, "20ab");
    EXPECT_EQ(port.INIORTGT, 3U);
    EXPECT_EQ(port.ERRORPACKETS, 4U);
    EXPECT_EQ(port.LOSTPACKETS, 5U);
    EXPECT_EQ(port.OVERFLOWEDPACKETS, 6U);
    EXPECT_EQ(port.STARTTIME, 7U);
    EXPECT_EQ(port.VLANID, "12,13");
}

}  // namespace
}  // namespace brevan::test
