#include "simulator/FaultScript.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

TEST(FaultScript, UsesEachFaultOnceAndInOrder)
{
    FaultScript script;
    script.add("POST /lun", {1, "first"});
    script.add("POST /lun", {2, "second"});
    EXPECT_EQ(script.take("POST /lun")->text, "first");
    EXPECT_EQ(script.take("POST /lun")->code, 2);
    EXPECT_FALSE(script.take("POST /lun"));
}

TEST(FaultScript, TellsOperationsApartAndCountsWhatIsLeft)
{
    FaultScript script;
    script.add("POST /lun", {1, ""});
    script.add("GET /lun/{id}", {2, ""});
    EXPECT_EQ(script.left(), 2u);
    EXPECT_FALSE(script.take("GET /lun"));
    EXPECT_EQ(script.take("GET /lun/{id}")->code, 2);
    EXPECT_EQ(script.left(), 1u);
}
