#include "platform/q7common/SettingsFile.h"

#include "TransportFixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace brevan {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> problemsOf(const std::string& text)
{
    return readSettingsText(text, "/f.ini").problems;
}

TEST(SettingsFile, SetsWhatItNamesAndLeavesTheRest)
{
    const Settings settings =
        readSettingsText("[tls]\nverify = off ; for now\n# comment\n[time]\nconnect_seconds=0.5\r\n", "/f.ini");
    EXPECT_THAT(settings.problems, IsEmpty());
    EXPECT_FALSE(settings.tls.verify);
    EXPECT_EQ(settings.connectTime, std::chrono::milliseconds(500));
    EXPECT_EQ(settings.requestTime, std::chrono::seconds(60));
}

TEST(SettingsFile, NamesFileLineKeyAndRangeOfABadValue)
{
    EXPECT_THAT(
        problemsOf("\n[time]\nrequest_seconds = 0\n"),
        ElementsAre("Transport settings /f.ini:3: [time] request_seconds is out of range; allowed: 0.1 to 3600 seconds"));
}

TEST(SettingsFile, NamesWhatIsNoSetting)
{
    EXPECT_THAT(problemsOf("[tls]\nverfy = on\n[nett]\nproxy =\n"),
                ElementsAre(HasSubstr("/f.ini:2: [tls] verfy is not a setting"),
                            HasSubstr("/f.ini:4: [nett] proxy is not a setting")));
    EXPECT_THAT(problemsOf("verify = on\n"), ElementsAre(HasSubstr("/f.ini:1: [] verify is not a setting")));
}

TEST(SettingsFile, NamesALineThatIsNoSetting)
{
    EXPECT_THAT(problemsOf("[tls]\nverify\n"), ElementsAre(HasSubstr("/f.ini:2: expected [section] or key = value")));
    EXPECT_THAT(problemsOf("[tls\n"), ElementsAre(HasSubstr("/f.ini:1: expected")));
    EXPECT_THAT(problemsOf("[tls]\n# " + std::string(300, 'x') + "\n"),
                ElementsAre(HasSubstr("/f.ini:2: the line is too long")));
    EXPECT_THAT(problemsOf(std::string("[tls]\nverify = on\0\n", 18)), ElementsAre(HasSubstr("not a text file")));
}

TEST(SettingsFile, RefusesASettingThatIsGivenTwice)
{
    EXPECT_THAT(problemsOf("[tls]\nverify = on\nverify = off\n"),
                ElementsAre(HasSubstr("/f.ini:3: [tls] verify is set twice")));
    EXPECT_THAT(problemsOf("[tls]\nverify = on\n  server_name = x\n"), ElementsAre(HasSubstr("begins with a blank")));
}

TEST(SettingsFile, NamesACaFileThatCannotBeRead)
{
    EXPECT_THAT(problemsOf("[tls]\nca_file = /does/not/exist\n"),
                ElementsAre(HasSubstr("[tls] ca_file cannot be read (No such file")));
}

TEST(SettingsFile, BuildsTheSectionOfOneArrayOnTheGeneralOne)
{
    const Settings settings =
        readSettingsText("[tls 2001:db8::1]\nserver_name = a\n[tls]\nverify = off\nserver_name = b\n", "/f.ini");
    EXPECT_THAT(settings.problems, IsEmpty());
    EXPECT_EQ(settings.tlsFor("2001:db8::1").serverName, "a");
    EXPECT_FALSE(settings.tlsFor("2001:db8::1").verify);
    EXPECT_EQ(settings.tlsFor("192.0.2.1").serverName, "b");
}

TEST(SettingsFile, RefusesASectionOfNoArray)
{
    EXPECT_THAT(problemsOf("[tls a b]\nverify = off\n"), ElementsAre(HasSubstr("[tls a b] verify is not a setting")));
}

TEST(SettingsFile, MayBeMissingUnlessItIsNamed)
{
    EXPECT_TRUE(readSettingsFile("").isUsable());
    EXPECT_THAT(readSettingsFile("/does/not/exist.ini").problems,
                ElementsAre(HasSubstr("/does/not/exist.ini cannot be used: No such file")));
    EXPECT_FALSE(readSettingsFile("/").isUsable());
}

TEST(SettingsFile, IsNotReadWhereItIsHuge)
{
    const test::TemporaryFolder folder;
    const std::string file = folder.write("transport.ini", std::string(70000, '\n'));
    EXPECT_THAT(readSettingsFile(file).problems, ElementsAre(HasSubstr("larger than 64 KiB")));
}

TEST(SettingsFile, IsTheOneThatTheEnvironmentNames)
{
    test::useSettings();
    EXPECT_EQ(findSettingsFile(), std::getenv("BREVAN_TRANSPORT_CONFIG"));
}

TEST(SettingsFile, LiesBesideTheCodeOtherwise)
{
    const std::string named = std::getenv("BREVAN_TRANSPORT_CONFIG");
    const std::string beside = std::string(std::filesystem::read_symlink("/proc/self/exe").parent_path()) + "/transport.ini";
    const bool isThere = std::filesystem::exists(beside);
    unsetenv("BREVAN_TRANSPORT_CONFIG");
    if (!isThere) {
        std::ofstream(beside) << "[tls]\n";
    }
    EXPECT_EQ(findSettingsFile(), beside);
    if (!isThere) {
        std::filesystem::remove(beside);
    }
    setenv("BREVAN_TRANSPORT_CONFIG", named.c_str(), 1);
}

}  // namespace
}  // namespace brevan
