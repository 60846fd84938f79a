#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

constexpr std::uint64_t kSectorsPerGib = 2097152;

Fields lunBody(const std::string& name, std::uint64_t sectors)
{
    return {{"TYPE", 11}, {"NAME", name}, {"PARENTTYPE", 216}, {"PARENTID", "0"}, {"CAPACITY", sectors}};
}

ServerOptions smallPool()
{
    ServerOptions options = testOptions();
    options.pools = {{"0", "pool0", 4}};
    return options;
}

}  // namespace

TEST(LunResource, ReadsBackAThinLunAsTextsOnly)
{
    ArrayFixture array;
    Fields body = lunBody("thin", 2 * kSectorsPerGib);
    body.update({{"ALLOCTYPE", 1},
                 {"INITIALALLOCCAPACITY", kSectorsPerGib},
                 {"THINCAPACITYUSAGE", 70},
                 {"DESCRIPTION", "a \"b\""},
                 {"OWNINGCONTROLLER", "B"},
                 {"MIRRORPOLICY", 1},
                 {"WRITEPOLICY", 1},
                 {"PREFETCHPOLICY", 3}});
    const std::string id = array.client.make("/lun", body);
    const Fields expected{{"ID", id},
                          {"NAME", "thin"},
                          {"TYPE", "11"},
                          {"PARENTTYPE", "216"},
                          {"PARENTID", "0"},
                          {"PARENTNAME", "pool0"},
                          {"HEALTHSTATUS", "1"},
                          {"RUNNINGSTATUS", "2"},
                          {"DESCRIPTION", "a \"b\""},
                          {"ALLOCTYPE", "1"},
                          {"SECTORSIZE", "512"},
                          {"CAPACITY", "4194304"},
                          {"ALLOCCAPACITY", "2097152"},
                          {"THINCAPACITYUSAGE", "70"},
                          {"EXPOSEDTOINITIATOR", "false"},
                          {"WWN", array.server.volumeWwn(id)},
                          {"OWNINGCONTROLLER", "B"},
                          {"WORKINGCONTROLLER", "B"},
                          {"ISADD2LUNGROUP", "false"},
                          {"MIRRORPOLICY", "1"},
                          {"WRITEPOLICY", "1"},
                          {"PREFETCHPOLICY", "3"}};
    EXPECT_EQ(array.client.get("/lun/" + id).data, expected);
}

TEST(LunResource, AllocatesAThickLunAtOnceAndGivesNoUsage)
{
    ArrayFixture array;
    const std::string id = array.client.make("/lun", lunBody("thick", 1000));
    const Reply lun = array.client.get("/lun/" + id);
    EXPECT_EQ(lun.text("ALLOCTYPE"), "0");
    EXPECT_EQ(lun.text("ALLOCCAPACITY"), "1000");
    EXPECT_FALSE(lun.data.contains("THINCAPACITYUSAGE"));
}

TEST(LunResource, GivesEveryVolumeAWwnOfItsOwn)
{
    ArrayFixture array;
    std::set<std::string> wwns;
    for (int index = 0; index < 20; ++index) {
        const std::string wwn = array.server.volumeWwn(array.client.makeLun("l" + std::to_string(index)));
        EXPECT_EQ(wwn.size(), 32u);
        EXPECT_EQ(wwn[0], '6');
        EXPECT_EQ(wwn.find_first_not_of("0123456789abcdef"), std::string::npos) << wwn;
        EXPECT_TRUE(wwns.insert(wwn).second) << wwn;
    }
}

TEST(LunResource, GivesArraysOfOtherDeviceIdsOtherWwns)
{
    ServerOptions options = testOptions();
    options.deviceId = "other";
    ArrayFixture one;
    ArrayFixture other(options);
    EXPECT_NE(one.server.volumeWwn(one.client.makeLun("l")), other.server.volumeWwn(other.client.makeLun("l")));
}

TEST(LunResource, RefusesCapacitiesThatThePoolDoesNotHave)
{
    ArrayFixture array(smallPool());
    EXPECT_EQ(array.client.post("/lun", lunBody("l", 0)).code, kBadCapacity);
    EXPECT_EQ(array.client.post("/lun", lunBody("l", 4 * kSectorsPerGib + 1)).code, kBadCapacity);
    EXPECT_EQ(array.client.post("/lun", lunBody("l", 18446744073709551615u)).code, kBadCapacity);
    EXPECT_EQ(array.client.post("/lun", lunBody("a", 3 * kSectorsPerGib)).code, 0);
    const Reply full = array.client.post("/lun", lunBody("b", 2 * kSectorsPerGib));
    EXPECT_EQ(full.code, kPoolFull);
    EXPECT_EQ(full.description, "The LUN needs 4194304 sectors, and the storage pool has only 2097152 left.");
    EXPECT_EQ(array.client.post("/lun", lunBody("b", kSectorsPerGib)).code, 0);
}

