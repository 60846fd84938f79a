#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(HostResource, ReadsBackWithItsParentTypeAsANumber)
{
    ArrayFixture array;
    const std::string id = array.client.make("/host", {{"TYPE", 21},
                                                       {"NAME", "h"},
                                                       {"OPERATIONSYSTEM", 7},
                                                       {"LOCATION", "rack"},
                                                       {"DESCRIPTION", "d"},
                                                       {"IP", "127.0.0.9"}});
    const Fields expected{{"ID", id},
                          {"NAME", "h"},
                          {"TYPE", "21"},
                          {"PARENTTYPE", 0},
                          {"PARENTID", ""},
                          {"LOCATION", "rack"},
                          {"HEALTHSTATUS", "1"},
                          {"RUNNINGSTATUS", "2"},
                          {"DESCRIPTION", "d"},
                          {"OPERATIONSYSTEM", "7"},
                          {"ISADD2HOSTGROUP", "false"},
                          {"IP", "127.0.0.9"}};
    EXPECT_EQ(array.client.get("/host/" + id).data, expected);
    EXPECT_EQ(array.client.get("/host/77").code, kUnknownHost);
}

TEST(HostResource, CanBeBornIntoAHostGroup)
{
    ArrayFixture array;
    const std::string group = array.client.make("/hostgroup", {{"NAME", "g"}});
    const std::string id =
        array.client.make("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}, {"PARENTTYPE", 14}, {"PARENTID", group}});
    const Reply host = array.client.get("/host/" + id);
    EXPECT_EQ(host.data.at("PARENTTYPE"), 14);
    EXPECT_EQ(host.text("PARENTID"), group);
    EXPECT_EQ(host.text("ISADD2HOSTGROUP"), "true");
}

TEST(HostResource, NeedsAnOperatingSystemAndAParentOfTheRightKind)
{
    ArrayFixture array;
    EXPECT_EQ(array.client.post("/host", {{"NAME", "h"}}).code, kMissingParameter);
    EXPECT_EQ(array.client.post("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}, {"PARENTTYPE", 256}}).code, kBadParameter);
    EXPECT_EQ(
        array.client.post("/host", {{"NAME", "h"}, {"OPERATIONSYSTEM", 0}, {"PARENTTYPE", 14}, {"PARENTID", "77"}}).code,
        kUnknownHostGroup);
    EXPECT_EQ(array.client.get("/host/count").text("COUNT"), "0");
}

TEST(HostResource, CannotBeRemovedWhileItIsUsed)
{
    ArrayFixture array;
    array.server.addIscsiInitiator("iqn.2020-01.lab:host");
    const Chain chain(array.client, "iqn.2020-01.lab:host", "1");
    EXPECT_EQ(array.client.remove("/host/" + chain.host).code, kHostInUse);
    array.client.remove("/host/associate?ID=" + chain.hostGroup + "&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + chain.host);
    EXPECT_EQ(array.client.remove("/host/" + chain.host).code, kHostInUse);
    array.client.put("/iscsi_initiator/remove_iscsi_from_host", {{"ID", chain.initiator}});
    EXPECT_EQ(array.client.remove("/host/" + chain.host).code, 0);
}
