#include "simulator/Fault.h"

#include "Fields.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

WireReply spoiledBy(const char* fault, const std::string& body)
{
    return spoiled({200, body, {{"Set-Cookie", "session=1"}}}, readFault(fault));
}

std::string refusal(const std::string& line)
{
    try {
        readFault(line);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "(accepted)";
}

}  // namespace

TEST(Fault, IsWrittenAsItWasRead)
{
    for (const char* line :
         {"error 1077949006", "error -401", "error 7 not yet", "status 503", "stall 2s", "stall 1500ms", "reset before",
          "reset after", "cut 40", "cut 0", "garbage", "wrong types", "upper case", "session gone", "pass"}) {
        EXPECT_EQ(faultText(readFault(line)), line);
    }
}

TEST(Fault, SaysWhatIsWrongWithALine)
{
    EXPECT_EQ(refusal("Pass").find("the fault 'Pass' is none of \"error CODE\", "), 0u);
    EXPECT_EQ(refusal("error 0"),
              "the fault 'error 0' needs a code that is not 0: 0 would tell the client that it was done");
    EXPECT_EQ(refusal("status 200"), "the fault 'status 200' needs a whole number from 300 to 599");
    EXPECT_EQ(refusal("stall 2"), "the fault 'stall 2' needs a time of at most an hour, such as 500ms or 2s");
    EXPECT_EQ(refusal("cut -1"), "the fault 'cut -1' needs a whole number from 0 to 1073741824");
}

TEST(Fault, RefusesLinesThatAreNearlyRight)
{
    for (const char* line : {"", "error", "error ", "error x", "error 1x", "error 2147483648", "status 304", "status 600",
                             "status", "stall", "stall 2h", "cut 1.5", "reset", "reset  before", "garbage ", "pass\n"}) {
        EXPECT_EQ(refusal(line).find("the fault '"), 0u) << line;
    }
}

TEST(Fault, ComesInsteadOfTheOperationOrAfterIt)
{
    for (const char* line : {"error 1", "status 500", "reset before", "session gone"}) {
        EXPECT_TRUE(happensInstead(readFault(line).kind)) << line;
    }
    for (const char* line : {"pass", "stall 1s", "reset after", "cut 1", "garbage", "wrong types", "upper case"}) {
        EXPECT_FALSE(happensInstead(readFault(line).kind)) << line;
    }
}

TEST(Fault, SpoilsWhatLeavesTheArray)
{
    const std::string body = R"({"data":{},"error":{"code":0,"description":"0"}})";
    EXPECT_EQ(spoiledBy("pass", body).body, body);
    EXPECT_EQ(spoiledBy("stall 2s", body).delivery.wait, std::chrono::seconds(2));
    EXPECT_EQ(spoiledBy("cut 7", body).delivery.cutAfter, 7u);
    EXPECT_TRUE(spoiledBy("reset after", body).delivery.reset);
    EXPECT_EQ(spoiledBy("reset after", body).body, "");
    EXPECT_THROW(Data::parse(spoiledBy("garbage", body).body), std::exception);
    const WireReply page = spoiledBy("status 503", body);
    EXPECT_EQ(page.status, 503u);
    EXPECT_EQ(page.contentType, "text/html");
    EXPECT_TRUE(page.headers.empty()) << "a page of something before the array carries no cookie of the array";
    EXPECT_EQ(spoiledBy("status 302", body).headers.at(0).second, "/elsewhere");
}

TEST(Fault, GivesEveryValueAWrongType)
{
    const auto types = [](const char* body) { return Data::parse(spoiledBy("wrong types", body).body).dump(); };
    EXPECT_EQ(types(R"({"data":{"ID":"7","N":1},"error":{"code":0}})"),
              R"({"data":{"ID":["7"],"N":"of the wrong type"},"error":{"code":0}})");
    EXPECT_EQ(types(R"({"data":[{"ID":"7"},{"ID":"8"}],"error":{"code":0}})"),
              R"({"data":[{"ID":["7"]},{"ID":["8"]}],"error":{"code":0}})");
    EXPECT_EQ(types(R"({"error":{"code":0}})"), R"({"data":"of the wrong type","error":{"code":0}})");
    EXPECT_EQ(types(R"({"data":{},"error":{"code":0}})"), R"({"data":"of the wrong type","error":{"code":0}})");
}

TEST(Fault, PutsTheTextsOfRecordsIntoCapitals)
{
    const auto capitals = [](const char* body) { return Data::parse(spoiledBy("upper case", body).body).dump(); };
    EXPECT_EQ(capitals(R"({"data":{"WWN":"6a0b","N":1},"error":{"code":0,"description":"ok"}})"),
              R"({"data":{"N":1,"WWN":"6A0B"},"error":{"code":0,"description":"ok"}})");
    EXPECT_EQ(capitals(R"({"data":[{"WWN":"6a"},{"WWN":"6b\u00e4"}],"error":{"code":0}})"),
              "{\"data\":[{\"WWN\":\"6A\"},{\"WWN\":\"6B\u00e4\"}],\"error\":{\"code\":0}}");
    EXPECT_EQ(capitals(R"({"data":{},"error":{"code":0}})"), R"({"data":{},"error":{"code":0}})");
    EXPECT_EQ(capitals(R"({"error":{"code":-401}})"), R"({"error":{"code":-401}})");
}
