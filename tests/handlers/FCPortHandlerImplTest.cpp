#include "handlers/FCPortHandlerImpl.h"

#include "PortTests.h"

namespace brevan::test {
namespace {

const PortKind<CFCPortHandlerImpl, FCPortMO, FCPortQuery> kKind = {
    "getFCPort",
    "getFCPortBatch",
    "/FC_PORT",
    "fcPortID is empty! ",
    R"({"ID":"7","NAME":"p","LOCATION":"CTE0","HEALTHSTATUS":"1","RUNNINGSTATUS":"10","LOGICTYPE":"0","RUNSPEED":"-1",
        "CONFSPEED":"2","WWN":"20ab","INIORTGT":"3","FCRUNMODE":"4","LOSTSIGNALS":"5","BADCHARNUMBER":"6","LOSTSYNC":"7",
        "LINKFAIL":"8","STARTTIME":"9","FLOGINDELAYTIMES":"10","MAXSUPPORTSPEED":"11"})",
    &CFCPortHandlerImpl::getFCPort,
    &CFCPortHandlerImpl::getFCPortBatch};

BREVAN_INSTANTIATE_PORT(kKind);

class FCPortHandler : public SdkTest {};

TEST_F(FCPortHandler, ReadsEveryFieldOfAPort)
{
    const FCPortMO port = kKind.portOf(manager);
    EXPECT_EQ(port.ID, "7");
    EXPECT_EQ(port.NAME, "p");
    EXPECT_EQ(port.LOCATION, "CTE0");
    EXPECT_EQ(port.HEALTHSTATUS, 1U);
    EXPECT_EQ(port.RUNNINGSTATUS, 10U);
    EXPECT_EQ(port.LOGICTYPE, 0U);
    EXPECT_EQ(port.RUNSPEED, -1);
    EXPECT_EQ(port.CONFSPEED, 2U);
    EXPECT_EQ(port.WWN, "20ab");
    EXPECT_EQ(port.INIORTGT, 3U);
    EXPECT_EQ(port.FCRUNMODE, 4U);
    EXPECT_EQ(port.LOSTSIGNALS, 5U);
    EXPECT_EQ(port.BADCHARNUMBER, 6U);
    EXPECT_EQ(port.LOSTSYNC, 7U);
    EXPECT_EQ(port.LINKFAIL, 8U);
    EXPECT_EQ(port.STARTTIME, 9U);
    EXPECT_EQ(port.FLOGINDELAYTIMES, 10U);
    EXPECT_EQ(port.MAXSUPPORTSPEED, 11U);
}

TEST_F(FCPortHandler, ReturnsADefaultRecordWhereTheArrayHasNone)
{
    expect("GET /FC_PORT/7", answer(R"({"NAME":"p"})"));
    const FCPortMO port = CFCPortHandlerImpl(&manager).getFCPort("7");
    EXPECT_EQ(port.ID + port.NAME, "");
    EXPECT_EQ(port.LOGICTYPE, 100U);
    EXPECT_EQ(port.CONFSPEED, UINT64_MAX);
}

}  // namespace
}  // namespace brevan::test
