#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

struct ViewAndGroups : ArrayFixture {
    std::string view =
        client.make("/mappingview", {{"TYPE", 245}, {"NAME", "v"}, {"ENABLEINBANDCOMMAND", true}, {"DESCRIPTION", "d"}});
    std::string lunGroup = client.make("/lungroup/", {{"NAME", "lg"}});
    std::string hostGroup = client.make("/hostgroup", {{"NAME", "hg"}});

    Reply add(int type, const std::string& group)
    {
        return client.putAssociation("/mappingview/create_associate", view, type, group);
    }
    Reply take(int type, const std::string& group)
    {
        return client.putAssociation("/mappingview/remove_associate", view, type, group);
    }
};

}  // namespace

TEST(MappingViewResource, ReadsBack)
{
    ViewAndGroups array;
    const Fields expected{
        {"ID", array.view}, {"NAME", "v"}, {"TYPE", "245"}, {"DESCRIPTION", "d"}, {"ENABLEINBANDCOMMAND", "true"}};
    EXPECT_EQ(array.client.get("/mappingview/" + array.view).data, expected);
    EXPECT_EQ(array.client.get("/mappingview/77").code, kUnknownMappingView);
}

TEST(MappingViewResource, JoinsOneLunGroupAndOneHostGroup)
{
    ViewAndGroups array;
    EXPECT_EQ(array.add(14, array.hostGroup).code, 0);
    EXPECT_EQ(array.add(256, array.lunGroup).code, 0);
    EXPECT_EQ(array.add(256, array.lunGroup).code, kAlreadyInView);
    EXPECT_EQ(array.add(256, array.client.make("/lungroup/", {{"NAME", "lg2"}})).code, kViewHasAnother);
    EXPECT_EQ(array.add(14, array.client.make("/hostgroup", {{"NAME", "hg2"}})).code, kViewHasAnother);
    EXPECT_EQ(array.add(11, "1").code, kBadParameter);
    EXPECT_EQ(array.add(256, "777").code, kUnknownLunGroup);
}

TEST(MappingViewResource, LetsAGroupBeInManyViews)
{
    ViewAndGroups array;
    array.add(256, array.lunGroup);
    const std::string second = array.client.make("/mappingview", {{"NAME", "v2"}});
    EXPECT_EQ(array.client.putAssociation("/mappingview/create_associate", second, 256, array.lunGroup).code, 0);
    const std::string query = "TYPE=245&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + array.lunGroup;
    EXPECT_EQ(array.client.get("/mappingview/associate?" + query).data.size(), 2u);
    EXPECT_EQ(array.client.get("/mappingview/associate?filter=ID:" + second + " and NAME:v2&" + query).data.size(), 1u);
    EXPECT_TRUE(array.client.get("/mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=14&ASSOCIATEOBJID=" + array.hostGroup)
                    .data.isAbsent());
}

TEST(MappingViewResource, LosesOnlyWhatItHas)
{
    ViewAndGroups array;
    EXPECT_EQ(array.take(256, array.lunGroup).code, kNotInView);
    array.add(256, array.lunGroup);
    EXPECT_EQ(array.take(256, array.lunGroup).code, 0);
    EXPECT_EQ(array.take(256, array.lunGroup).code, kNotInView);
}

TEST(MappingViewResource, CanBeRemovedWithItsGroupsInIt)
{
    ViewAndGroups array;
    array.add(14, array.hostGroup);
    array.add(256, array.lunGroup);
    EXPECT_EQ(array.client.remove("/mappingview/" + array.view).code, 0);
    EXPECT_EQ(array.client.get("/mappingview/" + array.view).code, kUnknownMappingView);
    EXPECT_EQ(array.client.get("/lungroup/" + array.lunGroup).text("ISADD2MAPPINGVIEW"), "false");
    EXPECT_EQ(array.client.get("/hostgroup/" + array.hostGroup).code, 0);
}