TEST(LunResource, LetsThinLunsPromiseMoreThanThePoolHas)
{
    ArrayFixture array(smallPool());
    for (const char* name : {"a", "b", "c"}) {
        Fields body = lunBody(name, 4 * kSectorsPerGib);
        body.update({{"ALLOCTYPE", 1}, {"INITIALALLOCCAPACITY", kSectorsPerGib}});
        EXPECT_EQ(array.client.post("/lun", body).code, 0) << name;
    }
    EXPECT_EQ(array.client.get("/storagepool/0").text("FREECAPACITY"), "2097152");
}

TEST(LunResource, RefusesAnInitialAllocationBeyondTheCapacity)
{
    ArrayFixture array;
    Fields body = lunBody("l", 1000);
    // What a client sends that has left the allocation at "not set": all bits set, shifted from bytes to sectors.
    for (const std::uint64_t allocation : {std::uint64_t{1001}, 18446744073709551615u >> 9}) {
        body.update({{"ALLOCTYPE", 1}, {"INITIALALLOCCAPACITY", allocation}});
        EXPECT_EQ(array.client.post("/lun", body).code, kBadAllocation) << allocation;
    }
    body["INITIALALLOCCAPACITY"] = 1000;
    EXPECT_EQ(array.client.post("/lun", body).code, 0);
}

TEST(LunResource, RefusesAnotherParentThanAPool)
{
    ArrayFixture array;
    Fields body = lunBody("l", 8);
    body["PARENTID"] = "77";
    EXPECT_EQ(array.client.post("/lun", body).code, kUnknownPool);
    body["PARENTID"] = "0";
    body["PARENTTYPE"] = 11;
    EXPECT_EQ(array.client.post("/lun", body).code, kBadParameter);
    body.erase("PARENTTYPE");
    body.erase("PARENTID");
    EXPECT_EQ(array.client.post("/lun", body).code, kMissingParameter);
}

TEST(LunResource, LeavesNothingBehindAfterARefusal)
{
    ArrayFixture array(smallPool());
    Fields body = lunBody("l", kSectorsPerGib);
    body["DESCRIPTION"] = std::string(256, 'x');
    EXPECT_EQ(array.client.post("/lun", body).code, kBadParameter);
    EXPECT_EQ(array.client.get("/lun/count").text("COUNT"), "0");
    EXPECT_EQ(array.client.get("/storagepool/0").text("ALLOCATEDCAPACITY"), "0");
}

TEST(LunResource, IsExposedOnlyWhileAnInitiatorCanReachIt)
{
    ArrayFixture array;
    array.server.addIscsiInitiator("iqn.2020-01.lab:host");
    const Chain chain(array.client, "iqn.2020-01.lab:host", "1");
    EXPECT_EQ(array.client.get("/lun/" + chain.lun).text("EXPOSEDTOINITIATOR"), "true");
    EXPECT_EQ(array.client.get("/lun/" + chain.lun).text("ISADD2LUNGROUP"), "true");
    const std::string byHost =
        "/lun/associate?filter=ID:" + chain.lun + "&TYPE=11&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=" + chain.host;
    EXPECT_EQ(array.client.get(byHost + "&range=[0-65535]").data.size(), 1u);
    array.client.put("/iscsi_initiator/remove_iscsi_from_host", {{"ID", chain.initiator}});
    EXPECT_EQ(array.client.get("/lun/" + chain.lun).text("EXPOSEDTOINITIATOR"), "false");
    EXPECT_EQ(array.client.get(byHost).data.size(), 1u);
    array.client.putAssociation("/mappingview/remove_associate", chain.view, 256, chain.lunGroup);
    EXPECT_TRUE(array.client.get(byHost).data.isAbsent());
}

TEST(LunResource, CanBeRemovedOnceNothingHoldsIt)
{
    ArrayFixture array;
    const std::string lun = array.client.make("/lun", lunBody("l", 1000));
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    const std::string snapshot = array.client.make("/snapshot", {{"NAME", "s"}, {"PARENTID", lun}});
    array.client.associate("/lungroup/associate", group, 11, lun);
    EXPECT_EQ(array.client.remove("/lun/" + lun).code, kVolumeInLunGroup);
    array.client.remove("/lungroup/associate?ID=" + group + "&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + lun);
    EXPECT_EQ(array.client.remove("/lun/" + lun).code, kLunHasSnapshots);
    array.client.remove("/snapshot/" + snapshot);
    EXPECT_EQ(array.client.remove("/lun/" + lun).code, 0);
    EXPECT_EQ(array.client.get("/lun/" + lun).code, kUnknownLun);
    EXPECT_EQ(array.client.get("/storagepool/0").text("ALLOCATEDCAPACITY"), "0");
}
