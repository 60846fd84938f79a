#include "PlimLogAPI.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>

#include <dlfcn.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr unsigned kLevels[] = {0xffffffff, 0xffffffff, 0xffffffff};

class PlimLogAPI : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(LogInit("Test", (m_folder / "Brevan_API.ini").c_str(), kLevels, m_folder.path().c_str()), 0);
    }
    void TearDown() override { LogFini("Test"); }
    std::vector<std::string> log(const std::string& end) const { return linesOf(logPath(m_folder.path(), getpid(), end)); }

    TestFolder m_folder;
};

TEST_F(PlimLogAPI, WritesEachRunLogCallAtItsLevel)
{
    Log_Run_Debug("Test", "below the default level");
    Log_Run_Info("Test", "info");
    Log_Run_Warn("Test", "warn");
    Log_Run_Error("Test", "error");
    EXPECT_THAT(log("run.log"), ElementsAre(HasSubstr(" INFO  "), HasSubstr(" WARN  "), HasSubstr(" ERROR ")));
}

TEST_F(PlimLogAPI, WritesEachInterfaceCallAsARecord)
{
    Log_Interface_Info("Test", "1", "", "getLun", "", "", "", "s", "e", "0", "");
    Log_Interface_Error("Test", "1", "", "createLun", "", "", "", "s", "e", "-401", "");
    EXPECT_THAT(log("interface.log"),
                ElementsAre(HasSubstr("\tINFO\t0\tgetLun\t"), HasSubstr("\tERROR\t-401\tcreateLun\t")));
}

TEST_F(PlimLogAPI, SurvivesNullPointers)
{
    Log_Run_Info(nullptr, nullptr);
    Log_Run_Info("Test", nullptr);
    const char* const none = nullptr;
    Log_Interface_Info(none, none, none, none, none, none, none, none, none, none, none);
    Log_Interface_Error("Test", none, none, none, none, none, none, none, none, none, none);
    EXPECT_EQ(LogFini(nullptr), -1);
    EXPECT_THAT(log("run.log"), ElementsAre(EndsWith(" (null)")));
    EXPECT_EQ(log("interface.log").size(), 1U);
}

TEST_F(PlimLogAPI, TakesAMessageOfAMebibyte)
{
    Log_Run_Info("Test", std::string(1 << 20, '\n').c_str());
    ASSERT_EQ(log("run.log").size(), 1U);
    EXPECT_THAT(log("run.log")[0], EndsWith("\\n [1032192 more bytes were cut]"));
}

TEST_F(PlimLogAPI, IsStartedAndStoppedTwiceWithoutHarm)
{
    EXPECT_EQ(LogInit("Test", nullptr, nullptr, m_folder.path().c_str()), 0);
    EXPECT_EQ(LogFini("Test"), 0);
    EXPECT_EQ(LogFini("Test"), -1);
}

/// Standard output of a shell command.
std::string outputOf(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
    std::string output;
    std::array<char, 4096> part{};
    for (std::size_t got = 1; got > 0;) {
        got = fread(part.data(), 1, part.size(), pipe.get());
        output.append(part.data(), got);
    }
    return output;
}

TEST(PlimLogLibrary, ExportsTheInterfaceAndNothingElse)
{
    EXPECT_EQ(outputOf("nm -D --defined-only --format=just-symbols " PLIMLOG_LIBRARY " | sort"),
              "LogFini\nLogInit\nLog_Interface_Error\nLog_Interface_Info\nLog_Run_Debug\nLog_Run_Error\nLog_Run_Info\nLog_"
              "Run_Warn\n");
}

TEST(PlimLogLibrary, WorksWhenItIsLoadedAtRunTimeAndStaysLoaded)
{
    const TestFolder folder;
    EXPECT_EQ(inChild([&] {
                  void* library = dlopen(PLIMLOG_LIBRARY, RTLD_NOW | RTLD_LOCAL);
                  ASSERT_NE(library, nullptr) << dlerror();
                  const auto start = reinterpret_cast<decltype(&LogInit)>(dlsym(library, "LogInit"));
                  const auto info = reinterpret_cast<decltype(&Log_Run_Info)>(dlsym(library, "Log_Run_Info"));
                  EXPECT_EQ(start("Test", nullptr, kLevels, folder.path().c_str()), 0);
                  dlclose(library);
                  info("Test", "still there");
                  EXPECT_THAT(linesOf(logPath(folder.path(), getpid(), "run.log")), ElementsAre(EndsWith(" still there")));
              }),
              0);
}

TEST(PlimLogLibrary, StartsNoThread)
{
    const TestFolder folder;
    const auto threads = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
    };
    const auto before = threads();
    ASSERT_EQ(LogInit("Test", nullptr, kLevels, folder.path().c_str()), 0);
    Log_Run_Info("Test", "text");
    EXPECT_EQ(threads(), before);
    LogFini("Test");
}

}  // namespace
}  // namespace brevan::plimlog
