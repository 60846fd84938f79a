#include "foundation/InterfaceLog.h"

#include "support/SdkTest.h"

#include <climits>

namespace brevan::test {
namespace {

class InterfaceRecord : public SdkTest {};

constexpr timeval kStart = {1614834367, 5000};

TEST_F(InterfaceRecord, HoldsElevenArguments)
{
    writeInterfaceRecord("getLun", kStart, 0);
    const std::vector<Lines> expected = {{"Plim-Brevan-API-linux-Cpp", "1", "", "getLun", "", "", "",
                                          "2021-03-04 05:06:07 005", "2021-03-04 05:06:07 089", "0", ""}};
    EXPECT_EQ(recorder.records(), expected);
    EXPECT_EQ(newLog(), Lines{"record: getLun 0"});  // the recorder shows a record of the wrong level as malformed
}

TEST_F(InterfaceRecord, OfAFailureIsAnErrorWithItsCode)
{
    const int codes[] = {1, -401, 1077949006, INT_MAX, INT_MIN};
    for (const int code : codes) {
        writeInterfaceRecord("createLun", kStart, code);
        EXPECT_EQ(newLog(), Lines{"record: createLun " + std::to_string(code)});
    }
}

TEST_F(InterfaceRecord, EndsWhenItIsWritten)
{
    fakeClock.set({1614834367, 0});
    fakeClock.sleepMicroseconds(3001999);
    writeInterfaceRecord("getLun", kStart, 0);
    EXPECT_EQ(recorder.records().at(0).at(8), "2021-03-04 05:06:10 001");
}

struct Instant {
    timeval time;
    const char* text;
};

class TimeText : public testing::TestWithParam<Instant> {};

TEST_P(TimeText, AlwaysHasThreeDigitsOfMilliseconds)
{
    EXPECT_STREQ(timeText(GetParam().time).data(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Instants, TimeText,
                         testing::Values(Instant{{1614834367, 0}, "2021-03-04 05:06:07 000"},
                                         Instant{{1614834367, 999}, "2021-03-04 05:06:07 000"},
                                         Instant{{1614834367, 5000}, "2021-03-04 05:06:07 005"},
                                         Instant{{1614834367, 89999}, "2021-03-04 05:06:07 089"},
                                         Instant{{1614834367, 999999}, "2021-03-04 05:06:07 999"},
                                         Instant{{0, 0}, "1970-01-01 00:00:00 000"}),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

}  // namespace
}  // namespace brevan::test
