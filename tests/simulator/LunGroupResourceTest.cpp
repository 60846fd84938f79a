#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

struct GroupWithLun : ArrayFixture {
    std::string lun = client.makeLun("l");
    std::string snapshot = server.addSnapshot("s", lun);
    std::string group =
        client.make("/lungroup/", {{"TYPE", 256}, {"NAME", "g"}, {"DESCRIPTION", "d"}, {"APPTYPE", 3}, {"GROUPTYPE", 0}});

    std::string removal(int type, const std::string& id) const
    {
        return "/lungroup/associate?ID=" + group + "&ASSOCIATEOBJTYPE=" + std::to_string(type) + "&ASSOCIATEOBJID=" + id;
    }
};

}  // namespace

TEST(LunGroupResource, ReadsBack)
{
    GroupWithLun array;
    const Fields expected{
        {"ID", array.group}, {"NAME", "g"},     {"TYPE", "256"}, {"DESCRIPTION", "d"}, {"ISADD2MAPPINGVIEW", "false"},
        {"APPTYPE", "3"},    {"GROUPTYPE", "0"}};
    EXPECT_EQ(array.client.get("/lungroup/" + array.group).data, expected);
    EXPECT_EQ(array.client.get("/lungroup/77").code, kUnknownLunGroup);
}

TEST(LunGroupResource, IsCreatedUnderAPathWithASlashAtItsEnd)
{
    GroupWithLun array;
    EXPECT_EQ(array.client.post("/lungroup", {{"NAME", "x"}}).code, kUnknownOperation);
}

TEST(LunGroupResource, RefusesAMemberTwice)
{
    GroupWithLun array;
    EXPECT_EQ(array.client.associate("/lungroup/associate", array.group, 11, array.lun).code, 0);
    EXPECT_EQ(array.client.associate("/lungroup/associate", array.group, 11, array.lun).code, kLunAlreadyInLunGroup);
    EXPECT_EQ(array.client.associate("/lungroup/associate", array.group, 27, array.snapshot).code, 0);
    const Reply again = array.client.associate("/lungroup/associate", array.group, 27, array.snapshot);
    EXPECT_EQ(again.code, kSnapshotAlreadyInLunGroup);
    EXPECT_EQ(again.description, "The snapshot '" + array.snapshot + "' is already in the LUN group '" + array.group + "'.");
}

TEST(LunGroupResource, UsesTheNumbersThatClientsTestFor)
{
    EXPECT_EQ(kLunAlreadyInLunGroup, 1077936862);
    EXPECT_EQ(kSnapshotAlreadyInLunGroup, 1077948997);
    EXPECT_EQ(kNotInLunGroup, 1077948996);
    EXPECT_EQ(kHostAlreadyInHostGroup, 1077937501);
    EXPECT_EQ(kNotReadableYet, 1077949006);
    EXPECT_EQ(kNoSession, -401);
}

TEST(LunGroupResource, RefusesToRemoveWhatIsNotAMember)
{
    GroupWithLun array;
    EXPECT_EQ(array.client.remove(array.removal(11, array.lun)).code, kNotInLunGroup);
    array.client.associate("/lungroup/associate", array.group, 11, array.lun);
    EXPECT_EQ(array.client.remove(array.removal(11, array.lun)).code, 0);
    EXPECT_EQ(array.client.remove(array.removal(11, array.lun)).code, kNotInLunGroup);
}

TEST(LunGroupResource, CountsLunsAndSnapshotsApart)
{
    GroupWithLun array;
    const std::string second = array.client.makeLun("l2");
    for (const std::string& lun : {array.lun, second}) {
        array.client.associate("/lungroup/associate", array.group, 11, lun);
    }
    array.client.associate("/lungroup/associate", array.group, 27, array.snapshot);
    const std::string query = "/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + array.group;
    EXPECT_EQ(array.client.get("/lun" + query).text("COUNT"), "2");
    EXPECT_EQ(array.client.get("/snapshot" + query).text("COUNT"), "1");
}

TEST(LunGroupResource, IsFoundThroughItsMembersAndItsView)
{
    GroupWithLun array;
    array.client.associate("/lungroup/associate", array.group, 11, array.lun);
    array.client.associate("/lungroup/associate", array.group, 27, array.snapshot);
    const std::string view = array.client.make("/mappingview", {{"NAME", "v"}});
    EXPECT_TRUE(array.client.get("/lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=" + view).data.isAbsent());
    array.client.putAssociation("/mappingview/create_associate", view, 256, array.group);
    for (const std::string& query :
         {"TYPE=256&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + array.lun,
          "filter=NAME:g and ISADD2MAPPINGVIEW:1 and APPTYPE:3&TYPE=256&ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=" +
              array.snapshot,
          "ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=" + view}) {
        const Reply reply = array.client.get("/lungroup/associate?" + query);
        ASSERT_EQ(reply.data.size(), 1u) << query << reply.description;
        EXPECT_EQ(reply.data.at(0).at("ID"), array.group);
    }
}

TEST(LunGroupResource, CannotBeRemovedWhileAViewUsesIt)
{
    GroupWithLun array;
    array.client.associate("/lungroup/associate", array.group, 11, array.lun);
    const std::string view = array.client.make("/mappingview", {{"NAME", "v"}});
    array.client.putAssociation("/mappingview/create_associate", view, 256, array.group);
    EXPECT_EQ(array.client.get("/lungroup/" + array.group).text("ISADD2MAPPINGVIEW"), "true");
    EXPECT_EQ(array.client.remove("/lungroup/" + array.group).code, kLunGroupInView);
    array.client.putAssociation("/mappingview/remove_associate", view, 256, array.group);
    EXPECT_EQ(array.client.remove("/lungroup/" + array.group).code, 0);
    EXPECT_EQ(array.client.get("/lun/" + array.lun).text("ISADD2LUNGROUP"), "false");
}
