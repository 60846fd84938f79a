#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

std::vector<std::string> namesOf(const Reply& reply)
{
    std::vector<std::string> names;
    for (std::size_t index = 0; index < reply.data.size(); ++index) {
        names.push_back(reply.data.at(index).at("NAME").text());
    }
    return names;
}

struct TenLuns : ArrayFixture {
    TenLuns()
    {
        for (int index = 0; index < 10; ++index) {
            ids.push_back(client.makeLun("l" + std::to_string(index)));
        }
    }
    std::vector<std::string> ids;
};

using Names = std::vector<std::string>;

}  // namespace

TEST(Records, GiveARangeWhoseEndIsExclusive)
{
    TenLuns array;
    EXPECT_EQ(namesOf(array.client.get("/lun?range=[2-5]")), (Names{"l2", "l3", "l4"}));
    EXPECT_EQ(namesOf(array.client.get("/lun?range=[8-65535]")), (Names{"l8", "l9"}));
    EXPECT_EQ(namesOf(array.client.get("/lun?range=[9-18446744073709551615]")), (Names{"l9"}));
}

TEST(Records, LeaveDataOutWhereTheListIsEmpty)
{
    TenLuns array;
    for (const char* path : {"/lun?range=[5-5]", "/lun?range=[10-20]", "/lun?filter=NAME:none&",
                             "/lun?range=[18446744073709551615-18446744073709551615]"}) {
        const Reply reply = array.client.get(path);
        EXPECT_EQ(reply.code, 0) << path;
        EXPECT_TRUE(reply.data.isAbsent()) << path;
    }
}

TEST(Records, ApplyEveryConditionOfAFilter)
{
    TenLuns array;
    EXPECT_EQ(namesOf(array.client.get("/lun?filter=NAME:l3 and ID:" + array.ids[3] + "&")), (Names{"l3"}));
    EXPECT_TRUE(array.client.get("/lun?filter=NAME:l3 and ID:" + array.ids[4] + "&").data.isAbsent());
    EXPECT_EQ(array.client.get("/lun?filter=PARENTID:0 and ALLOCTYPE:1 and RUNNINGSTATUS:2 and HEALTHSTATUS:1").data.size(),
              10u);
    EXPECT_TRUE(array.client.get("/lun?filter=ALLOCTYPE:0").data.isAbsent());
}

TEST(Records, FilterByFlagsAsNumbers)
{
    TenLuns array;
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    array.client.associate("/lungroup/associate", group, 11, array.ids[6]);
    EXPECT_EQ(namesOf(array.client.get("/lun?filter=ISADD2LUNGROUP:1")), (Names{"l6"}));
    EXPECT_EQ(array.client.get("/lun?filter=ISADD2LUNGROUP:0").data.size(), 9u);
}

TEST(Records, FilterBeforeTheyTakeTheRange)
{
    TenLuns array;
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    for (const int index : {1, 3, 5, 7}) {
        array.client.associate("/lungroup/associate", group, 11, array.ids[static_cast<std::size_t>(index)]);
    }
    const std::string query = "TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group;
    EXPECT_EQ(namesOf(array.client.get("/lun/associate?" + query + "&range=[1-3]")), (Names{"l3", "l5"}));
    EXPECT_EQ(namesOf(array.client.get("/lun/associate?filter=NAME:l7&" + query + "&range=[0-1]")), (Names{"l7"}));
    EXPECT_EQ(array.client.get("/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group).text("COUNT"), "4");
    EXPECT_EQ(array.client.get("/lun/count").text("COUNT"), "10");
}

TEST(Records, FollowAChangeBetweenTwoPages)
{
    TenLuns array;
    EXPECT_EQ(namesOf(array.client.get("/lun?range=[2-4]")), (Names{"l2", "l3"}));
    array.client.remove("/lun/" + array.ids[3]);
    EXPECT_EQ(namesOf(array.client.get("/lun?range=[2-4]")), (Names{"l2", "l4"}));
    array.client.makeLun("l10");
    EXPECT_EQ(namesOf(array.client.get("/lun?range=[8-65535]")), (Names{"l9", "l10"}));
}

TEST(Records, KeepThePagesOfDifferentListsApart)
{
    TenLuns array;
    const std::string group = array.client.make("/lungroup/", {{"NAME", "g"}});
    const std::string other = array.client.make("/lungroup/", {{"NAME", "h"}});
    for (const int index : {1, 3, 5}) {
        array.client.associate("/lungroup/associate", group, 11, array.ids[static_cast<std::size_t>(index)]);
    }
    array.client.associate("/lungroup/associate", other, 11, array.ids[6]);
    array.client.associate("/lungroup/associate", other, 11, array.ids[7]);
    const std::string query = "/lun/associate?ASSOCIATEOBJTYPE=256&range=[1-9]&ASSOCIATEOBJID=";
    EXPECT_EQ(namesOf(array.client.get(query + group)), (Names{"l3", "l5"}));
    EXPECT_EQ(namesOf(array.client.get(query + other)), (Names{"l7"}));
    EXPECT_EQ(namesOf(array.client.get("/lun?filter=ISADD2LUNGROUP:0&range=[1-9]")), (Names{"l2", "l4", "l8", "l9"}));
    EXPECT_EQ(namesOf(array.client.get("/lun?filter=ISADD2LUNGROUP:1&range=[1-9]")), (Names{"l3", "l5", "l6", "l7"}));
}

TEST(Records, RefuseFiltersAndAssociationsThatMeanNothing)
{
    TenLuns array;
    for (const char* path : {"/lun?filter=WWN:6", "/lun?filter=NOSUCH:1", "/lun?filter=ID:abc",
                             "/lun?filter=ISADD2LUNGROUP:2", "/lun/associate?TYPE=27&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=1",
                             "/lun/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=1"}) {
        EXPECT_EQ(array.client.get(path).code, kBadQuery) << path;
    }
    EXPECT_EQ(array.client.get("/lun/associate?TYPE=11").code, kMissingParameter);
    EXPECT_EQ(array.client.get("/lun/associate?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=999").code, kUnknownLunGroup);
    EXPECT_EQ(array.client.get("/lun/associate?ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=999").code, kUnknownHost);
}

TEST(Records, KnowAnIdInTheArraysOwnSpellingOnly)
{
    TenLuns array;
    EXPECT_EQ(array.client.get("/lun/" + array.ids[0]).code, 0);
    for (const std::string& id :
         {"0" + array.ids[0], std::string("abc"), std::string("-1"), std::string("18446744073709551615"),
          std::string("99999999999999999999"), array.ids[0] + "%20", std::string("1%27--")}) {
        EXPECT_EQ(array.client.get("/lun/" + id).code, kUnknownLun) << id;
    }
}
