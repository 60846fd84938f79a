#include "handlers/FCInitiatorHandlerImpl.h"
#include "handlers/HostGroupHandlerImpl.h"
#include "handlers/HostHandlerImpl.h"
#include "handlers/IscsiInitiatorHandlerImpl.h"
#include "handlers/LunGroupHandlerImpl.h"
#include "handlers/MappingViewHandlerImpl.h"
#include "wire/WireFixture.h"

namespace brevan::test {
namespace {

constexpr const char* kFree = "iqn.1993-08.org.debian:01:c0ffee";
constexpr const char* kOne = "iqn.2020-01.lab:one";
constexpr const char* kPort = "2100000000000001";

class WireHost : public WireTest {};
class WireHostGroup : public WireTest {
protected:
    CHostGroupHandlerImpl handler{&manager};
};
class WireMappingView : public WireTest {
protected:
    CMappingViewHandlerImpl handler{&manager};
};
class WireIscsiInitiator : public WireTest {
protected:
    CIscsiInitiatorHandlerImpl handler{&manager};
};
class WireFcInitiator : public WireTest {
protected:
    CFCInitiatorHandlerImpl handler{&manager};
};

}  // namespace

TEST_F(WireHost, IsCreatedAndReadBack)
{
    HostMO wanted;
    wanted.NAME = "host_1";
    wanted.OPERATIONSYSTEM = 0;
    wanted.LOCATION = "rack 1";
    wanted.DESCRIPTION = "backup";
    wanted.IP = "192.0.2.20";
    exchange("create-host");
    exchange("read-host");
    const HostMO host = CHostHandlerImpl(&manager).createHost(wanted);
    EXPECT_EQ(host.ID + " " + host.NAME + " " + host.LOCATION + " " + host.DESCRIPTION + " " + host.IP,
              "12 host_1 rack 1 backup 192.0.2.20");
    EXPECT_EQ(host.OPERATIONSYSTEM, 0u);
    EXPECT_EQ(host.PARENTTYPE, 0u);
    EXPECT_EQ(host.ISADD2HOSTGROUP, 0);
}

TEST_F(WireHost, KnowsItsGroup)
{
    exchange("read-host-in-a-group");
    const HostMO host = CHostHandlerImpl(&manager).getHost("12");
    EXPECT_EQ(host.PARENTTYPE, 14u);
    EXPECT_EQ(host.PARENTID, "13");
    EXPECT_EQ(host.ISADD2HOSTGROUP, 1);
}

TEST_F(WireHostGroup, IsCreatedAndReadBack)
{
    HostGroupMO wanted;
    wanted.NAME = "hosts_1";
    wanted.DESCRIPTION = "all of them";
    exchange("create-host-group");
    exchange("read-host-group");
    const HostGroupMO group = handler.createHostGroup(wanted);
    EXPECT_EQ(group.ID + " " + group.NAME + " " + group.DESCRIPTION, "13 hosts_1 all of them");
    EXPECT_EQ(group.ISADD2MAPPINGVIEW, 0);
}

TEST_F(WireHostGroup, TakesAndLosesMembers)
{
    exchange("add-host-to-host-group");
    handler.addHostToHostGroup("12", "13");
    exchange("add-host-that-is-a-member");
    handler.addHostToHostGroup("12", "13");
    exchange("remove-host-from-host-group");
    handler.removeHostFromHostGroup("12", "13");
    exchange("delete-host-group");
    handler.deleteHostGroup("13");
}

TEST_F(WireHostGroup, IsFoundByHostAndByView)
{
    HostGroupQuery query;
    query.condition.NAME = "hosts_1";
    exchange("host-groups-of-host");
    exchange("read-host-group");
    EXPECT_EQ(handler.getHostGroupByHost("12", query).size(), 1u);
    exchange("host-group-of-mapping-view");
    exchange("read-host-group-in-a-view");
    EXPECT_EQ(handler.getHostGroupByMappingView("14").ISADD2MAPPINGVIEW, 1);
}

TEST_F(WireMappingView, IsCreatedAndReadBack)
{
    MappingViewMO wanted;
    wanted.NAME = "view_1";
    wanted.DESCRIPTION = "who sees what";
    wanted.ENABLEINBANDCOMMAND = 1;
    exchange("create-mapping-view");
    exchange("read-mapping-view");
    const MappingViewMO view = handler.createMappingView(wanted);
    EXPECT_EQ(view.ID + " " + view.NAME + " " + view.DESCRIPTION, "14 view_1 who sees what");
    EXPECT_EQ(view.ENABLEINBANDCOMMAND, 1);
}

TEST_F(WireMappingView, JoinsGroupsAndPartsThem)
{
    exchange("add-host-group-to-mapping-view");
    handler.addHostGroupToMappingView("13", "14");
    exchange("add-lun-group-to-mapping-view");
    handler.addLunGroupToMappingView("11", "14");
    exchange("remove-lun-group-from-mapping-view");
    handler.removeLunGroupFromMappingView("11", "14");
    exchange("remove-host-group-from-mapping-view");
    handler.removeHostGroupFromMappingView("13", "14");
    exchange("delete-mapping-view");
    handler.deleteMappingView("14");
}

TEST_F(WireMappingView, IsFoundByItsGroups)
{
    MappingViewQuery all;
    exchange("mapping-views-of-lun-group");
    exchange("read-mapping-view");
    EXPECT_EQ(handler.getMappingViewByLunGroup("11", all).size(), 1u);
    MappingViewMO condition;
    condition.ID = "14";
    condition.NAME = "view_1";
    MappingViewQuery one(condition, 0, 1);
    exchange("mapping-views-of-host-group");
    exchange("read-mapping-view");
    EXPECT_EQ(handler.getMappingViewByHostGroup("13", one).size(), 1u);
    exchange("lun-group-of-mapping-view");
    exchange("read-lun-group-in-a-view");
    EXPECT_EQ(CLunGroupHandlerImpl(&manager).getLunGroupByMappingView("14").ISADD2MAPPINGVIEW, 1);
}

TEST_F(WireIscsiInitiator, IsBoundToAHost)
{
    exchange("add-iscsi-initiator-to-host");
    handler.addIscsiInitiatorToHost(kFree, "12");
    exchange("read-iscsi-initiator-of-a-host");
    const IscsiInitiatorMO initiator = handler.getIscsiInitiator(kFree);
    EXPECT_EQ(initiator.ID, kFree);
    EXPECT_EQ(initiator.PARENTID + " " + initiator.PARENTNAME, "12 host_1");
    EXPECT_EQ(initiator.ISFREE, 0);
    EXPECT_EQ(initiator.USECHAP, 0);
    exchange("delete-iscsi-initiator-of-a-host");
    EXPECT_EQ(thrownBy([this] { handler.deleteIscsiInitiator(kFree); }),
              refusalOf("deleteIscsiInitiator", 1077970080, "<text>"));
}

TEST_F(WireIscsiInitiator, IsCreatedWithMutualChap)
{
    IscsiInitiatorMO wanted;
    wanted.ID = kOne;
    wanted.NAME = "one";
    wanted.PARENTID = "12";
    wanted.PARENTTYPE = 21;
    wanted.USECHAP = 1;
    wanted.NORMALVERMODE = "2";
    wanted.CHAPNAME = "user";
    wanted.CHAPPASSWORD = "first-secret";
    wanted.CHAPNAMEINITATORVERTARGET = "target";
    wanted.CHAPPASSWORDINITATORVERTARGET = "other-secret";
    exchange("create-iscsi-initiator");
    exchange("read-iscsi-initiator");
    const IscsiInitiatorMO initiator = handler.createIscsiInitiator(wanted);
    EXPECT_EQ(initiator.NAME + " " + initiator.CHAPNAME + " " + initiator.CHAPNAMEINITATORVERTARGET, "one user target");
    EXPECT_EQ(initiator.NORMALVERMODE + initiator.DISCOVERYVERMODE, "20");
    EXPECT_EQ(initiator.USECHAP, 1);
    EXPECT_EQ(initiator.CHAPPASSWORD + initiator.CHAPPASSWORDINITATORVERTARGET, "");
}

TEST_F(WireIscsiInitiator, IsChangedUnboundAndDeleted)
{
    IscsiInitiatorMO changed;
    changed.ID = kOne;
    changed.NAME = "uno";
    changed.PARENTID = "12";
    changed.USECHAP = 1;
    changed.NORMALVERMODE = "1";
    changed.DISCOVERYVERMODE = "1";
    changed.CHAPNAME = "user2";
    changed.CHAPPASSWORD = "second-secret";
    changed.CHAPOLDPASSWORD = "first-secret";
    exchange("read-iscsi-initiator");
    exchange("modify-iscsi-initiator");
    handler.modifyIscsiInitiator(changed);
    exchange("remove-iscsi-initiator-from-host");
    handler.removeIscsiInitiatorFromHost(kOne);
    exchange("delete-iscsi-initiator");
    handler.deleteIscsiInitiator(kOne);
}

TEST_F(WireFcInitiator, IsCreatedAndReadBack)
{
    FCInitiatorMO wanted;
    wanted.ID = kPort;
    wanted.NAME = "hba";
    wanted.PARENTID = "12";
    exchange("create-fc-initiator");
    exchange("read-fc-initiator");
    const FCInitiatorMO initiator = handler.createFCInitiator(wanted);
    EXPECT_EQ(initiator.ID + " " + initiator.NAME + " " + initiator.PARENTID + " " + initiator.PARENTNAME,
              "2100000000000001 hba 12 host_1");
    EXPECT_EQ(initiator.HEALTHSTATUS, 1u);
    EXPECT_EQ(initiator.RUNNINGSTATUS, 2u);
    EXPECT_EQ(initiator.ISFREE, 0);
}

TEST_F(WireFcInitiator, IsUnboundDeletedAndGone)
{
    exchange("remove-fc-initiator-from-host");
    handler.removeFCInitiatorFromHost(kPort);
    exchange("read-fc-initiator-without-a-host");
    EXPECT_EQ(handler.getFCInitiator(kPort).ISFREE, 1);
    exchange("delete-fc-initiator");
    handler.deleteFCInitiator(kPort);
    exchange("add-fc-initiator-that-is-not-there");
    EXPECT_EQ(thrownBy([this] { handler.addFCInitiatorToHost(kPort, "12"); }),
              refusalOf("addFCInitiatorToHost", 1077970048, "The FC initiator '2100000000000001' does not exist."));
}

}  // namespace brevan::test
