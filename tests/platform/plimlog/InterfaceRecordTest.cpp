#include "platform/plimlog/InterfaceRecord.h"

#include <gtest/gtest.h>

namespace brevan::plimlog {
namespace {

constexpr const char* kStart = "2021-03-04 05:06:07 089";

InterfaceCall callOf(const char* operation, const char* end, const char* code)
{
    return {"Tag", "1", "", operation, "", "", "", kStart, end, code, ""};
}

TEST(InterfaceRecord, PutsTheFieldsInTheirOrder)
{
    EXPECT_EQ(interfaceRecord(callOf("getLun", "2021-03-04 05:06:08 000", "0"), true, 12, 34),
              "2021-03-04 05:06:07 089\t2021-03-04 05:06:08 000\t911\tINFO\t0\tgetLun\t1\t12\t34\tTag\t\t\t\t\t");
}

TEST(InterfaceRecord, SaysThatTheOperationFailed)
{
    const std::string record = interfaceRecord(callOf("getLun", kStart, "1077949006"), false, 1, 1);
    EXPECT_NE(record.find("\t0\tERROR\t1077949006\tgetLun\t"), std::string::npos) << record;
}

TEST(InterfaceRecord, KeepsTheReservedArgumentsWhereOneIsGiven)
{
    const InterfaceCall call{"Tag", "1", "three", "op", "five", "six", "seven", "s", "e", "0", "eleven"};
    EXPECT_EQ(interfaceRecord(call, true, 1, 2), "s\te\t-\tINFO\t0\top\t1\t1\t2\tTag\tthree\tfive\tsix\tseven\televen");
}

TEST(InterfaceRecord, LetsNoFieldHoldTheSeparatorOrALineEnd)
{
    const std::string record = interfaceRecord(callOf("get\tLun\n2021", kStart, "0\x1f"), true, 1, 1);
    EXPECT_NE(record.find("\tget\\tLun\\n2021\t"), std::string::npos) << record;
    EXPECT_NE(record.find("\t0\\x1f\t"), std::string::npos) << record;
}

TEST(InterfaceRecord, ReadsANullPointerAsAnEmptyField)
{
    EXPECT_EQ(interfaceRecord({}, false, 1, 2), "\t\t-\tERROR\t\t\t\t1\t2\t\t\t\t\t\t");
}

TEST(InterfaceRecord, CountsTheDurationAcrossDaysAndYears)
{
    EXPECT_EQ(durationMs(kStart, kStart), 0);
    EXPECT_EQ(durationMs("2023-12-31 23:59:59 999", "2024-01-01 00:00:00 000"), 1);
    EXPECT_EQ(durationMs("2024-02-28 00:00:00 000", "2024-03-01 00:00:00 000"), 2LL * 24 * 3600 * 1000);
}

TEST(InterfaceRecord, GivesNoDurationWhereATimeIsNoneOrTheClockWasPutBack)
{
    EXPECT_FALSE(durationMs(kStart, "2021-03-04 05:06:07 088"));
    EXPECT_FALSE(durationMs(kStart, nullptr));
    EXPECT_FALSE(durationMs("", kStart));
    EXPECT_FALSE(durationMs(kStart, "2021-03-04 05:06:07.089"));
    EXPECT_FALSE(durationMs(kStart, "2021-03-04 05:06:0x 089"));
}

}  // namespace
}  // namespace brevan::plimlog
