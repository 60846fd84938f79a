#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

void expectKeys(const Data& record, const std::vector<std::string>& keys)
{
    EXPECT_EQ(record.size(), keys.size()) << record.dump();
    for (const std::string& key : keys) {
        ASSERT_TRUE(record.contains(key)) << key;
        EXPECT_TRUE(record.at(key).isText()) << key;
    }
}

}  // namespace

TEST(PortResource, GivesEveryKeyOfEachKindAsText)
{
    ArrayFixture array;
    expectKeys(array.client.get("/FC_PORT?").data.at(0),
               {"ID", "NAME", "LOCATION", "HEALTHSTATUS", "RUNNINGSTATUS", "LOGICTYPE", "RUNSPEED", "CONFSPEED", "WWN",
                "INIORTGT", "FCRUNMODE", "LOSTSIGNALS", "BADCHARNUMBER", "LOSTSYNC", "LINKFAIL", "STARTTIME",
                "FLOGINDELAYTIMES", "MAXSUPPORTSPEED"});
    expectKeys(array.client.get("/FCoE_PORT?").data.at(0),
               {"ID", "NAME", "LOCATION", "HEALTHSTATUS", "RUNNINGSTATUS", "LOGICTYPE", "RUNSPEED", "WWN", "INIORTGT",
                "ERRORPACKETS", "LOSTPACKETS", "OVERFLOWEDPACKETS", "STARTTIME", "VLANID"});
    expectKeys(array.client.get("/ETH_PORT?").data.at(0),
               {"ID",        "NAME",  "LOCATION",     "HEALTHSTATUS", "RUNNINGSTATUS", "LOGICTYPE",   "MACADDRESS",
                "INIORTGT",  "MTU",   "ISCSITCPPORT", "ISCSINAME",    "ERRORPACKETS",  "LOSTPACKETS", "OVERFLOWEDPACKETS",
                "STARTTIME", "SPEED", "IPV4MASK",     "IPV4ADDRESS",  "IPV6MASK",      "IPV6ADDRESS"});
}

TEST(PortResource, ReadsOnePortOfItsOwnKindOnly)
{
    ArrayFixture array;
    const std::string id = array.client.get("/FC_PORT?").data.at(1).at("ID").text();
    EXPECT_EQ(array.client.get("/FC_PORT/" + id).text("NAME"), "B.FC0");
    EXPECT_EQ(array.client.get("/FCoE_PORT/" + id).code, kUnknownFcoePort);
    EXPECT_EQ(array.client.get("/ETH_PORT/" + id).code, kUnknownEthPort);
    EXPECT_EQ(array.client.get("/FC_PORT/99").code, kUnknownFcPort);
    EXPECT_EQ(array.client.get("/fc_port/" + id).code, kUnknownOperation);
}

TEST(PortResource, FiltersAndRanges)
{
    ArrayFixture array;
    EXPECT_EQ(array.client.get("/FC_PORT?filter=NAME:A.FC0&").data.size(), 1u);
    EXPECT_EQ(array.client.get("/ETH_PORT?filter=LOGICTYPE:0&range=[0-100]").data.size(), 2u);
    EXPECT_EQ(array.client.get("/ETH_PORT?filter=LOGICTYPE:3&").data.at(0).at("NAME"), "A.MGMT0");
    EXPECT_EQ(array.client.get("/ETH_PORT?range=[1-2]").data.at(0).at("NAME"), "B.ETH0");
    EXPECT_TRUE(array.client.get("/FCoE_PORT?filter=NAME:A.FCoE0 and LOGICTYPE:5&").data.isAbsent());
}
