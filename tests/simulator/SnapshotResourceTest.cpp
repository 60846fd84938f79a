#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(SnapshotResource, ReadsBackWithItsParentTypeAsANumber)
{
    ArrayFixture array;
    const std::string lun = array.client.makeLun("source");
    const std::string id = array.client.make("/snapshot", {{"NAME", "s"}, {"PARENTID", lun}, {"DESCRIPTION", "d"}});
    const Fields expected{{"ID", id},
                          {"NAME", "s"},
                          {"TYPE", "27"},
                          {"PARENTTYPE", 11},
                          {"PARENTID", lun},
                          {"PARENTNAME", "source"},
                          {"HEALTHSTATUS", "1"},
                          {"RUNNINGSTATUS", "2"},
                          {"DESCRIPTION", "d"},
                          {"USERCAPACITY", "2048"},
                          {"CONSUMEDCAPACITY", "0"},
                          {"WWN", array.server.volumeWwn(id)}};
    EXPECT_EQ(array.client.get("/SNAPSHOT/" + id).data, expected);
    EXPECT_NE(array.server.volumeWwn(id), array.server.volumeWwn(lun));
}

TEST(SnapshotResource, IsReadInCapitalsAndListedInSmallLetters)
{
    ArrayFixture array;
    const std::string lun = array.client.makeLun("source");
    const std::string id = array.server.addSnapshot("s", lun);
    EXPECT_EQ(array.client.get("/SNAPSHOT/" + id).code, 0);
    EXPECT_EQ(array.client.get("/snapshot/" + id).code, kUnknownOperation);
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    array.client.associate("/lungroup/associate", group, 27, id);
    const std::string query = "TYPE=27&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group;
    EXPECT_EQ(array.client.get("/snapshot/associate?" + query).data.at(0).at("ID"), id);
    EXPECT_TRUE(array.client.get("/snapshot/associate?filter=NAME:other&" + query).data.isAbsent());
    EXPECT_EQ(array.client.get("/SNAPSHOT/associate?" + query).code, kUnknownSnapshot);
}

TEST(SnapshotResource, NeedsALunThatExists)
{
    ArrayFixture array;
    EXPECT_EQ(array.client.post("/snapshot", {{"NAME", "s"}, {"PARENTID", "77"}}).code, kUnknownLun);
    EXPECT_EQ(array.client.post("/snapshot", {{"NAME", "s"}}).code, kMissingParameter);
    EXPECT_THROW(array.server.addSnapshot("s", "77"), std::runtime_error);
    EXPECT_EQ(array.client.get("/SNAPSHOT/77").code, kUnknownSnapshot);
}

TEST(SnapshotResource, IsSeenByTheHostItIsMappedTo)
{
    ArrayFixture array;
    array.server.addIscsiInitiator("iqn.2020-01.lab:host");
    const Chain chain(array.client, "iqn.2020-01.lab:host", "1");
    const std::string id = array.server.addSnapshot("s", chain.lun);
    const std::string byHost = "/snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + chain.host;
    EXPECT_TRUE(array.client.get(byHost).data.isAbsent());
    array.client.associate("/lungroup/associate", chain.lunGroup, 27, id);
    EXPECT_EQ(array.client.get(byHost).data.at(0).at("ID"), id);
    EXPECT_EQ(array.client.remove("/snapshot/" + id).code, kVolumeInLunGroup);
}
