#include "platform/plimlog/LogFileName.h"

#include <gtest/gtest.h>

namespace brevan::plimlog {
namespace {

TEST(LogFileName, NamesTagProgramProcessAndKind)
{
    EXPECT_EQ((LogFileName{"Tag", "backup", 4711, 1, LogKind::Run, 0}.text()), "Tag.backup.4711.run.log");
    EXPECT_EQ((LogFileName{"Tag", "backup", 4711, 1, LogKind::Interface, 2}.text()), "Tag.backup.4711.interface.2.log");
    EXPECT_EQ((LogFileName{"Tag", "backup", 4711, 3, LogKind::Run, 0}.text()), "Tag.backup.4711-3.run.log");
}

TEST(LogFileName, IsReadBackAsItWasWritten)
{
    for (const char* text :
         {"T.p.1.run.log", "T-x.p%2e.99.interface.7.log", "T.p.99-2.run.1.log", "T.p.2147483647.run.log"}) {
        const auto name = parseLogFileName(text);
        ASSERT_TRUE(name) << text;
        EXPECT_EQ(name->text(), text);
    }
}

TEST(LogFileName, IsNotReadFromFilesThatAreNoneOfOurs)
{
    for (const char* text : {"",
                             ".",
                             "a.log",
                             "T.p.run.log",
                             "T.p.x.run.log",
                             "T.p.0.run.log",
                             "T.p.-1.run.log",
                             "T.p.07.run.log",
                             "T.p.1.run.txt",
                             "T.p.1.walk.log",
                             "T.p.1.run.0.log",
                             "T.p.1.run.x.log",
                             "T.p.1.run.1.1.log",
                             "T..1.run.log",
                             ".p.1.run.log",
                             "T.p.1-1.run.log",
                             "T.p.1-2-3.run.log",
                             "T.p..run.log",
                             "T.p.1-.run.log",
                             "T.p.99999999999.run.log",
                             "T.p.1.run..log",
                             "T.p.1.run.log.gz"}) {
        EXPECT_FALSE(parseLogFileName(text)) << text;
    }
}

TEST(LogFileName, MakesEveryTextAPartThatCannotLeaveTheFolder)
{
    EXPECT_EQ(namePart("Plim-Brevan_1"), "Plim-Brevan_1");
    EXPECT_EQ(namePart("../a b"), "%2e%2e%2fa%20b");
    EXPECT_EQ(namePart("\xff%"), "%ff%25");
}

}  // namespace
}  // namespace brevan::plimlog
