#include "handlers/LunGroupHandlerImpl.h"
#include "handlers/LunHandlerImpl.h"
#include "handlers/SnapshotHandlerImpl.h"
#include "wire/WireFixture.h"

namespace brevan::test {
namespace {

class WireLun : public WireTest {
protected:
    CLunHandlerImpl handler{&manager};
};
class WireSnapshot : public WireTest {
protected:
    CSnapshotHandlerImpl handler{&manager};
};
class WireLunGroup : public WireTest {
protected:
    CLunGroupHandlerImpl handler{&manager};
};

LunMO volume()
{
    LunMO lun;
    lun.NAME = "volume_1";
    lun.PARENTID = "0";
    return lun;
}

}  // namespace

TEST_F(WireLun, IsCreatedAndReadBack)
{
    LunMO wanted = volume();
    wanted.CAPACITY = 1073741824;
    wanted.DESCRIPTION = "first volume";
    wanted.ALLOCTYPE = 1;
    wanted.ALLOCCAPACITY = 1048576;
    wanted.THINCAPACITYUSAGE = 80;
    wanted.OWNINGCONTROLLER = "B";
    exchange("create-lun");
    exchange("read-lun");
    const LunMO lun = handler.createLun(wanted);
    EXPECT_EQ(lun.ID + " " + lun.NAME + " " + lun.PARENTID + " " + lun.PARENTNAME, "10 volume_1 0 pool0");
    EXPECT_EQ(lun.PARENTTYPE, 216u);
    EXPECT_EQ(lun.HEALTHSTATUS, 1u);
    EXPECT_EQ(lun.RUNNINGSTATUS, 2u);
    EXPECT_EQ(lun.DESCRIPTION, "first volume");
    EXPECT_EQ(lun.ALLOCTYPE, 1);
    EXPECT_EQ(lun.CAPACITY, 1073741824u);
    EXPECT_EQ(lun.ALLOCCAPACITY, 1048576u);
    EXPECT_EQ(lun.allocCapacitySectors, 2048u);
    EXPECT_EQ(lun.THINCAPACITYUSAGE, 80u);
    EXPECT_EQ(lun.EXPOSEDTOINITIATOR, 0);
    EXPECT_EQ(lun.WWN + lun.OWNINGCONTROLLER + lun.WORKINGCONTROLLER, "<wwn>BB");
    EXPECT_EQ(lun.ISADD2LUNGROUP, 0);
}

TEST_F(WireLun, IsRefusedWithTheArraysCodeAndText)
{
    exchange("create-lun-whose-name-is-taken");
    EXPECT_EQ(thrownBy([this] {
                  LunMO wanted = volume();
                  wanted.CAPACITY = 4096;
                  handler.createLun(wanted);
              }),
              refusalOf("createLun", 1077970030, "A LUN with the name 'volume_1' exists already."));
    exchange("read-lun-that-is-not-there");
    EXPECT_EQ(thrownBy([this] { handler.getLun("77"); }), refusalOf("getLun", 1077970041, "The LUN '77' does not exist."));
}

TEST_F(WireLun, IsListedByConditionsAndRange)
{
    LunMO condition = volume();
    condition.ALLOCTYPE = 1;
    condition.RUNNINGSTATUS = 2;
    condition.HEALTHSTATUS = 1;
    condition.ISADD2LUNGROUP = 1;
    LunQuery query(condition, 0, 100);
    exchange("luns-of-lun-group");
    exchange("read-lun-in-a-group");
    const auto luns = handler.getLunByLunGroup("11", query);
    ASSERT_EQ(luns.size(), 1u);
    EXPECT_EQ(luns[0].ISADD2LUNGROUP, 1);
    LunQuery thick;
    thick.condition.ALLOCTYPE = 0;
    exchange("luns-of-lun-group-that-no-condition-fits");
    EXPECT_TRUE(handler.getLunByLunGroup("11", thick).empty());
}

TEST_F(WireLun, IsListedForItsHost)
{
    LunQuery all;
    exchange("luns-of-host");
    exchange("read-lun-that-an-initiator-sees");
    const auto luns = handler.getLunByHost("12", all);
    ASSERT_EQ(luns.size(), 1u);
    EXPECT_EQ(luns[0].EXPOSEDTOINITIATOR, 1);
}

TEST_F(WireSnapshot, IsListedAndRead)
{
    SnapshotQuery query;
    query.condition.PARENTID = "8";
    exchange("snapshots-of-lun-group");
    exchange("read-snapshot");
    const auto snapshots = handler.getSnapshotByLunGroup("11", query);
    ASSERT_EQ(snapshots.size(), 1u);
    const SnapshotMO& snapshot = snapshots[0];
    EXPECT_EQ(snapshot.ID + " " + snapshot.NAME + " " + snapshot.PARENTID + " " + snapshot.PARENTNAME,
              "9 base_before 8 base");
    EXPECT_EQ(snapshot.PARENTTYPE, 11u);
    EXPECT_EQ(snapshot.USERCAPACITY, 2097152u);
    EXPECT_EQ(snapshot.CONSUMEDCAPACITY, 0u);
    EXPECT_EQ(snapshot.WWN, "<wwn>");
}

TEST_F(WireSnapshot, IsListedForItsHost)
{
    SnapshotMO condition;
    condition.NAME = "base_before";
    condition.RUNNINGSTATUS = 2;
    condition.HEALTHSTATUS = 1;
    SnapshotQuery query(condition, 0, 10);
    exchange("snapshots-of-host");
    exchange("read-snapshot");
    EXPECT_EQ(handler.getSnapshotByHost("12", query).size(), 1u);
}

TEST_F(WireLunGroup, IsCreatedAndReadBack)
{
    LunGroupMO wanted;
    wanted.NAME = "group_1";
    wanted.DESCRIPTION = "volumes";
    exchange("create-lun-group");
    exchange("read-lun-group");
    const LunGroupMO group = handler.createLunGroup(wanted);
    EXPECT_EQ(group.ID + " " + group.NAME + " " + group.DESCRIPTION, "11 group_1 volumes");
    EXPECT_EQ(group.ISADD2MAPPINGVIEW, 0);
    EXPECT_EQ(group.APPTYPE, 0u);
    EXPECT_EQ(group.GROUPTYPE, 0u);
}

TEST_F(WireLunGroup, TakesMembersAndToleratesThoseThatItHas)
{
    exchange("add-lun-to-lun-group");
    handler.addLunToLunGroup("10", "11");
    exchange("add-lun-that-is-a-member");
    handler.addLunToLunGroup("10", "11");
    exchange("add-snapshot-to-lun-group");
    EXPECT_EQ(handler.addSnapshotToLunGroup("9", "11"), 0);
    exchange("add-snapshot-that-is-a-member");
    EXPECT_EQ(handler.addSnapshotToLunGroup("9", "11"), 0);
}

TEST_F(WireLunGroup, LosesMembersAndToleratesThoseThatItHasNot)
{
    exchange("remove-lun-from-lun-group");
    handler.removeLunFromLunGroup("10", "11");
    exchange("remove-lun-that-is-no-member");
    handler.removeLunFromLunGroup("10", "11");
    exchange("remove-snapshot-from-lun-group");
    EXPECT_EQ(handler.removeSnapshotFromLunGroup("9", "11"), 0);
}

TEST_F(WireLunGroup, IsFoundByItsMembers)
{
    LunGroupMO condition;
    condition.NAME = "group_1";
    condition.ISADD2MAPPINGVIEW = 0;
    condition.APPTYPE = 0;
    LunGroupQuery query(condition, 0, 0);
    exchange("lun-groups-of-lun");
    exchange("read-lun-group");
    EXPECT_EQ(handler.getLunGroupByLun("10", query).size(), 1u);
    LunGroupQuery five(LunGroupMO(), 0, 5);
    exchange("lun-groups-of-snapshot");
    exchange("read-lun-group");
    EXPECT_EQ(handler.getLunGroupBySnapshot("9", five).size(), 1u);
}

TEST_F(WireLunGroup, CountsItsMembers)
{
    exchange("count-luns-of-lun-group");
    exchange("count-snapshots-of-lun-group");
    EXPECT_EQ(handler.getObjNOFromLunGroup("11"), 2u);
}

TEST_F(WireLunGroup, IsDeletedWhereNoViewUsesIt)
{
    exchange("delete-lun-group-in-a-view");
    EXPECT_EQ(thrownBy([this] { handler.deleteLunGroup("11"); }),
              refusalOf("deleteLunGroup", 1077970070, "The LUN group '11' is in a mapping view: remove it there first."));
    exchange("delete-lun-group");
    EXPECT_EQ(thrownBy([this] { handler.deleteLunGroup("11"); }), "nothing");
}

}  // namespace brevan::test
