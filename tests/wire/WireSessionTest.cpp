#include "handlers/EthPortHandlerImpl.h"
#include "handlers/FCPortHandlerImpl.h"
#include "handlers/FCoEPortHandlerImpl.h"
#include "wire/WireFixture.h"

namespace brevan::test {
namespace {

class WireSession : public WireTest {
protected:
    int logIn(const std::string& password)
    {
        return manager.loginDevice("192.0.2.10", 8088, "admin", password, USERTYPE_LOCAL);
    }
};

class WirePorts : public WireTest {};

}  // namespace

TEST_F(WireSession, IsOpenedKeptAliveAndClosed)
{
    exchange("login");
    EXPECT_EQ(logIn("secret"), 1);
    exchange("keep-alive");
    EXPECT_EQ(manager.keepAlive(), 1);
    exchange("logout");
    EXPECT_EQ(manager.logoutDevice(), 1);
    exchange("keep-alive-after-logout");
    EXPECT_EQ(manager.keepAlive(), 0);
}

TEST_F(WireSession, IsRefusedWithAWrongPassword)
{
    exchange("login-with-a-wrong-password");
    EXPECT_EQ(logIn("wrong"), 0);
}

TEST_F(WirePorts, OfFibreChannelAreRead)
{
    exchange("read-fc-port");
    const FCPortMO port = CFCPortHandlerImpl(&manager).getFCPort("1");
    EXPECT_EQ(port.NAME + port.LOCATION + port.WWN, "A.FC0A.0<wwn>");
    EXPECT_EQ(port.RUNNINGSTATUS, 10u);
    EXPECT_EQ(port.LOGICTYPE, 0u);
    EXPECT_EQ(port.RUNSPEED, 16000);
    EXPECT_EQ(port.CONFSPEED, 0u);
    EXPECT_EQ(port.INIORTGT, 3u);
    EXPECT_EQ(port.FCRUNMODE, 1u);
    EXPECT_EQ(port.STARTTIME, 1700000000u);
    EXPECT_EQ(port.MAXSUPPORTSPEED, 16000u);
}

TEST_F(WirePorts, OfFibreChannelAreListed)
{
    exchange("fc-ports");
    FCPortMO condition;
    condition.NAME = "A.FC0";
    condition.LOGICTYPE = 0;
    FCPortQuery query(condition, 0, 100);
    const auto ports = CFCPortHandlerImpl(&manager).getFCPortBatch(query);
    ASSERT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports[0].ID, "1");
    EXPECT_EQ(ports[0].MAXSUPPORTSPEED, 16000u);
}

TEST_F(WirePorts, OfFcoeAreReadAndListed)
{
    exchange("read-fcoe-port");
    const FCoEPortMO port = CFCoEPortHandlerImpl(&manager).getFCoEPort("3");
    EXPECT_EQ(port.NAME + port.LOCATION + port.WWN + port.VLANID, "A.FCoE0A.1<wwn>100");
    EXPECT_EQ(port.RUNSPEED, 10000);
    exchange("fcoe-ports");
    FCoEPortQuery all;
    const auto ports = CFCoEPortHandlerImpl(&manager).getFCoEPortBatch(all);
    ASSERT_EQ(ports.size(), 2u);
    EXPECT_EQ(ports[1].NAME, "B.FCoE0");
}

TEST_F(WirePorts, OfEthernetAreReadAndListed)
{
    exchange("read-eth-port");
    const ETHPortMO port = CEthPortHandlerImpl(&manager).getETHPort("5");
    EXPECT_EQ(port.NAME + port.MACADDRESS + port.ISCSITCPPORT + port.ISCSINAME, "A.ETH0<mac>3260<name>");
    EXPECT_EQ(port.IPV4MASK + " " + port.IPV4ADDRESS + port.IPV6MASK + port.IPV6ADDRESS, "255.0.0.0 127.0.0.1");
    EXPECT_EQ(port.MTU, 1500u);
    EXPECT_EQ(port.SPEED, 10000u);
    exchange("eth-ports-of-management");
    ETHPortMO condition;
    condition.LOGICTYPE = 3;
    ETHPortQuery query(condition, 0, 0);
    const auto ports = CEthPortHandlerImpl(&manager).getETHPortBatch(query);
    ASSERT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports[0].NAME, "A.MGMT0");
    EXPECT_EQ(ports[0].LOGICTYPE, 3u);
}

}  // namespace brevan::test
