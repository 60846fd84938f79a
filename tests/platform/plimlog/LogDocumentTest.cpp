// docs/logs.md tells users what the library does; what can be checked of it is checked here.

#include "PlimLogAPI.h"
#include "platform/plimlog/LogSettings.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::HasSubstr;

std::string document()
{
    return readFile(BREVAN_ROOT "/docs/logs.md");
}

/// The line of the document that begins with `beginning`.
std::string documentLine(const std::string& beginning)
{
    const std::string text = "\n" + document();
    const std::size_t begin = text.find("\n" + beginning) + 1;
    return begin == 0 ? "" : text.substr(begin, text.find('\n', begin) - begin);
}

TEST(LogDocument, NamesEverySetting)
{
    const std::string text = document();
    const std::string shipped = readFile(BREVAN_ROOT "/platform/plimlog/Brevan_API.ini");
    for (const std::string& name : logSettingNames()) {
        const std::size_t dot = name.find('.');
        EXPECT_THAT(text, HasSubstr("| `[" + name.substr(0, dot) + "]` | `" + name.substr(dot + 1) + "` |"));
        EXPECT_THAT(shipped, HasSubstr("\n" + name.substr(dot + 1) + " = ")) << name;
    }
}

TEST(LogDocument, HasALineThatPrintsTheSlowestOperations)
{
    const TestFolder folder;
    ASSERT_EQ(LogInit("Test", nullptr, nullptr, folder.path().c_str()), 0);
    const auto record = [](const char* operation, const char* end) {
        Log_Interface_Info("Test", "1", "", operation, "", "", "", "2021-03-04 05:06:07 000", end, "0", "");
    };
    record("quick", "2021-03-04 05:06:07 009");
    record("slowest", "2021-03-04 05:06:17 000");
    record("no time", "never");
    record("slow", "2021-03-04 05:06:07 800");
    LogFini("Test");
    const std::string line = documentLine("awk ");
    ASSERT_EQ(std::system(("cd " + folder.path() + " && " + line + " > output").c_str()), 0) << line;
    EXPECT_EQ(readFile(folder / "output"),
              "10000 ms slowest code 0 began 2021-03-04 05:06:07 000\n"
              "800 ms slow code 0 began 2021-03-04 05:06:07 000\n"
              "9 ms quick code 0 began 2021-03-04 05:06:07 000\n");
}

}  // namespace
}  // namespace brevan::plimlog
