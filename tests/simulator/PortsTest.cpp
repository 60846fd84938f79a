#include "simulator/Ports.h"

#include "ArrayClient.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

std::string detail(Array& array, const std::string& port, const std::string& key)
{
    return array.database.text("SELECT json_extract(details, '$.' || ?) FROM port WHERE name = ?", {key, port});
}

}  // namespace

TEST(Ports, CarryTheAddressesThatTheArrayListensOn)
{
    ServerOptions options = testOptions();
    options.address = "127.0.0.2";
    options.lioPortal = "127.0.0.3:3261";
    options.lioTarget = "iqn.lab:target";
    Array array(options);
    furnish(array);
    EXPECT_EQ(detail(array, "A.MGMT0", "IPV4ADDRESS"), "127.0.0.2");
    EXPECT_EQ(detail(array, "A.ETH0", "IPV4ADDRESS"), "127.0.0.3");
    EXPECT_EQ(detail(array, "A.ETH0", "ISCSITCPPORT"), "3261");
    EXPECT_EQ(detail(array, "A.ETH0", "ISCSINAME"), "iqn.lab:target");
}

TEST(Ports, HavePortNamesOfTheirOwn)
{
    Array array(testOptions());
    furnish(array);
    std::set<std::string> names;
    for (const char* port : {"A.FC0", "B.FC0", "A.FCoE0", "B.FCoE0"}) {
        const std::string name = detail(array, port, "WWN");
        EXPECT_EQ(name.size(), 16u) << name;
        EXPECT_TRUE(names.insert(name).second) << name;
    }
}

TEST(Ports, NameTheTargetAfterTheDeviceUnlessToldOtherwise)
{
    ServerOptions options;
    options.deviceId = "a1";
    EXPECT_EQ(targetName(options), "iqn.2020-01.brevan:array-a1");
    options.lioTarget = "iqn.lab:target";
    EXPECT_EQ(targetName(options), "iqn.lab:target");
}
