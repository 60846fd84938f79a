#include "platform/q7common/SettingTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace brevan {
namespace {

using ::testing::HasSubstr;

bool isAllowed(const char* section, const char* key, const std::string& text)
{
    Settings settings;
    return applySetting(*findSetting(section, key), text, settings, settings.tls);
}

std::string fileText(const std::string& name)
{
    std::stringstream text;
    text << std::ifstream(std::string(BREVAN_ROOT) + "/" + name).rdbuf();
    return text.str();
}

TEST(SettingTable, HasDefaultsThatAreAllowed)
{
    for (const SettingRow& row : SettingTable()) {
        Settings settings;
        EXPECT_TRUE(applySetting(row, row.defaultText, settings, settings.tls)) << row.key;
    }
}

TEST(SettingTable, SetsTheDefaults)
{
    const Settings settings = defaultSettings();
    EXPECT_TRUE(settings.tls.verify);
    EXPECT_EQ(settings.connectTime, std::chrono::seconds(10));
    EXPECT_EQ(settings.requestTime, std::chrono::seconds(60));
    EXPECT_EQ(settings.commandTime, std::chrono::seconds(600));
    EXPECT_EQ(settings.replyBytes, 64U * 1024 * 1024);
    EXPECT_EQ(settings.commandOutputBytes, 1024U * 1024);
    EXPECT_EQ(settings.proxy, "");
}

TEST(SettingTable, RefusesNumbersOutOfRange)
{
    for (const char* bad : {"0", "0.09", "600.1", "-1", "1e2", "1x", "", "nan", "inf", " 1", "0x1"}) {
        EXPECT_FALSE(isAllowed("time", "connect_seconds", bad)) << bad;
    }
    for (const char* good : {"0.1", "1", "600", "2.5"}) {
        EXPECT_TRUE(isAllowed("time", "connect_seconds", good)) << good;
    }
}

TEST(SettingTable, RefusesTextsThatAreNotAllowed)
{
    EXPECT_FALSE(isAllowed("tls", "verify", "yes"));
    EXPECT_FALSE(isAllowed("tls", "verify", ""));
    EXPECT_FALSE(isAllowed("tls", "ca_file", "relative.pem"));
    EXPECT_FALSE(isAllowed("tls", "pin_sha256", "abc="));
    EXPECT_FALSE(isAllowed("tls", "server_name", "a b"));
    EXPECT_FALSE(isAllowed("tls", "server_name", "a:1"));
    EXPECT_FALSE(isAllowed("net", "proxy", "proxy.example.com:3128"));
    EXPECT_TRUE(isAllowed("net", "proxy", "http://proxy.example.com:3128"));
}

TEST(SettingTable, WritesPinsAsLibcurlReadsThem)
{
    const std::string pin(43, 'A');
    Settings settings;
    EXPECT_TRUE(applySetting(*findSetting("tls", "pin_sha256"), pin + "=  " + pin + "= ", settings, settings.tls));
    EXPECT_EQ(settings.tls.pin, "sha256//" + pin + "=;sha256//" + pin + "=");
}

TEST(SettingTable, FindsNothingUnderOtherNames)
{
    EXPECT_EQ(findSetting("tls", "Verify"), nullptr);
    EXPECT_EQ(findSetting("time", "verify"), nullptr);
    EXPECT_EQ(findSetting("", ""), nullptr);
}

TEST(SettingTable, IsDocumentedInFull)
{
    const std::string document = fileText("docs/settings.md");
    for (const SettingRow& row : SettingTable()) {
        const std::string unit = row.unit.empty() ? "" : std::string(row.unit);
        const std::string line =
            "| `[" + std::string(row.section) + "] " + std::string(row.key) + "` | " + unit + (unit.empty() ? "| " : " | ") +
            (row.defaultText.empty() ? "none" : std::string(row.defaultText)) + " | " + allowedValues(row) + " |";
        EXPECT_THAT(document, HasSubstr(line));
    }
}

TEST(SettingTable, StandsInTheShippedFileWithItsDefaults)
{
    const std::string shipped = fileText("platform/q7common/transport.ini");
    for (const SettingRow& row : SettingTable()) {
        const std::string line = "\n# " + std::string(row.key) + " =" + (row.defaultText.empty() ? "" : " ") +
                                 std::string(row.defaultText) + "\n";
        EXPECT_THAT(shipped, HasSubstr(line));
        EXPECT_THAT(shipped, HasSubstr("\n[" + std::string(row.section) + "]\n"));
        EXPECT_TRUE(!row.isNumber() || shipped.find(": " + allowedValues(row) + ".\n") != std::string::npos) << row.key;
    }
}

}  // namespace
}  // namespace brevan
