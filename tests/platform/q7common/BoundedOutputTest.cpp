#include "platform/q7common/BoundedOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brevan {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> linesOf(const std::string& text, std::size_t limit)
{
    BoundedOutput output(limit);
    output.add(text);
    std::vector<std::string> lines{"before"};
    output.appendLines(lines);
    return lines;
}

TEST(BoundedOutput, AppendsLinesWithoutTheirEnds)
{
    EXPECT_THAT(linesOf("a\n\nb\n", 100), ElementsAre("before", "a", "", "b"));
    EXPECT_THAT(linesOf("a\nb", 100), ElementsAre("before", "a", "b"));
    EXPECT_THAT(linesOf("", 100), ElementsAre("before"));
}

TEST(BoundedOutput, KeepsTheBeginningAndCountsTheRest)
{
    BoundedOutput output(4);
    output.add("abc");
    output.add("def");
    EXPECT_EQ(output.text(), "abcd");
    EXPECT_EQ(output.dropped(), 2U);
}

TEST(BoundedOutput, LeavesOutALineThatIsNotWhole)
{
    EXPECT_THAT(linesOf("sda\nsdaa\n", 7), ElementsAre("before", "sda"));
    EXPECT_THAT(linesOf("sda\nsdaa\n", 9), ElementsAre("before", "sda", "sdaa"));
}

}  // namespace
}  // namespace brevan
