#include "platform/q7common/Settings.h"

#include "TransportFixture.h"

namespace brevan {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SettingsInForce : public test::TransportTest {};

TEST_F(SettingsInForce, StayWhereTheFileSaysTheSame)
{
    const SettingsPointer before = currentSettings();
    test::useSettings();
    EXPECT_EQ(refreshedSettings(), before);
}

TEST_F(SettingsInForce, ChangeWithTheFileOnlyWhenTheyAreReadAgain)
{
    const SettingsPointer before = currentSettings();
    test::writeSettings("[time]\nconnect_seconds = 3\n");
    EXPECT_EQ(currentSettings(), before);
    EXPECT_EQ(refreshedSettings()->connectTime, std::chrono::seconds(3));
    EXPECT_EQ(currentSettings()->connectTime, std::chrono::seconds(3));
    EXPECT_NE(currentSettings()->generation, before->generation);
}

TEST_F(SettingsInForce, StayWhereTheNewOnesAreBad)
{
    const SettingsPointer before = currentSettings();
    test::writeSettings("[time]\nconnect_seconds = x\n");
    const SettingsPointer bad = refreshedSettings();
    EXPECT_FALSE(bad->isUsable());
    EXPECT_EQ(currentSettings(), before);
    logProblems(*bad);
    EXPECT_THAT(test::RunLogRecorder::lines(), ElementsAre(HasSubstr("E Transport settings ")));
}

}  // namespace
}  // namespace brevan
