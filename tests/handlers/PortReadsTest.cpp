#include "handlers/PortReads.h"

#include "PortTests.h"

namespace brevan::test {

TEST_P(PortList, HoldsTheRecordsOfTheReplyInTheirOrder)
{
    EXPECT_EQ(GetParam().idsAndNames(manager, R"([{"ID":"9","NAME":"a"},{"ID":7,"NAME":"b"},{"ID":"8"}])"),
              (std::vector<std::string>{"9 a", "7 b", "8 "}));
    EXPECT_EQ(newLog(), entered(GetParam().name));
    EXPECT_EQ(recorder.handles().size(), 1U);  // no further read for each port
}

TEST_P(PortList, SkipsRecordsWithoutAnId)
{
    EXPECT_EQ(GetParam().idsAndNames(manager, R"([{"NAME":"a","RUNSPEED":[]},{"ID":"7","NAME":"b"},{}])"),
              std::vector<std::string>{"7 b"});
    EXPECT_TRUE(GetParam().idsAndNames(manager, "").empty());
}

TEST_P(PortList, FailsWhereAnyRecordIsUnusable)
{
    const std::string line = std::string("url error or internet error ") + GetParam().name;
    for (const char* list : {R"([{"ID":"7"},7])", R"([{"ID":"7"},{"ID":[]}])", R"([{"ID":"7"},{"ID":"8","NAME":{}}])"}) {
        newLog();
        EXPECT_EQ(thrownBy([&] { GetParam().idsAndNames(manager, list); }), "Exception:" + line);
        EXPECT_EQ(newLog(), failed(GetParam().name, line, 1009));
    }
}

namespace {

class PortReads : public SdkTest {};

constexpr Field<FCPortMO> kFields[] = {text<&FCPortMO::ID>("ID"), signedNumber<&FCPortMO::RUNSPEED>("RUNSPEED")};

TEST_F(PortReads, TakeTheirFieldsFromTheTable)
{
    expect("GET /PORT/7", answer(R"({"ID":"7","NAME":"not in the table","RUNSPEED":"-1"})"));
    const FCPortMO port = readPort(ResourceOperation("getPort", &manager), "/PORT/", "7", "no ID! ", kFields);
    EXPECT_EQ(port.ID + port.NAME, "7");
    EXPECT_EQ(port.RUNSPEED, -1);
    expect("GET /PORT?range=[0-1]", answer(R"([{"ID":"8"}])"));
    const auto ports = readPorts(ResourceOperation("getPorts", &manager), "/PORT?", FCPortQuery(FCPortMO(), 0, 1), kFields);
    ASSERT_EQ(ports.size(), 1U);
    EXPECT_EQ(ports[0].ID, "8");
}

}  // namespace
}  // namespace brevan::test
