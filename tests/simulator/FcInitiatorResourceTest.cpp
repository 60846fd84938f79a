#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

TEST(FcInitiatorResource, TakesPortNamesOnly)
{
    ArrayFixture array;
    for (const char* bad : {"2000", "20000000000000fg", "20000000000000ff0", "../../../../../.."}) {
        EXPECT_EQ(array.client.post("/fc_initiator", {{"ID", bad}}).code, kBadParameter) << bad;
    }
}

TEST(FcInitiatorResource, HasNothingAboutChap)
{
    ArrayFixture array;
    EXPECT_EQ(array.server.addFcInitiator("20000000000000ff"), "20000000000000ff");
    const Fields expected{
        {"ID", "20000000000000ff"}, {"NAME", ""}, {"HEALTHSTATUS", "1"}, {"RUNNINGSTATUS", "2"}, {"ISFREE", "true"}};
    EXPECT_EQ(array.client.get("/fc_initiator/20000000000000ff").data, expected);
}

TEST(FcInitiatorResource, TakesAPortNameForTheSameInCapitals)
{
    ArrayFixture array;
    array.client.make("/fc_initiator", {{"ID", "21000000000000ab"}});
    EXPECT_EQ(array.client.post("/fc_initiator", {{"ID", "21000000000000AB"}}).code, kIdTaken);
    EXPECT_EQ(array.client.get("/fc_initiator/21000000000000AB").text("ID"), "21000000000000ab");
}
