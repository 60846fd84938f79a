#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

struct HostAndGroup : ArrayFixture {
    std::string host = client.make("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}});
    std::string group = client.make("/hostgroup", {{"TYPE", 14}, {"NAME", "g"}, {"DESCRIPTION", "d"}});

    Reply add(const std::string& toGroup) { return client.associate("/hostgroup/associate", toGroup, 21, host); }
    std::string removal() const { return "/host/associate?ID=" + group + "&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + host; }
};

}  // namespace

TEST(HostGroupResource, ReadsBack)
{
    HostAndGroup array;
    const Fields expected{
        {"ID", array.group}, {"NAME", "g"}, {"TYPE", "14"}, {"DESCRIPTION", "d"}, {"ISADD2MAPPINGVIEW", "false"}};
    EXPECT_EQ(array.client.get("/hostgroup/" + array.group).data, expected);
    EXPECT_EQ(array.client.get("/hostgroup/77").code, kUnknownHostGroup);
}

TEST(HostGroupResource, TakesAHostOnceButAHostIntoManyGroups)
{
    HostAndGroup array;
    const std::string second = array.client.make("/hostgroup", {{"NAME", "g2"}});
    EXPECT_EQ(array.add(array.group).code, 0);
    EXPECT_EQ(array.add(array.group).code, kHostAlreadyInHostGroup);
    EXPECT_EQ(array.add(second).code, 0);
    const Reply groups = array.client.get("/hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + array.host);
    ASSERT_EQ(groups.data.size(), 2u);
    EXPECT_EQ(groups.data.at(1).at("ID"), second);
}

TEST(HostGroupResource, LosesAHostThroughTheHostsPath)
{
    HostAndGroup array;
    EXPECT_EQ(array.client.remove(array.removal()).code, kNotInHostGroup);
    array.add(array.group);
    EXPECT_EQ(array.client.remove("/hostgroup" + array.removal().substr(5)).code, kUnknownHostGroup);
    EXPECT_EQ(array.client.get("/host/" + array.host).text("ISADD2HOSTGROUP"), "true");
    EXPECT_EQ(array.client.remove(array.removal()).code, 0);
    EXPECT_EQ(array.client.get("/host/" + array.host).text("ISADD2HOSTGROUP"), "false");
}

TEST(HostGroupResource, IsFoundThroughItsViewAndHeldByIt)
{
    HostAndGroup array;
    const std::string view = array.client.make("/mappingview", {{"NAME", "v"}});
    array.client.putAssociation("/mappingview/create_associate", view, 14, array.group);
    EXPECT_EQ(array.client.get("/hostgroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=" + view).data.at(0).at("ID"),
              array.group);
    EXPECT_EQ(array.client.remove("/hostgroup/" + array.group).code, kHostGroupInView);
    EXPECT_EQ(array.client.remove("/mappingview/" + view).code, 0);
    EXPECT_EQ(array.client.remove("/hostgroup/" + array.group).code, 0);
}
