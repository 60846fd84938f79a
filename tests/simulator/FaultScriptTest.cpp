#include "simulator/FaultScript.h"

#include "simulator/Router.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace brevan::sim;

namespace {

Router someRoutes()
{
    Router router;
    for (const char* pattern : {"/lun", "/lun/{id}", "/lungroup/"}) {
        router.add({"GET", pattern, nullptr});
    }
    router.add({"POST", "/lun", nullptr});
    return router;
}

std::vector<OperationFaults> read(const std::string& text)
{
    return readFaultScript(text, someRoutes());
}

std::string refusal(const std::string& text)
{
    try {
        read(text);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "(accepted)";
}

}  // namespace

TEST(FaultScript, UsesEachFaultOnceAndInOrder)
{
    FaultScript script;
    script.add(read(R"({"operation": "POST /lun", "do": ["error 1 first", "error 2 second"]})"));
    EXPECT_EQ(script.take("POST /lun", 1)->text, "first");
    EXPECT_EQ(script.take("POST /lun", 2)->amount, 2);
    EXPECT_FALSE(script.take("POST /lun", 3));
}

TEST(FaultScript, TellsOperationsApartAndCountsWhatIsLeft)
{
    FaultScript script;
    script.add(read(R"([{"operation": "POST /lun", "do": ["pass"]}, {"operation": "GET /lun/{id}", "do": ["cut 1"]}])"));
    EXPECT_EQ(script.left(), 2u);
    EXPECT_FALSE(script.take("GET /lun", 1));
    EXPECT_EQ(script.take("GET /lun/{id}", 2)->kind, FaultKind::kCut);
    EXPECT_EQ(script.left(), 1u);
}

TEST(FaultScript, AppendsToWhatIsWaiting)
{
    FaultScript script;
    script.add(read(R"({"operation": "POST /lun", "do": ["pass"]})"));
    script.add(read(R"({"operation": "POST /lun", "do": ["garbage"]})"));
    EXPECT_EQ(script.report().waiting.at(0).faults, (std::vector<std::string>{"pass", "garbage"}));
}

TEST(FaultScript, ReportsWhatHasFiredAndWhatIsLeft)
{
    FaultScript script;
    script.add(read(R"({"operation": "GET /lungroup", "do": ["stall 2s", "status 503"]})"));
    script.take("GET /lungroup", 17);
    const FaultReport report = script.report();
    ASSERT_EQ(report.fired.size(), 1u);
    EXPECT_EQ(report.fired[0].operation, "GET /lungroup");
    EXPECT_EQ(report.fired[0].fault, "stall 2s");
    EXPECT_EQ(report.fired[0].request, 17u);
    ASSERT_EQ(report.waiting.size(), 1u);
    EXPECT_EQ(report.waiting[0].faults, std::vector<std::string>{"status 503"});
    script.clear();
    EXPECT_EQ(script.left(), 0u);
    EXPECT_TRUE(script.report().fired.empty());
}

TEST(FaultScript, BoundsHowManyWait)
{
    FaultScript script;
    const OperationFaults many{"POST /lun", std::vector<Fault>(6000)};
    script.add({many});
    EXPECT_THROW(script.add({many}), std::invalid_argument);
    EXPECT_EQ(script.left(), 6000u);
    script.add({{"GET /lun", {}}});
    EXPECT_FALSE(script.take("GET /lun", 1));
}

TEST(FaultScript, IsRefusedWithAClearText)
{
    const std::string begin = "The fault script is refused, at step 1: ";
    EXPECT_EQ(refusal("{"), begin + "it is not JSON at byte 2.");
    EXPECT_EQ(refusal("7"), begin + R"(a step must be an object with "operation" and "do".)");
    EXPECT_EQ(refusal(R"({"operation": "GET /lun", "do": ["pass"], "x": 1})"),
              begin + R"(a step has no member 'x', only "operation" and "do".)");
    EXPECT_EQ(refusal(R"({"operation": "GET /lun/7", "do": ["pass"]})"),
              begin + "the array has no operation 'GET /lun/7': write 'GET /lun/{id}'.");
    EXPECT_EQ(refusal(R"({"operation": "PUT /lun", "do": ["pass"]})"),
              begin + "the array has no operation 'PUT /lun' (an operation is a method and a path, such as GET /lun/{id}).");
    EXPECT_EQ(refusal(R"([{"operation": "GET /lun", "do": ["pass"]}, {"operation": "GET /lun", "do": ["pass", "cut"]}])")
                  .find("The fault script is refused, at step 2: the fault 'cut' is none of "),
              0u);
}

TEST(FaultScript, RefusesWhatIsMissingOrOfAnotherType)
{
    for (const char* text : {"", "[7]", "{}", R"({"operation": "GET /lun"})", R"({"do": ["pass"]})",
                             R"({"operation": 7, "do": ["pass"]})", R"({"operation": "GET /lun", "do": []})",
                             R"({"operation": "GET /lun", "do": "pass"})", R"({"operation": "GET /lun", "do": [7]})",
                             R"({"operation": "", "do": ["pass"]})", R"({"operation": "GET", "do": ["pass"]})"}) {
        EXPECT_EQ(refusal(text).find("The fault script is refused"), 0u) << text;
    }
    EXPECT_EQ(refusal(std::string(100000, '[')).find("The fault script is refused"), 0u);
}
