#include "foundation/RunLog.h"

#include "support/SdkTest.h"

#include <climits>

namespace brevan::test {
namespace {

class RunLog : public SdkTest {};

TEST_F(RunLog, WritesEachLevel)
{
    COMMLOG(OS_LOG_DEBUG, "a");
    COMMLOG(OS_LOG_INFO, "b %d", 2);
    COMMLOG(OS_LOG_WARN, "c");
    COMMLOG(OS_LOG_ERROR, "d %s", "text");
    EXPECT_EQ(newLog(), (Lines{"debug: a", "info: b 2", "warn: c", "error: d text"}));
}

TEST_F(RunLog, WritesNothingAtALevelThatIsNone)
{
    for (const int level : {-1, 4, 100, INT_MAX, INT_MIN}) {
        COMMLOG(static_cast<OS_LOGLEVEL>(level), "text");
    }
    EXPECT_EQ(newLog(), Lines{});
}

TEST_F(RunLog, CutsAfter512BytesAndWritesOneLineAtItsLevel)
{
    COMMLOG(OS_LOG_ERROR, "%s", std::string(512, 'a').c_str());
    COMMLOG(OS_LOG_ERROR, "%s", std::string(513, 'b').c_str());
    COMMLOG(OS_LOG_WARN, "%s", std::string(100000, 'c').c_str());
    EXPECT_EQ(newLog(), (Lines{"error: " + std::string(512, 'a'), "error: " + std::string(512, 'b'),
                               "warn: " + std::string(512, 'c')}));
}

TEST_F(RunLog, WritesTextOfTheArrayAsItIs)
{
    COMMLOG(OS_LOG_ERROR, "%s", "100% of %s %n\nerror: forged");
    EXPECT_EQ(newLog(), Lines{"error: 100% of %s %n\nerror: forged"});
}

TEST_F(RunLog, WritesWhatThereIsAsInfoFirstWhereFormattingFails)
{
    COMMLOG(OS_LOG_ERROR, "before %ls", L"\x10ffff");  // no such character in the "C" locale
    EXPECT_EQ(newLog(), (Lines{"info: before ", "error: before "}));
}

TEST_F(RunLog, PutsPartsIntoOneLineAndCutsItAfter512Bytes)
{
    logParts(OS_LOG_INFO, {"enter", " ", "getLun", "%s"});
    logParts(OS_LOG_WARN, {std::string(511, 'a'), "bc", "d"});
    logParts(OS_LOG_ERROR, {std::string(100000, 'c'), "d"});
    logParts(OS_LOG_ERROR, {});
    logParts(static_cast<OS_LOGLEVEL>(4), {"text"});
    EXPECT_EQ(newLog(), (Lines{"info: enter getLun%s", "warn: " + std::string(511, 'a') + "b",
                               "error: " + std::string(512, 'c'), "error: "}));
}

TEST_F(RunLog, WritesAnEmptyLine)
{
    COMMLOG(OS_LOG_INFO, "%s", "");
    EXPECT_EQ(newLog(), Lines{"info: "});
}

}  // namespace
}  // namespace brevan::test
